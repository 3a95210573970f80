#include "pictures/picture_states.h"

#include <QTest>

#include "pictures/picture_scenes.h"

namespace corvane::testing {

namespace {

void openArchivedAccount(WindowScene& scene, QQuickWindow& window) {
    checkArchived(scene, window);
    scene.window().archived()->openAccount(0);
    auto& rows = *scene.window().archived()->detail()->rows();
    rows.setExpanded(4, true);
    rows.setExpanded(5, true);
    QTest::qWait(600);
}

void openGuide(WindowScene& scene, QQuickWindow& window) {
    checkArchived(scene, window);
    scene.window().archived()->openAccount(0);
    QTest::qWait(400);
    scene.window().archived()->openGuide();
    scene.settle();
    QTest::qWait(800);
}

} // namespace

const std::vector<PictureState>& overviewStates() {
    static const std::vector<PictureState> all = {
        {"j-archived-empty", scanStore, lookAtArchived},
        {"j-archived-unchecked", archiveOldMail, lookAtArchived},
        {"j-archived", archiveOldMail, checkArchived},
        {"j-archived-cleanable", archiveOldMail,
         [](WindowScene& scene, QQuickWindow& window) {
             checkArchived(scene, window);
             scene.window().archived()->setFilter(1);
             QTest::qWait(400);
         }},
        {"k-account-detail", archiveOldMail, openArchivedAccount},
        {"l-mail-space", scanStore, lookAtSpace},
        {"l-mail-space-empty", [](WindowScene&) {},
         [](WindowScene& scene, QQuickWindow& window) { go(scene, window, Qt::Key_5); }},
        {"m-guide", archiveOldMail, openGuide},
    };
    return all;
}

} // namespace corvane::testing
