#include "pictures/picture_scenes.h"

#include <QProcess>
#include <QQuickItem>
#include <QTest>

namespace corvane::testing {

namespace {

// Null where no part of this name is in view.
const QQuickItem* partOf(const QQuickItem* item, const QString& name) {
    if (!item->isVisible()) return nullptr;
    if (item->objectName() == name) return item;
    for (const QQuickItem* child : item->childItems()) {
        if (const QQuickItem* found = partOf(child, name)) return found;
    }
    return nullptr;
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

} // namespace

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

void runToItsEnd(WindowScene& scene) {
    openConfirmation(scene);
    scene.window().archive()->start();
    scene.settle();
}

void makeStoreOf(WindowScene& scene, const QString& messages, const QString& option) {
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

void scanStore(WindowScene& scene) {
    makeStore(scene);
    scene.window().home()->scan()->update();
    scene.settle();
}

void cancelHalfWay(WindowScene& scene, QQuickWindow&) {
    scene.model().mail().scanFlow.scan();
    scene.window().home()->access()->cancelScan();
    scene.settle();
    QTest::qWait(1200);
}

void archiveUpTo2021(WindowScene& scene) {
    scene.model().archiving().destinations.setTransferDestination(scene.home().at("Documents/邮件归档"));
    scene.model().mail().filters.set(&CandidateFilters::transferMaxYear, 2021);
    scene.settle();
    scene.model().archiving().ticks.selectAllArchiveCandidates();
    scene.model().archiveSelectedEmails([](const auto&) {});
    scene.settle();
}

void archiveOldMail(WindowScene& scene) {
    scanStore(scene);
    archiveUpTo2021(scene);
}

void press(QQuickWindow& window, const char* name) {
    const QQuickItem* part = partOf(window.contentItem(), QString::fromLatin1(name));
    if (part == nullptr) return qWarning("no part %s to press", name);
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier,
                      part->mapToScene(QPointF(part->width() / 2, part->height() / 2)).toPoint());
    QTest::qWait(600);
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
    scene.window().archived()->check()->run();
    scene.settle();
    QTest::qWait(1200);
}

void lookAtSpace(WindowScene& scene, QQuickWindow& window) {
    go(scene, window, Qt::Key_5);
    for (const int row : {0, 1, 3}) scene.window().space()->toggleTick(row);
    QTest::qWait(400);
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

} // namespace corvane::testing
