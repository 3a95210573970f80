#include "pictures/picture_states.h"

#include <filesystem>
#include <string>
#include <utility>

#include <QTest>

#include "pictures/picture_scenes.h"

namespace corvane::testing {

namespace {

// The run waits at its beginning.
void startHeldRun(WindowScene& scene) {
    openConfirmation(scene);
    scene.platform().onAvailableCapacity([&scene] { scene.waitForRelease(); });
    scene.window().archive()->start();
}

void endInBackground(WindowScene& scene) {
    startHeldRun(scene);
    scene.window().archive()->background()->send();
    scene.release();
    scene.settle();
}

void askToClose(WindowScene&, QQuickWindow& window) {
    window.close();
    QTest::qWait(500);
}

void askForFolder(WindowScene& scene, QQuickWindow& window) {
    const int right = window.width() / 2 + 410;
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier,
                      QPoint(right - 80, window.width() == 1000 ? 114 : 138));
    QTest::qWait(800);
    scene.settle();
    QTest::keyClick(&window, Qt::Key_Down);
    QTest::keyClick(&window, Qt::Key_Down);
    QTest::qWait(300);
}

} // namespace

const std::vector<PictureState>& confirmationStates() {
    static const std::vector<PictureState> all = {
        {"e-archive-confirm", openConfirmation},
        {"e-archive-no-place",
         [](WindowScene& scene) {
             openConfirmation(scene);
             std::filesystem::remove_all(scene.home().at("Documents/邮件归档"));
             scene.model().archiving().destinations.refreshFacts();
             scene.settle();
         }},
        {"e-archive-empty",
         [](WindowScene& scene) {
             openConfirmation(scene);
             scene.window().archive()->setMinimumSize(3);
             scene.settle();
         }},
        {"e-archive-error",
         [](WindowScene& scene) {
             openConfirmation(scene);
             std::filesystem::remove_all(scene.home().at("Documents"));
             scene.home().write("Documents", "");
             scene.window().archive()->start();
             scene.settle();
         }},
        {"e-folder-home",
         [](WindowScene& scene) {
             openConfirmation(scene);
             scene.home().makeFolder("归档");
             scene.model().archiving().destinations.setTransferDestination(scene.home().at("归档"));
             scene.settle();
         },
         askForFolder},
        {"e-folder-nested", [](WindowScene& scene) { openConfirmation(scene); },
         [](WindowScene& scene, QQuickWindow& window) {
             askForFolder(scene, window);
             press(window, "folder0");
             QTest::keyClick(&window, Qt::Key_Right);
             QTest::qWait(500);
             scene.settle();
             QTest::keyClick(&window, Qt::Key_Down);
             QTest::qWait(600);
         }},
        {"e-rebuild",
         [](WindowScene& scene) {
             scene.fill();
             scene.home().write("旧归档/2009/a.eml", "Subject: x\n\n");
             scene.model().archiving().destinations.setTransferDestination(scene.home().at("旧归档"));
             tickSome(scene);
             scene.settle();
             scene.window().home()->runOrganizePrimaryAction();
             scene.settle();
         }},
        {"e-folder-picker",
         [](WindowScene& scene) {
             openConfirmation(scene);
             for (const char* folder :
                  {"合同", "2018 旧项目", "2019 旧项目", "图片", "发票与报销", "👪 家庭", "Backups"})
                 scene.home().makeFolder(std::string("Documents/") + folder);
             scene.model().archiving().destinations.setTransferDestination(scene.home().at("Documents"));
             scene.settle();
         },
         askForFolder},
    };
    return all;
}

const std::vector<PictureState>& runStates() {
    static const std::vector<PictureState> all = {
        {"f-archive-running", startHeldRun},
        {"f-close-question", startHeldRun, askToClose},
        {"f-background-end", endInBackground},
        {"g-archive-ok",
         [](WindowScene& scene) {
             scene.fill();
             auto& tree = *scene.window().home()->tree();
             tree.toggleTick(scene.treeRow(QStringLiteral("2018 年")));
             scene.window().home()->runOrganizePrimaryAction();
             scene.settle();
             scene.window().archive()->start();
             scene.settle();
         }},
        {"g-archive-cancelled",
         [](WindowScene& scene) {
             startHeldRun(scene);
             scene.window().archive()->cancelRun();
             scene.release();
             scene.settle();
         }},
        {"g-archive-result", runToItsEnd},
        {"g-archive-warning",
         [](WindowScene& scene) {
             runToItsEnd(scene);
             EmailArchiveRunResult result;
             result.archivedCount = result.triedCount = 12;
             result.archiveWarnings = {
                 "归档库原有的索引无法读取，已保留为 archive-index（2026-11-22 06.40.12 无法读取）.json。"};
             scene.window().archive()->outcome()->set(std::move(result), 12);
         }},
    };
    return all;
}

} // namespace corvane::testing
