// Paints the library in every state, in one mode and both sizes, for people to look at:
//   library_pictures FOLDER light|dark [STATE...]
#include <filesystem>
#include <string>
#include <vector>

#include <QQuickItem>
#include <QTest>

#include "screens/support/library_scene.h"
#include "screens/support/window_pictures.h"

namespace {

using corvane::LibraryScreen;
using corvane::testing::fillLibrary;
using corvane::testing::LibraryScene;
using corvane::testing::PictureState;
using corvane::testing::WindowScene;

void wait(WindowScene& scene, int milliseconds = 700) {
    scene.settle();
    QTest::qWait(milliseconds);
    scene.settle();
}

void fill(WindowScene& scene) {
    scene.platform().resourceFolders = {CORVANE_PROGRAMS};
    fillLibrary(scene);
}

LibraryScreen& look(WindowScene& scene, QQuickWindow& window) {
    QTest::keyClick(&window, Qt::Key_3, Qt::ControlModifier);
    wait(scene, 1500);
    return *scene.window().library();
}

// Repeaters own what they make, so it isn't found as a child object.
QQuickItem* partOf(QQuickItem* item, const QString& name) {
    for (QQuickItem* child : item->childItems()) {
        if (child->objectName() == name) return child;
        if (QQuickItem* found = partOf(child, name)) return found;
    }
    return nullptr;
}

void press(WindowScene& scene, QQuickWindow& window, const char* name) {
    const QQuickItem* item = partOf(window.contentItem(), QString::fromLatin1(name));
    if (item == nullptr) qFatal("no part %s", name);
    const QPointF centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, centre.toPoint());
    wait(scene);
}

void openFirstThread(WindowScene& scene, QQuickWindow& window) {
    LibraryScreen& screen = look(scene, window);
    screen.toggleThread(0);
    QTest::keyClick(&window, Qt::Key_Down);
    wait(scene, 2500);
}

void search(WindowScene& scene, QQuickWindow& window, const QString& query) {
    look(scene, window).search()->setQuery(query);
    wait(scene, 800);
    wait(scene, 1200);
}

void narrow(WindowScene& scene, QQuickWindow& window) {
    openFirstThread(scene, window);
    scene.window().library()->filters()->chooseYears(2020, 2021);
    wait(scene);
    const QQuickItem* year = partOf(window.contentItem(), QStringLiteral("stripYear2020"));
    if (year != nullptr && year->isVisible())
        QTest::mouseMove(&window, year->mapToScene(QPointF(5, 20)).toPoint());
    wait(scene, 300);
}

void expandHistory(WindowScene& scene, QQuickWindow& window) {
    openFirstThread(scene, window);
    scene.window().library()->mail()->body()->setQuotedExpanded(true);
    wait(scene);
}

// The row of a mail by its subject; -1 where it isn't listed.
int rowOf(LibraryScreen& screen, const QString& subject) {
    auto& list = *screen.list();
    for (int row = 0; row < list.rowCount(); ++row) {
        if (list.data(list.index(row), corvane::LibraryRowModel::TitleRole).toString() == subject) return row;
    }
    return -1;
}

void select(WindowScene& scene, QQuickWindow& window, const char* subject) {
    LibraryScreen& screen = look(scene, window);
    screen.selection()->select(rowOf(screen, QString::fromUtf8(subject)));
    wait(scene, 2000);
}

void loseAFile(WindowScene& scene) {
    scene.platform().resourceFolders = {CORVANE_PROGRAMS};
    const LibraryScene made = fillLibrary(scene);
    std::filesystem::remove(made.cloudRoot + "/2021/b1.eml");
    scene.model().library().loader.loadEmailArchiveIndex(made.cloudRoot, true);
    scene.settle();
}

void evict(WindowScene& scene) {
    scene.platform().resourceFolders = {CORVANE_PROGRAMS};
    const LibraryScene made = fillLibrary(scene);
    std::filesystem::rename(made.cloudRoot + "/2021/b1.eml", made.cloudRoot + "/2021/.b1.eml.icloud");
    scene.model().library().loader.loadEmailArchiveIndex(made.cloudRoot, true);
    scene.settle();
}

void unplug(WindowScene& scene) {
    fill(scene);
    scene.platform().unplug();
    std::filesystem::rename(scene.home().at("Volumes/归档盘 A"), scene.home().at("away"));
    scene.model().library().loader.loadEmailArchiveIndex(
        scene.model().archiving().destinations.transferDestination(), true);
    scene.settle();
}

void askToRemove(WindowScene& scene, QQuickWindow& window) {
    select(scene, window, "生日快乐！");
    scene.window().library()->selection()->extendTo(
        rowOf(*scene.window().library(), QStringLiteral("预订确认：6 月 15 日入住 2 晚")));
    scene.window().library()->actions()->removeSelected();
    wait(scene);
}

void failToRemove(WindowScene& scene, QQuickWindow& window) {
    askToRemove(scene, window);
    auto& question = *scene.window().library()->removal();
    const std::string folder =
        scene.model().archiving().destinations.transferDestination().value_or("") + "/2021";
    std::filesystem::rename(folder + "/y1.eml", folder + "/y1");
    std::filesystem::create_directory(folder + "/y1.eml");
    question.onlyCopy()->setTicked(true);
    question.accept();
    wait(scene, 1500);
}

void retrieve(WindowScene& scene, QQuickWindow& window) {
    select(scene, window, "生日快乐！");
    scene.window().library()->actions()->openMail();
    QTest::qWait(2300);
}

const std::vector<PictureState>& states() {
    static const std::vector<PictureState> all = {
        {"i-library", fill, openFirstThread},
        {"i-library-closed", fill, [](WindowScene& scene, QQuickWindow& window) { look(scene, window); }},
        {"i-library-history", fill, expandHistory},
        {"i2-library-search", fill,
         [](WindowScene& scene, QQuickWindow& window) { search(scene, window, QStringLiteral("补充协议")); }},
        {"i-library-no-match", fill,
         [](WindowScene& scene, QQuickWindow& window) { search(scene, window, QStringLiteral("qxzq")); }},
        {"p-library-years", fill, narrow},
        {"i-library-filter", fill,
         [](WindowScene& scene, QQuickWindow& window) {
             look(scene, window);
             press(scene, window, "locationFilter");
         }},
        {"i-library-menu", fill,
         [](WindowScene& scene, QQuickWindow& window) {
             select(scene, window, "生日快乐！");
             press(scene, window, "archivedMore");
         }},
        {"i-library-pictures", fill,
         [](WindowScene& scene, QQuickWindow& window) { select(scene, window, "生日快乐！"); }},
        {"i-library-gone", loseAFile,
         [](WindowScene& scene, QQuickWindow& window) { select(scene, window, "生日快乐！"); }},
        {"i-library-cloud", evict,
         [](WindowScene& scene, QQuickWindow& window) { select(scene, window, "生日快乐！"); }},
        {"i-library-retrieving", evict, retrieve},
        {"i-library-unplugged", unplug,
         [](WindowScene& scene, QQuickWindow& window) { select(scene, window, "体检报告领取通知"); }},
        {"q-remove", fill, askToRemove},
        {"q-remove-failed", fill, failToRemove},
        {"i-library-empty", [](WindowScene&) {},
         [](WindowScene& scene, QQuickWindow& window) { look(scene, window); }},
    };
    return all;
}

} // namespace

int main(int argc, char** argv) {
    return corvane::testing::paintPictures(argc, argv, states());
}
