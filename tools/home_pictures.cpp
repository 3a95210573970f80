// Paints the home, the archive flow, the overview, the space and the places in every state, both modes and
// both sizes, for people to look at, or each screen once for the README:
//   home_pictures FOLDER light|dark [STATE...]
//   home_pictures FOLDER readme
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <QProcess>
#include <QQuickItem>
#include <QTest>

#include "locations/archive_samples.h"
#include "records/stores/config_backup_file.h"
#include "screens/support/window_pictures.h"

namespace {

using corvane::EmailArchiveRunResult;
using corvane::ProofStatus;
using corvane::ScanStatus;
using corvane::testing::WindowScene;

void tickSome(WindowScene& scene) {
    auto& tree = *scene.window().home()->tree();
    const auto tick = [&](const char* title, int from) {
        tree.toggleTick(scene.treeRow(QString::fromUtf8(title), from));
    };
    tick("2018 年", 0);
    tick("2019 年", 0);
    tree.setExpanded(scene.treeRow(QStringLiteral("2020 年")), true);
    tick("收件箱", 0);
    tick("客户往来", 0);
}

void fillAndTick(WindowScene& scene) {
    scene.fill();
    tickSome(scene);
}

void openConfirmation(WindowScene& scene) {
    fillAndTick(scene);
    for (const char* folder :
         {"Library/Mobile Documents/com~apple~CloudDocs", "Library/CloudStorage/Nutstore-linzy@mail.example",
          "Library/CloudStorage/GoogleDrive-zhiyuan@linjia.example/My Drive"}) {
        scene.home().makeFolder(folder);
    }
    scene.platform().plugIn("归档盘 A");
    scene.window().home()->runOrganizePrimaryAction();
    scene.settle();
    scene.window().archive()->candidates()->toggleTick(4);
}

// Of the ticked messages those of 2018 have their files; the others fail.
void runToItsEnd(WindowScene& scene) {
    openConfirmation(scene);
    scene.window().archive()->start();
    scene.settle();
}

// The run waits at its beginning.
void startHeldRun(WindowScene& scene) {
    openConfirmation(scene);
    scene.platform().onAvailableCapacity([&scene] { scene.waitForRelease(); });
    scene.window().archive()->start();
}

// Mail that the real scanner reads, in a store made by the script of the sample mail.
void makeStoreOf(WindowScene& scene, const QString& messages,
                 const QString& option = QStringLiteral("--odd")) {
    QProcess maker;
    maker.start(QStringLiteral("python3"), {QStringLiteral(CORVANE_SAMPLE_MAKER), QStringLiteral("--quiet"),
                                            QStringLiteral("--messages"), messages, option,
                                            QString::fromStdString(scene.home().path())});
    maker.waitForFinished(-1);
    if (maker.exitCode() != 0) qFatal("no sample store: %s", maker.readAllStandardError().constData());
    scene.model().mail().accounts.refreshAccountsFromMail();
    scene.settle();
}

void makeStore(WindowScene& scene) {
    makeStoreOf(scene, QStringLiteral("2500"));
}

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

// Null where no part of this name is in view.
const QQuickItem* partOf(const QQuickItem* item, const QString& name) {
    if (!item->isVisible()) return nullptr;
    if (item->objectName() == name) return item;
    for (const QQuickItem* child : item->childItems()) {
        if (const QQuickItem* found = partOf(child, name)) return found;
    }
    return nullptr;
}

// A click on the part of this name.
void press(QQuickWindow& window, const char* name) {
    const QQuickItem* part = partOf(window.contentItem(), QString::fromLatin1(name));
    if (part == nullptr) return qWarning("no part %s to press", name);
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier,
                      part->mapToScene(QPointF(part->width() / 2, part->height() / 2)).toPoint());
    QTest::qWait(600);
}

void endInBackground(WindowScene& scene) {
    startHeldRun(scene);
    scene.window().archive()->sendToBackground();
    scene.release();
    scene.settle();
}

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

