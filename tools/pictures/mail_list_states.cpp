#include "pictures/picture_states.h"

#include <QTest>

#include "pictures/picture_scenes.h"

namespace corvane::testing {

namespace {

void showTroubles(WindowScene& scene, QQuickWindow&) {
    scene.window().archive()->close();
    scene.window().home()->showTroubled();
    scene.settle();
    QTest::qWait(1000);
}

void setFirstAside(WindowScene& scene, QQuickWindow& window) {
    showTroubles(scene, window);
    scene.window().mails()->actions()->setAside(true);
    scene.settle();
    QTest::qWait(600);
}

void searchInVain(WindowScene& scene, QQuickWindow& window) {
    lookAtMail(scene, window);
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    for (const char letter : {'q', 'x', 'z', 'q'}) QTest::keyClick(&window, letter);
    QTest::qWait(1500);
}

void openMenu(WindowScene& scene, QQuickWindow& window) {
    lookAtMail(scene, window);
    QTest::mouseClick(&window, Qt::RightButton, Qt::NoModifier,
                      window.width() == 1000 ? QPoint(330, 330) : QPoint(560, 310));
    QTest::qWait(300);
}

// Where the window is wide the filters have a pane of their own: two of them are ticked there.
void openFilters(WindowScene& scene, QQuickWindow& window) {
    lookAtMail(scene, window);
    const bool isSmall = window.width() == 1000;
    for (const QPoint& place :
         isSmall ? QList<QPoint>{{244, 78}, {260, 160}} : QList<QPoint>{{250, 126}, {250, 414}})
        QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, place);
    QTest::qWait(600);
}

} // namespace

const std::vector<PictureState>& mailListStates() {
    static const std::vector<PictureState> all = {
        {"h-mail-list-failed", runToItsEnd, showTroubles},
        {"h-mail-list-set-aside", runToItsEnd, setFirstAside},
        {"h-mail-list-partial", scanStore,
         [](WindowScene& scene, QQuickWindow& window) {
             cancelHalfWay(scene, window);
             QTest::keyClick(&window, Qt::Key_4, Qt::ControlModifier);
             QTest::qWait(800);
         }},
        {"h-mail-list", scanStore, lookAtMail},
        {"h-mail-list-no-match", scanStore, searchInVain},
        {"h-mail-list-menu", scanStore, openMenu},
        {"h-mail-list-filters", scanStore, openFilters},
        {"h-mail-list-search", scanStore,
         [](WindowScene& scene, QQuickWindow& window) {
             lookAtMail(scene, window);
             scene.window().mails()->filters()->setQuery(QStringLiteral("harbour"));
             scene.window().mails()->filters()->applyQuery();
             QTest::qWait(1500);
         }},
    };
    return all;
}

} // namespace corvane::testing
