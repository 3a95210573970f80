#include "model/library/config_backup_flow.h"

#include <algorithm>
#include <chrono>
#include <expected>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "locations/archive_samples.h"
#include "locations/known_locations.h"
#include "model/corvane_view_model.h"
#include "model/model_test.h"
#include "records/stores/settings_keys.h"

namespace corvane {
namespace {

using testing::sampleIndex;
using testing::waitUntilIdle;
using testing::writeArchive;
using Roots = std::vector<std::string>;

// One run of the program over the test's home.
struct ModelRun {
    explicit ModelRun(const platform::Platform& platform)
      : context(platform)
      , model(context) {
        wait();
    }

    void wait() { waitUntilIdle(context.tasks); }

    std::expected<CorvaneConfigBackup, std::string> backupIn(const std::string& root) {
        return readConfigBackup(context.support.files(), root + "/app-backup.json");
    }

    ModelContext context;
    CorvaneViewModel model;
};

class ConfigBackupTest : public testing::ModelTest {
  protected:
    std::string writeBackup(const std::string& path, const CorvaneConfigBackup& backup) {
        return home_.write(path, encodeConfigBackup(backup));
    }
};

TEST_F(ConfigBackupTest, SettingsTravelWithTheArchivesThatAreThere) {
    const std::string root = writeArchive(home_, "archive", sampleIndex(1, {"mid:a"}));
    ModelRun run(platform_);
    run.context.settings.setTextList(knownLocationsKey, {home_.at("unplugged")});
    run.model.archiving().destinations.setTransferDestination(root);
    run.wait();
    run.model.library().accountRules.setArchiveAccountMergeRules({{"email:a@x", "A"}});
    run.wait();
    const auto written = run.backupIn(root);
    ASSERT_TRUE(written) << written.error();
    EXPECT_EQ(written->destinationPath, root);
    EXPECT_EQ(written->accountMergeRules.size(), 1U);
    EXPECT_TRUE(std::ranges::count(written->knownLocationRoots, home_.at("unplugged")));
    EXPECT_FALSE(std::filesystem::exists(home_.at("unplugged")));
    EXPECT_EQ(std::filesystem::status(root + "/app-backup.json").permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(ConfigBackupTest, AFreshStartIsOfferedTheNewestAndOnlyThen) {
    const std::string box = "Library/CloudStorage/Box-Box/";
    writeArchive(home_, box + "Old", sampleIndex(1, {"mid:a"}));
    writeArchive(home_, box + "New", sampleIndex(2, {"mid:b"}));
    writeArchive(home_, box + "Odd", sampleIndex(3, {"mid:c"}));
    writeBackup(box + "Old/app-backup.json", {.exportedAt = Date(std::chrono::seconds(5))});
    const CorvaneConfigBackup newest{.exportedAt = Date(std::chrono::seconds(9)),
                                     .destinationPath = home_.at("nowhere/Mail"),
                                     .knownLocationRoots = {"/a", "relative", "/a/"},
                                     .accountMergeRules = {{"email:a@x", "A"}},
                                     .selectedAccountPrefixes = {"imap://X"}};
    writeBackup(box + "New/app-backup.json", newest);
    writeBackup(box + "Odd/app-backup.json", {.version = 2, .exportedAt = Date(std::chrono::seconds(99))});
    ModelRun run(platform_);
    run.model.library().configBackup.offerConfigBackupOnFreshLaunch();
    run.wait();
    ASSERT_EQ(run.model.library().configBackup.pendingRestore(), newest);
    EXPECT_EQ(run.model.library().configBackup.restoreRoot(), home_.at(box + "New"));
    EXPECT_EQ(run.model.archiving().destinations.transferDestination(), std::nullopt)
        << "only on the user's word";

    markLocationForgotten(run.context.settings, "/a");
    run.model.applyConfigBackup(*run.model.library().configBackup.pendingRestore());
    run.wait();
    EXPECT_EQ(run.model.library().configBackup.resultMessage(), "已从归档里的备份恢复配置。");
    EXPECT_EQ(run.model.archiving().destinations.transferDestination(), home_.at("nowhere/Mail"));
    EXPECT_FALSE(std::filesystem::exists(home_.at("nowhere"))) << "it may belong on a disk that isn't there";
    const Roots known = knownLocations(run.context.settings);
    EXPECT_EQ(std::ranges::count(known, "/a"), 1);
    EXPECT_TRUE(std::ranges::all_of(known, [](const std::string& root) { return root.starts_with('/'); }));
    EXPECT_FALSE(forgottenLocations(run.context.settings).contains("/a"));
    EXPECT_EQ(run.model.mail().accounts.selectedAccountPrefixes(), std::set<std::string>{"imap://X"});
    EXPECT_EQ(run.model.library().loader.archivedEntries()->size(), 3U);

    ModelRun next(platform_);
    next.model.library().configBackup.offerConfigBackupOnFreshLaunch();
    next.wait();
    EXPECT_FALSE(next.model.library().configBackup.pendingRestore());
}

TEST_F(ConfigBackupTest, AFileThatIsNoBackupIsRefusedWithItsReason) {
    CorvaneConfigBackup large{.knownLocationRoots = Roots(1'001, "/a")};
    const std::string whole = encodeConfigBackup({});
    std::string rules = whole;
    rules.replace(rules.find("{}"), 2, [] {
        std::string many = "{";
        for (int i = 0; i < 200'000; ++i) many += "\"" + std::to_string(i) + "\":\"x\",";
        return many + "\"x\":\"x\"}";
    }());
    std::string huge(17 << 20, ' ');
    std::string wrongType = whole;
    wrongType.replace(wrongType.find("[]"), 2, "[1]");
    ModelRun run(platform_);
    run.context.settings.setTextList(knownLocationsKey, {"/kept"});
    ConfigBackupFlow& flow = run.model.library().configBackup;
    const auto import = [&](const std::string& path) {
        flow.importConfig(path);
        run.wait();
        return flow.resultMessage().value_or("read");
    };
    for (const std::string& content :
         {std::string(), std::string("null"), std::string("[]"), whole.substr(0, whole.size() / 2), wrongType,
          encodeConfigBackup({.version = 2}), encodeConfigBackup(large), rules, huge + whole}) {
        const std::string message = import(home_.write("hostile.corvanebackup", content));
        EXPECT_TRUE(message.starts_with("无法读取该备份文件：")) << content.substr(0, 60);
        EXPECT_FALSE(flow.pendingImport());
    }
    EXPECT_TRUE(import(home_.at("none")).starts_with("无法读取该备份文件："));
    EXPECT_TRUE(import(home_.path()).starts_with("无法读取该备份文件："));
    EXPECT_EQ(knownLocations(run.context.settings), Roots{"/kept"});
    home_.makeFolder("Library/Mail/V10");
    flow.exportConfig(home_.at("Library/Mail/V10/mine.corvanebackup"));
    run.wait();
    EXPECT_TRUE(flow.hasFailed());
    EXPECT_FALSE(std::filesystem::exists(home_.at("Library/Mail/V10/mine.corvanebackup")));
    flow.exportConfig(home_.at("mine.corvanebackup"));
    run.wait();
    EXPECT_EQ(flow.resultMessage(),
              "配置已导出到「mine.corvanebackup」。\n邮件本体不在此文件中（仍在你的归档位置）。");
    EXPECT_EQ(import(home_.at("mine.corvanebackup")), "read");
    EXPECT_EQ(flow.pendingImport()->knownLocationRoots, Roots{"/kept"});
}

TEST_F(ConfigBackupTest, AForgottenPlaceComesBackWhenItWasAwayOrIsChosenAgain) {
    const std::string found =
        writeArchive(home_, "Library/CloudStorage/Box-Box/Mail", sampleIndex(1, {"mid:a"}));
    ModelRun run(platform_);
    const auto isShown = [&] {
        run.model.library().loader.loadEmailArchiveIndex(
            run.model.archiving().destinations.transferDestination(), true);
        run.wait();
        return run.model.library().loader.location(found) != nullptr;
    };
    EXPECT_TRUE(isShown());
    EXPECT_FALSE(run.model.forgetLocation("/never/seen"));
    EXPECT_TRUE(run.model.forgetLocation(found + "/"));
    EXPECT_EQ(run.model.library().loader.location(found), nullptr);
    run.wait();
    EXPECT_FALSE(isShown()) << "it is found again at once";
    EXPECT_TRUE(std::filesystem::exists(found + "/2019/a/mid:a.eml"));
    std::filesystem::rename(found, home_.at("away"));
    EXPECT_FALSE(isShown());
    std::filesystem::rename(home_.at("away"), found);
    EXPECT_TRUE(isShown());

    run.model.archiving().destinations.setTransferDestination(found);
    run.wait();
    EXPECT_TRUE(run.model.forgetLocation(found));
    run.wait();
    EXPECT_EQ(run.model.archiving().destinations.transferDestination(), std::nullopt);
    EXPECT_FALSE(isShown());
    run.model.archiving().destinations.setTransferDestination(found);
    run.wait();
    EXPECT_TRUE(isShown());
}

} // namespace
} // namespace corvane