void scanStore(WindowScene& scene) {
    makeStore(scene);
    scene.window().home()->scan()->update();
    scene.settle();
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

// Behind a whole scan, which can be brought back.
void cancelHalfWay(WindowScene& scene, QQuickWindow&) {
    scene.model().mail().scanFlow.scan();
    scene.window().home()->access()->cancelScan();
    scene.settle();
    QTest::qWait(1200);
}

void lookAtMail(WindowScene&, QQuickWindow& window) {
    const auto click = [&](int x, int y) {
        QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, QPoint(x, y));
        QTest::qWait(1000);
    };
    QTest::keyClick(&window, Qt::Key_4, Qt::ControlModifier);
    QTest::qWait(1000);
    const bool isSmall = window.width() == 1000;
    click(isSmall ? 400 : 640, isSmall ? 250 : 230);
    QTest::mouseMove(&window, QPoint(isSmall ? 400 : 640, isSmall ? 330 : 310));
    QTest::qWait(300);
}

// The first message of the sample mail that has any.
void lookAtAttachments(WindowScene& scene, QQuickWindow& window) {
    lookAtMail(scene, window);
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, QPoint(640, 385));
    QTest::qWait(1500);
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

void walkByKeys(WindowScene&, QQuickWindow& window) {
    for (int step = 0; step < 3; ++step) {
        QTest::keyClick(&window, Qt::Key_Tab);
        QTest::qWait(50);
    }
    QTest::keyClick(&window, Qt::Key_Right);
    QTest::qWait(300);
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

// Mail up to 2021 archived by a real run, which proves it.
void archiveUpTo2021(WindowScene& scene) {
    scene.model().archiving().destinations.setTransferDestination(scene.home().at("Documents/邮件归档"));
    scene.model().mail().filters.set(&corvane::CandidateFilters::transferMaxYear, 2021);
    scene.settle();
    scene.model().archiving().ticks.selectAllArchiveCandidates();
    scene.model().archiveSelectedEmails([](const auto&) {});
    scene.settle();
}

// For the README: of mail without oddities, and what is newer can be ticked.
void archiveOldMailOnly(WindowScene& scene) {
    makeStoreOf(scene, QStringLiteral("2500"), QStringLiteral("--no-odd"));
    scene.window().home()->scan()->update();
    scene.settle();
    archiveUpTo2021(scene);
    scene.model().mail().filters.set(&corvane::CandidateFilters::transferMaxYear, std::nullopt);
    scene.platform().runtimes = {"/usr/bin/python3"};
    scene.model().library().bodyTexts.rebuildBodyTextIndex(false);
    scene.settle();
}

void archiveOldMail(WindowScene& scene) {
    scanStore(scene);
    archiveUpTo2021(scene);
}

void tickOldestYear(WindowScene& scene, QQuickWindow&) {
    auto& tree = *scene.window().home()->tree();
    tree.toggleTick(1);
    tree.setExpanded(2, true);
    tree.toggleTick(3);
    scene.settle();
    QTest::qWait(600);
}

// Some of the oldest originals have gone from Mail since.
void deleteOriginals(WindowScene& scene) {
    QProcess deletion;
    deletion.start(QStringLiteral("python3"),
                   {QStringLiteral("-c"),
                    QStringLiteral("import sqlite3,sys; base=sqlite3.connect(sys.argv[1]); "
                                   "base.execute(\"DELETE FROM messages WHERE date_received < "
                                   "strftime('%s','2013-01-01')\"); base.commit()"),
                    QString::fromStdString(scene.home().at("Library/Mail/V10/MailData/Envelope Index"))});
    deletion.waitForFinished(-1);
    if (deletion.exitCode() != 0) qFatal("no deletion: %s", deletion.readAllStandardError().constData());
}

void go(WindowScene& scene, QQuickWindow& window, Qt::Key place) {
    QTest::keyClick(&window, place, Qt::ControlModifier);
    QTest::qWait(500);
    scene.settle();
    QTest::qWait(1200);
}

void lookAtArchived(WindowScene& scene, QQuickWindow& window) {
    go(scene, window, Qt::Key_2);
}

void checkArchived(WindowScene& scene, QQuickWindow& window) {
    deleteOriginals(scene);
    lookAtArchived(scene, window);
    scene.window().archived()->check();
    scene.settle();
    QTest::qWait(1200);
}

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

void lookAtSpace(WindowScene& scene, QQuickWindow& window) {
    go(scene, window, Qt::Key_5);
    for (const int row : {0, 1, 3}) scene.window().space()->toggleTick(row);
    QTest::qWait(400);
}

using State = corvane::testing::PictureState;

std::string makeArchive(WindowScene& scene, const std::string& folder, int number, int mails) {
    std::vector<std::string> ids;
    for (int mail = 0; mail < mails; ++mail)
        ids.push_back("mid:" + std::to_string(number) + "-" + std::to_string(mail));
    std::string root =
        corvane::testing::writeArchive(scene.home(), folder, corvane::testing::sampleIndex(number, ids));
    scene.model().addLocation(root);
    scene.settle();
    return root;
}

// A place in each state; the chosen one has an altered and a missing file.
void makePlaces(WindowScene& scene) {
    archiveOldMail(scene);
    scene.platform().plugIn("归档盘 B");
    makeArchive(scene, "Volumes/归档盘 B/邮件归档", 2, 318);
    scene.platform().plugIn("归档盘 A");
    makeArchive(scene, "Volumes/归档盘 A/邮件归档", 3, 640);
    const std::string cloud =
        makeArchive(scene, "Library/CloudStorage/Nutstore-a@b.example/邮件归档", 4, 165);
    const std::string gone = makeArchive(scene, "Desktop/旧笔记本备份", 5, 42);
    std::filesystem::rename(scene.home().at("Volumes/归档盘 B"), scene.home().at("unplugged"));
    std::filesystem::remove(cloud + "/archive-index.json");
    std::filesystem::remove_all(gone);
    scene.model().library().loader.loadEmailArchiveIndex({}, true);
    scene.settle();
}

void showPlaces(WindowScene& scene, QQuickWindow&) {
    scene.window().request(corvane::WindowModel::Command::Places);
    QTest::qWait(600);
    scene.settle();
    QTest::qWait(600);
}

void showVerdict(WindowScene& scene, QQuickWindow& window) {
    const std::string root = scene.home().at("Documents/邮件归档");
    std::vector<std::filesystem::path> mails;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (entry.path().extension() == ".eml") mails.push_back(entry.path());
    }
    std::filesystem::remove(mails.at(0));
    std::filesystem::resize_file(mails.at(1), 20);
    showPlaces(scene, window);
    scene.window().places()->verify(0);
    scene.window().places()->verify(1);
    scene.settle();
    QTest::qWait(800);
}

