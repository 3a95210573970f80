#include "pictures/picture_states.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <QTest>

#include "locations/archive_samples.h"
#include "pictures/picture_scenes.h"
#include "records/archive_files/config_backup_file.h"

namespace corvane::testing {

namespace {

std::string makeArchive(WindowScene& scene, const std::string& folder, int number, int mails) {
    std::vector<std::string> ids;
    for (int mail = 0; mail < mails; ++mail)
        ids.push_back("mid:" + std::to_string(number) + "-" + std::to_string(mail));
    std::string root = writeArchive(scene.home(), folder, sampleIndex(number, ids));
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
    scene.window().request(WindowModel::Command::Places);
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
    const std::string root = writeArchive(scene.home(), "Library/CloudStorage/Nutstore-a@b.example/邮件归档",
                                          sampleIndex(1, {"mid:a"}));
    CorvaneConfigBackup backup;
    backup.exportedAt = Date(std::chrono::seconds(1'763'675'000));
    backup.destinationPath = root;
    backup.knownLocationRoots = {root, "/Volumes/A"};
    backup.accountMergeRules = {{"email:a@x", "A"}};
    scene.home().write("Library/CloudStorage/Nutstore-a@b.example/邮件归档/app-backup.json",
                       encodeConfigBackup(backup));
    scene.window().startUp();
    scene.settle();
}

void importSettings(WindowScene& scene, QQuickWindow&) {
    const std::string path = scene.home().write(
        "a.corvanebackup", encodeConfigBackup(scene.model().library().configBackup.currentConfigBackup()));
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
    scene.window().request(WindowModel::Command::ImportSettings);
    QTest::qWait(800);
    scene.settle();
    QTest::qWait(400);
}

} // namespace

const std::vector<PictureState>& placeStates() {
    static const std::vector<PictureState> all = {
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

} // namespace corvane::testing
