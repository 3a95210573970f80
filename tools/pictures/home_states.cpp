#include "pictures/picture_states.h"

#include <string>

#include <QEventLoop>
#include <QTest>

#include "pictures/picture_scenes.h"

namespace corvane::testing {

namespace {

// All of a small store is archived, but for what can't be.
void archiveStore(WindowScene& scene, const QString& option = QStringLiteral("--odd")) {
    makeStoreOf(scene, QStringLiteral("300"), option);
    scene.window().home()->scan()->update();
    scene.settle();
    scene.home().makeFolder("Documents/邮件归档");
    scene.model().archiving().destinations.setTransferDestination(scene.home().at("Documents/邮件归档"));
    scene.settle();
    scene.window().home()->runOrganizePrimaryAction();
    scene.settle();
    scene.window().archive()->start();
    scene.settle();
    scene.window().archive()->close();
    scene.settle();
}

void archiveAndProve(WindowScene& scene, const QString& option = QStringLiteral("--odd")) {
    archiveStore(scene, option);
    scene.window().home()->proof()->start();
    scene.settle();
}

// Nothing of the main thread runs between this and the picture.
void proveHalfWay(WindowScene& scene, QQuickWindow&) {
    QEventLoop loop;
    ProofStatus& proof = *scene.window().home()->proof();
    QObject::connect(&proof, &ProofStatus::changed, &loop, [&] {
        if (!proof.isProving() || proof.fraction() > 0) loop.quit();
    });
    proof.start();
    loop.exec();
}

// Nothing of the main thread runs between this and the picture, so the scan stays as it is.
void scanHalfWay(WindowScene& scene, QQuickWindow&) {
    QEventLoop loop;
    ScanStatus& scan = *scene.window().home()->scan();
    QObject::connect(&scan, &ScanStatus::changed, &loop, [&] {
        if (!scan.isScanning() || scan.line().startsWith(QStringLiteral("已扫描"))) loop.quit();
    });
    scan.update();
    loop.exec();
}

void walkByKeys(WindowScene&, QQuickWindow& window) {
    for (int step = 0; step < 3; ++step) {
        QTest::keyClick(&window, Qt::Key_Tab);
        QTest::qWait(50);
    }
    QTest::keyClick(&window, Qt::Key_Right);
    QTest::qWait(300);
}

} // namespace

const std::vector<PictureState>& homeStates() {
    static const std::vector<PictureState> all = {
        {"a-home", fillAndTick},
        {"a-home-unticked", [](WindowScene& scene) { scene.fill(); }},
        {"a-home-narrowed",
         [](WindowScene& scene) {
             scene.fill();
             scene.window().home()->setScopeYear(2021);
         }},
        {"a-home-proving", [](WindowScene& scene) { archiveStore(scene); }, proveHalfWay},
        {"a-home-proven", [](WindowScene& scene) { archiveAndProve(scene); }},
        {"a-home-safe",
         [](WindowScene& scene) {
             archiveAndProve(scene, QStringLiteral("--no-odd"));
             scene.window().home()->setScopeYear(2018);
             scene.settle();
         }},
        {"a-home-partial-help", [](WindowScene& scene) { scene.fill(); },
         [](WindowScene&, QQuickWindow& window) { press(window, "showPartialHelp"); }},
        {"a-home-proven-year",
         [](WindowScene& scene) {
             archiveAndProve(scene);
             scene.window().home()->setScopeYear(2019);
             scene.settle();
         }},
        {"b-home-first", [](WindowScene&) {}},
        {"c-home-scanning", makeStore, scanHalfWay},
        {"a-home-partial", scanStore, cancelHalfWay},
        {"a-home-failed",
         [](WindowScene& scene) {
             scene.fill();
             scene.home().write("Library/Mail/V10/MailData/Envelope Index", std::string(4096, 'x'));
             scene.window().home()->scan()->update();
             scene.settle();
         }},
        {"a-home-advice",
         [](WindowScene& scene) {
             makeStore(scene);
             scene.model().mail().filters.set(&ListFilters::yearCutoff, 1990);
             scene.model().mail().filters.set(&ListFilters::onlyBeforeCutoff, true);
             scene.model().mail().scanFlow.scan();
             scene.settle();
         }},
        {"a-home-nothing-to-do",
         [](WindowScene& scene) {
             scene.fill();
             scene.model().mail().filters.set(&CandidateFilters::transferMaxYear, 1990);
             scene.settle();
         }},
        {"a-home-keys", fillAndTick, walkByKeys},
        {"d-home-no-access",
         [](WindowScene& scene) {
             scene.home().write("Library/Mail/V10/MailData/Envelope Index", "");
             scene.window().home()->access()->recheckAccess();
             scene.settle();
         }},
        {"d-home-other-mail",
         [](WindowScene& scene) {
             scene.home().write("Library/Mail/V10/MailData/Envelope Index", "");
             scene.home().makeFolder("旧 Mac/Library/Mail/V10/MailData");
             scene.window().home()->access()->recheckAccess();
             scene.settle();
         },
         [](WindowScene& scene, QQuickWindow& window) {
             press(window, "otherMailButton");
             scene.settle();
             QTest::keyClick(&window, Qt::Key_Down);
             QTest::qWait(600);
         }},
    };
    return all;
}

} // namespace corvane::testing