void showCollection(WindowScene& scene, QQuickWindow& window) {
    lookAtArchived(scene, window);
    auto& collection = *scene.window().collection();
    scene.window().archived()->collect();
    collection.setName(QStringLiteral("恒泰工作邮件"));
    scene.settle();
    collection.toggleAccount(0);
    for (const char* address : {"design2@hengtai.example", "zhou@example.org"})
        collection.addAddress(QString::fromUtf8(address));
    QTest::qWait(500);
    scene.settle();
    QTest::qWait(600);
}

void offerSettings(WindowScene& scene) {
    const std::string root =
        corvane::testing::writeArchive(scene.home(), "Library/CloudStorage/Nutstore-a@b.example/邮件归档",
                                       corvane::testing::sampleIndex(1, {"mid:a"}));
    corvane::CorvaneConfigBackup backup;
    backup.exportedAt = corvane::Date(std::chrono::seconds(1'763'675'000));
    backup.destinationPath = root;
    backup.knownLocationRoots = {root, "/Volumes/A"};
    backup.accountMergeRules = {{"email:a@x", "A"}};
    scene.home().write("Library/CloudStorage/Nutstore-a@b.example/邮件归档/app-backup.json",
                       corvane::encodeConfigBackup(backup));
    scene.window().startUp();
    scene.settle();
}

void importSettings(WindowScene& scene, QQuickWindow&) {
    const std::string path = scene.home().write(
        "a.corvanebackup",
        corvane::encodeConfigBackup(scene.model().library().configBackup.currentConfigBackup()));
    scene.window().settings()->importFrom(QUrl::fromLocalFile(QString::fromStdString(path)));
    scene.settle();
    QTest::qWait(600);
}

void exportSettings(WindowScene& scene, QQuickWindow&) {
    scene.window().settings()->exportTo(
        QUrl::fromLocalFile(QString::fromStdString(scene.home().at("Mail 归档配置备份.corvanebackup"))));
    scene.settle();
    QTest::qWait(600);
}

void chooseBackup(WindowScene& scene, QQuickWindow&) {
    scene.window().request(corvane::WindowModel::Command::ImportSettings);
    QTest::qWait(800);
    scene.settle();
    QTest::qWait(400);
}

const std::vector<State>& homeStates() {
    static const std::vector<State> all = {
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
        {"h-mail-list-failed", runToItsEnd, showTroubles},
        {"h-mail-list-set-aside", runToItsEnd, setFirstAside},
        {"b-home-first", [](WindowScene&) {}},
        {"c-home-scanning", makeStore, scanHalfWay},
        {"a-home-partial", scanStore, cancelHalfWay},
        {"h-mail-list-partial", scanStore,
         [](WindowScene& scene, QQuickWindow& window) {
             cancelHalfWay(scene, window);
             QTest::keyClick(&window, Qt::Key_4, Qt::ControlModifier);
             QTest::qWait(800);
         }},
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
             scene.model().mail().filters.set(&corvane::ListFilters::yearCutoff, 1990);
             scene.model().mail().filters.set(&corvane::ListFilters::onlyBeforeCutoff, true);
             scene.model().mail().scanFlow.scan();
             scene.settle();
         }},
        {"a-home-nothing-to-do",
         [](WindowScene& scene) {
             scene.fill();
             scene.model().mail().filters.set(&corvane::CandidateFilters::transferMaxYear, 1990);
             scene.settle();
         }},
        {"h-mail-list", scanStore, lookAtMail},
        {"h-mail-list-no-match", scanStore, searchInVain},
        {"h-mail-list-menu", scanStore, openMenu},
        {"h-mail-list-filters", scanStore, openFilters},
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

const std::vector<State>& confirmationStates() {
    static const std::vector<State> all = {
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

const std::vector<State>& runStates() {
    static const std::vector<State> all = {
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

const std::vector<State>& overviewStates() {
    static const std::vector<State> all = {
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

const std::vector<State>& placeStates() {
    static const std::vector<State> all = {
        {"r-places", makePlaces, showPlaces},
        {"r-places-verdict", makePlaces, showVerdict},
        {"s-address-collection", archiveOldMail, showCollection},
        {"t-settings-offer", offerSettings},
        {"t-settings-import", fillAndTick, importSettings},
        {"t-settings-exported", fillAndTick, exportSettings},
        {"t-settings-choose", fillAndTick, chooseBackup},
    };
    return all;
}

void lookAtLibrary(WindowScene& scene, QQuickWindow& window) {
    go(scene, window, Qt::Key_3);
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, QPoint(400, 310));
    QTest::qWait(1500);
    scene.settle();
    QTest::qWait(600);
}

// The five screens over one archive of mail without oddities.
const std::vector<State>& readmeStates() {
    static const std::vector<State> all = {
        {"home", archiveOldMailOnly, tickOldestYear},   {"archived", archiveOldMailOnly, checkArchived},
        {"library", archiveOldMailOnly, lookAtLibrary}, {"mails", archiveOldMailOnly, lookAtAttachments},
        {"space", archiveOldMailOnly, lookAtSpace},
    };
    return all;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<State> all;
    for (const auto* states :
         {&homeStates(), &confirmationStates(), &runStates(), &overviewStates(), &placeStates()})
        all.insert(all.end(), states->begin(), states->end());
    return corvane::testing::paintPictures(argc, argv, all, readmeStates());
}
