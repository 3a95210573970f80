#include "screens/shell/window_model.h"

#include <filesystem>

#include <QDesktopServices>
#include <QSignalSpy>
#include <QTest>

#include "locations/archive_samples.h"
#include "locations/known_locations.h"
#include "model/model_test.h"
#include "model/published_messages.h"
#include "platform/files/directory.h"
#include "records/archive_files/archive_index_file.h"

namespace corvane::testing {
namespace {

// What the desktop was asked to open.
class OpenedUrls : public QObject {
    Q_OBJECT

  public:
    OpenedUrls() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }

    ~OpenedUrls() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    Q_INVOKABLE void open(const QUrl& url) { urls.append(url); }

    QList<QUrl> urls;
};

class WindowModels : public ModelTest {
  protected:
    WindowModels() { waitUntilIdle(context_.tasks); }

    void publish(int count) {
        std::vector<MessageSketch> sketches;
        for (int number = 0; number < count; ++number) sketches.push_back({"m" + std::to_string(number)});
        publishMessages(model_.mail().catalog, sampleMessages(home_, sketches));
        waitUntilIdle(context_.tasks);
    }

    ModelContext context_{platform_};
    CorvaneViewModel model_{context_};
    WindowModel window_{model_};
};

TEST_F(WindowModels, StoppingForTheCloseKeepsWhatWasWrittenAndItsIndex) {
    publish(300);
    const std::string root = home_.at("归档");
    model_.archiving().destinations.setTransferDestination(root);
    waitUntilIdle(context_.tasks);
    model_.archiving().ticks.selectAllArchiveCandidates();
    QSignalSpy stopped(&window_, &WindowModel::stopped);
    bool wasShown = false;
    QObject::connect(window_.activity(), &Activity::changed, [&] {
        wasShown = wasShown || (window_.activity()->running() && window_.activity()->place() == u"home");
    });
    QObject::connect(&model_.archiving().archiveRun, &ArchiveRunFlow::progressChanged, [&] {
        // Before it names a message a run may be stopped with nothing written.
        const auto& progress = model_.archiving().archiveRun.emailArchiveProgress();
        if (window_.archiving() && progress && progress->currentSubject) window_.stopArchiving();
    });
    model_.archiving().archiveRun.archiveSelectedEmails(model_.archiving().candidates.archiveCandidates(),
                                                        model_.archiving().ticks.selectedArchiveMessageIDs(),
                                                        root, [](auto) {});
    EXPECT_TRUE(window_.archiving());
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(stopped.count(), 1);
    EXPECT_FALSE(window_.archiving());
    EXPECT_TRUE(wasShown);
    EXPECT_FALSE(window_.activity()->running());
    const auto entries = model_.library().loader.archivedEntries()->size();
    EXPECT_TRUE(platform::fileExists(root + "/archive-index.json"));
    EXPECT_GT(entries, 0U);
    EXPECT_LT(entries, 300U);
}

TEST_F(WindowModels, TheFootTellsOfARunAndThenOfItsBodyTexts) {
    publish(3);
    const std::string root = home_.at("归档");
    model_.archiving().destinations.setTransferDestination(root);
    waitUntilIdle(context_.tasks);
    model_.archiving().ticks.selectAllArchiveCandidates();
    QStringList titles;
    QObject::connect(window_.activity(), &Activity::changed, [&] {
        if (titles.isEmpty() || titles.last() != window_.activity()->title())
            titles.append(window_.activity()->title());
    });
    model_.archiving().archiveRun.archiveSelectedEmails(model_.archiving().candidates.archiveCandidates(),
                                                        model_.archiving().ticks.selectedArchiveMessageIDs(),
                                                        root, [](auto) {});
    waitUntilIdle(context_.tasks);
    EXPECT_LT(titles.indexOf(QStringLiteral("正在归档")), titles.indexOf(QStringLiteral("正在准备正文预览")));
    EXPECT_TRUE(titles.contains(QStringLiteral("正在归档")));
    EXPECT_FALSE(window_.activity()->running());
}

TEST_F(WindowModels, TheFootTellsOfALibraryThatTakesLongToRead) {
    Activity patient(model_);
    Activity activity(model_, std::chrono::milliseconds(0));
    model_.library().loader.loadEmailArchiveIndex(home_.makeFolder("归档"), true);
    EXPECT_EQ(activity.title(), QStringLiteral("正在读取归档库"));
    EXPECT_FALSE(patient.running());
    waitUntilIdle(context_.tasks);
    EXPECT_FALSE(activity.running());
    EXPECT_FALSE(patient.running());
}

TEST_F(WindowModels, ARunThatFailsEarlyIsToldOfFromItsBeginningToItsEnd) {
    publish(3);
    platform_.capacity = 1;
    QSignalSpy changed(&window_, &WindowModel::archivingChanged);
    QSignalSpy stopped(&window_, &WindowModel::stopped);
    model_.archiving().ticks.selectAllArchiveCandidates();
    model_.archiving().archiveRun.archiveSelectedEmails(model_.archiving().candidates.archiveCandidates(),
                                                        model_.archiving().ticks.selectedArchiveMessageIDs(),
                                                        home_.at("归档"), [](auto) {});
    EXPECT_EQ(model_.archiving().archiveRun.emailArchiveProgress(),
              (EmailArchiveProgress{0, 3, std::nullopt, "准备归档 3 封邮件..."}));
    EXPECT_EQ(changed.count(), 1);
    window_.stopArchiving();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(stopped.count(), 1);
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(model_.archiving().archiveRun.emailArchiveProgress(), std::nullopt);
}

TEST_F(WindowModels, TheArchivesAreReadAsTheyAreAtTheStart) {
    writeIndex(home_, "归档", {Date(), Date(), {sampleRecord("mid:a")}});
    model_.archiving().destinations.setTransferDestination(home_.at("归档"));
    CorvaneViewModel model(context_);
    WindowModel window(model);
    waitUntilIdle(context_.tasks);
    ASSERT_TRUE(model.library().loader.archivedEntries()->empty());
    window.startUp();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(model.library().loader.archivedEntries()->size(), 1U);
}

TEST_F(WindowModels, TheSidebarKnowsItsFiguresBeforeAPlaceWasOpened) {
    const auto figures = [](WindowModel& window) {
        QStringList all;
        const SidebarModel& sidebar = *window.sidebar();
        for (int row = 0; row < sidebar.rowCount(); ++row)
            all += sidebar.index(row).data(SidebarModel::FigureRole).toString();
        return all;
    };
    const QString dash = QStringLiteral("—");
    writeIndex(home_, "归档", {Date(), Date(), {sampleRecord("mid:a")}});
    model_.archiving().destinations.setTransferDestination(home_.at("归档"));
    CorvaneViewModel model(context_);
    WindowModel window(model);
    EXPECT_EQ(figures(window).at(3), dash) << "no false zero";
    EXPECT_EQ(figures(window).at(4), dash);
    window.startUp();
    waitUntilIdle(context_.tasks);
    publishMessages(model.mail().catalog, sampleMessages(home_, {{"m1"}, {"m2"}}));
    waitUntilIdle(context_.tasks);
    QTRY_COMPARE(figures(window).at(3), QStringLiteral("2"));
    QTRY_VERIFY(figures(window).at(4).endsWith(u'B'));
    EXPECT_EQ(figures(window).at(1), dash) << "Mail wasn't asked";
    EXPECT_EQ(figures(window).at(2), QStringLiteral("1"));
}

TEST_F(WindowModels, APlaceThatIsNamedAnewGoesOnlyForTheSameArchive) {
    const std::string before = writeArchive(home_, "before", sampleIndex(1, {"mid:a"}));
    const std::string other = writeArchive(home_, "other", sampleIndex(2, {"mid:b"}));
    model_.archiving().destinations.setTransferDestination(before);
    waitUntilIdle(context_.tasks);
    std::filesystem::rename(before, home_.at("after"));
    PlacesScreen& places = *window_.places();
    places.open();
    waitUntilIdle(context_.tasks);
    const auto nameAnew = [&](const std::string& folder) {
        places.beginChoice(0);
        places.addFolder(QUrl::fromLocalFile(QString::fromStdString(folder)));
        waitUntilIdle(context_.tasks);
        return model_.archiving().destinations.transferDestination();
    };
    EXPECT_EQ(nameAnew(other), before);
    EXPECT_NE(model_.library().loader.location(before), nullptr);
    EXPECT_EQ(nameAnew(home_.at("after")), home_.at("after"));
    EXPECT_TRUE(forgottenLocations(context_.settings).contains(before));
    EXPECT_EQ(model_.library().loader.archivedEntries()->size(), 2U);
}

TEST_F(WindowModels, ClosingWithoutARunWaitsForNothing) {
    QSignalSpy stopped(&window_, &WindowModel::stopped);
    window_.stopArchiving();
    EXPECT_EQ(stopped.count(), 1);
}

TEST_F(WindowModels, AddressOpensAFolderAndNothingElse) {
    const std::string folder = home_.makeFolder("a b/归档");
    const std::string file = home_.write("program.desktop", "[Desktop Entry]\nExec=rm\n");
    const std::string program = home_.makeFolder("Evil.app");
    const std::string nameless = home_.makeFolder("Photos/Contents");
    std::filesystem::create_symlink(program, home_.at("link"));
    OpenedUrls opened;
    for (const std::string& path : {file, folder, home_.at("missing"), program, program + "/.",
                                    home_.at("link"), home_.at("Photos"), nameless + "/../"}) {
        window_.openAddress(QStringLiteral("corvane://open?path=") +
                            QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(path))));
        waitUntilIdle(context_.tasks);
    }
    ASSERT_EQ(opened.urls.size(), 1);
    EXPECT_EQ(opened.urls.first().toLocalFile().toStdString(), folder + "/");
}

TEST_F(WindowModels, LengthsComeBackOnlyWithinTheirLimits) {
    const QString name = QStringLiteral("pane");
    EXPECT_EQ(window_.lengths()->stored(name, 372, 352, 400), 372);
    window_.lengths()->store(name, 390);
    EXPECT_EQ(window_.lengths()->stored(name, 372, 352, 400), 390);
    EXPECT_EQ(window_.lengths()->stored(name, 300, 200, 350), 300);
    context_.settings.setText("corvaneLength.pane", "wide");
    EXPECT_EQ(window_.lengths()->stored(name, 372, 352, 400), 372);
}

} // namespace
} // namespace corvane::testing

#include "window_model_test.moc"
