#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/fsuid.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/linux/desktop_commands.h"
#include "platform/platform.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using testing::TemporaryHome;

class EnvironmentVariable {
  public:
    EnvironmentVariable(const char* name, const char* value)
      : name_(name) {
        if (const char* current = std::getenv(name)) earlier_ = current;
        value == nullptr ? ::unsetenv(name) : ::setenv(name, value, 1);
    }

    ~EnvironmentVariable() { earlier_ ? ::setenv(name_, earlier_->c_str(), 1) : ::unsetenv(name_); }

  private:
    const char* name_;
    std::optional<std::string> earlier_;
};

TEST(LinuxPlatform, AGivenHomeIsolatesTheWholeRun) {
    const EnvironmentVariable data("XDG_DATA_HOME", "/elsewhere/data");
    const EnvironmentVariable configuration("XDG_CONFIG_HOME", "/elsewhere/config");
    const auto platform = makePlatform("/homes/anna/../anna/");
    EXPECT_EQ(platform->realUserHomeDirectory(), "/homes/anna");
    EXPECT_EQ(platform->applicationSupportDirectory(), "/homes/anna/.local/share");
    EXPECT_EQ(platform->settingsPath(), "/homes/anna/.config/Corvane.conf");
}

TEST(LinuxPlatform, TheRealHomeIsThatOfTheAccountAndXdgFoldersCountWhenAbsolute) {
    const EnvironmentVariable home("HOME", "/not/the/account");
    const std::string account = ::getpwuid(::getuid())->pw_dir;

    struct {
        const char* data;
        const char* configuration;
        std::string support, settings;
    } const cases[] = {
        {nullptr, nullptr, account + "/.local/share", account + "/.config/Corvane.conf"},
        {"/x/data/", "/x/config", "/x/data", "/x/config/Corvane.conf"},
        {"relative", "", account + "/.local/share", account + "/.config/Corvane.conf"},
    };

    for (const auto& expected : cases) {
        const EnvironmentVariable data("XDG_DATA_HOME", expected.data);
        const EnvironmentVariable configuration("XDG_CONFIG_HOME", expected.configuration);
        const auto platform = makePlatform("");
        EXPECT_EQ(platform->realUserHomeDirectory(), account);
        EXPECT_EQ(platform->applicationSupportDirectory(), expected.support);
        EXPECT_EQ(platform->settingsPath(), expected.settings);
    }
}

TEST(LinuxPlatform, TheTemporaryFolderIsTheOneOfTheEnvironment) {
    for (const auto& [value, expected] :
         {std::pair{"/var/tmp/", "/var/tmp"}, {"relative", "/tmp"}, {"", "/tmp"}}) {
        const EnvironmentVariable folder("TMPDIR", value);
        EXPECT_EQ(makePlatform("/h")->temporaryDirectory(), expected);
    }
}

TEST(LinuxPlatform, QuestionsAboutAPathAreAnsweredByItsNearestParentThroughLinks) {
    const TemporaryHome home;
    const Platform& platform = home.platform();
    ASSERT_EQ(::symlink("/proc", home.at("link").c_str()), 0);
    EXPECT_EQ(platform.fileSystemTypeName(home.at("link/self")), "proc");
    EXPECT_EQ(platform.fileSystemTypeName(home.at("a/b/c")), platform.fileSystemTypeName(home.path()));
    EXPECT_EQ(platform.volumeOf("/proc/self/status")->path, "/proc");
    EXPECT_EQ(platform.volumeOf(home.at("a/b"))->path, platform.volumeOf(home.path())->path);

    const auto space = std::filesystem::space(home.path());
    const auto available = platform.availableCapacity(home.at("not/yet/there"));
    ASSERT_TRUE(available);
    EXPECT_NEAR(static_cast<double>(*available), static_cast<double>(space.available), 256e6);
    EXPECT_TRUE(platform.availableCapacity(home.write("file", "x") + "/below"));
}

TEST(LinuxPlatform, AFolderThatMayNotBeEnteredIsUnknownAndNotMissing) {
    const TemporaryHome home;
    const std::string path = home.makeFolder("closed") + "/a/b";
    std::filesystem::permissions(home.at("closed"), std::filesystem::perms::none);
    // Of this thread, and only for files: even the superuser looks as a stranger now.
    if (::getuid() == 0) ::setfsuid(65534);
    const auto capacity = home.platform().availableCapacity(path);
    const auto volume = home.platform().volumeOf(path);
    ::setfsuid(::getuid());
    EXPECT_FALSE(capacity);
    EXPECT_FALSE(volume);
}

TEST(LinuxPlatform, VolumesHoldTheRootAndTheKernelsOwn) {
    const auto volumes = makePlatform("/h")->mountedVolumes();
    ASSERT_TRUE(volumes);
    EXPECT_EQ(std::ranges::count(*volumes, "/", &Volume::path), 1);
    const auto proc = std::ranges::find(*volumes, "/proc", &Volume::path);
    ASSERT_NE(proc, volumes->end());
    EXPECT_EQ(proc->browsable, false);
}

TEST(LinuxPlatform, TheFileManagerIsAskedByAnAddressWithoutCommas) {
    EXPECT_EQ(revealCommand("/a b/信,1.eml").arguments[5], "array:string:file:///a%20b/%E4%BF%A1%2C1.eml");
}

// Collects events and lets the test wait for them.
class MountEvents {
  public:
    void add(MountEvent event) {
        const std::lock_guard lock(mutex_);
        events_.push_back(event);
        changed_.notify_all();
    }

    MountEvent next() {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(60), [this] { return events_.size() > taken_; });
        return events_.at(taken_++);
    }

    std::size_t untaken() {
        const std::lock_guard lock(mutex_);
        return events_.size() - taken_;
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<MountEvent> events_;
    std::size_t taken_ = 0;
};

TEST(LinuxPlatform, MountsAndUnmountsAreTold) {
    const std::string folder = "/media/corvane-test-" + std::to_string(::getpid());
    std::error_code refused;
    std::filesystem::create_directories(folder, refused);
    MountEvents events;
    const auto platform = makePlatform("/h");
    {
        const auto subscription = platform->subscribeToMounts([&](MountEvent event) { events.add(event); });
        if (refused || ::mount("none", folder.c_str(), "tmpfs", 0, "size=64k") != 0) {
            std::filesystem::remove(folder, refused);
            GTEST_SKIP() << "mounting is not permitted here";
        }
        EXPECT_EQ(events.next(), MountEvent::mounted);
        const auto volume = platform->volumeOf(folder + "/Archive");
        EXPECT_EQ(volume->path, folder);
        EXPECT_EQ(volume->internal, false);
        EXPECT_EQ(volume->browsable, true);
        EXPECT_EQ(platform->fileSystemTypeName(folder), "tmpfs");
        EXPECT_LE(*platform->availableCapacity(folder), 65536);
        ::umount(folder.c_str());
        EXPECT_EQ(events.next(), MountEvent::unmounted);
    }
    EXPECT_EQ(events.untaken(), 0U);
    std::filesystem::remove(folder);
}

TEST(LinuxPlatform, ASubscriptionEndsAtOnceAndLeavesNothing) {
    const auto descriptors = [] { return listDirectory("/proc/self/fd", HiddenEntries::include)->size(); };
    const auto platform = makePlatform("/h");
    const std::size_t before = descriptors();
    for (int i = 0; i < 50; ++i) {
        const auto subscription = platform->subscribeToMounts([](MountEvent) {});
    }
    EXPECT_EQ(descriptors(), before);
}

} // namespace
} // namespace corvane::platform
