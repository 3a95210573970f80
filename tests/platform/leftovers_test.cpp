#include "platform/files/writing/leftovers.h"

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/files/layers/forwarding_file_layer.h"
#include "platform/files/writing/durable_file.h"
#include "platform/files/writing/temporary_file.h"
#include "platform/paths.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using testing::TemporaryHome;

TEST(Leftovers, AreKnownByOurNamesAlone) {
    const std::string uuid = randomUuid();

    const struct {
        std::string name;
        bool isUnfinished;
        bool isTemporary;
    } cases[] = {
        {std::string(lastPathComponent(temporarySiblingPath("/a/b"))), true, false},
        {".corvane-" + uuid + ".tmp", true, false},
        {".corvane-" + uuid + ".tmp2", false, false},
        {".corvane-" + uuid.substr(1) + ".tmp", false, false},
        {".corvane-00000000-0000-0000-0000-000000000000.tmp", false, false},
        {"x.corvane-" + uuid + ".tmp", false, false},
        {"corvane-rows-" + uuid + ".json", false, true},
        {"corvane-index-" + uuid, false, true},
        {"corvane-rows-" + uuid + ".json.bak", false, false},
        {"corvane-rows-" + uuid + " (copy)", false, false},
        {"corvane-" + uuid, false, false},
        {"corvane-rows-notes.txt", false, false},
        {"corvane-1000", false, false},
    };

    for (const auto& [name, isUnfinished, isTemporary] : cases) {
        EXPECT_EQ(isNameOfUnfinishedFile(name), isUnfinished) << name;
        EXPECT_EQ(isNameOfTemporaryFile(name), isTemporary) << name;
    }
}

TEST(Leftovers, OnlyOurFilesGo) {
    const TemporaryHome home;
    const auto name = [] { return ".corvane-" + randomUuid() + ".tmp"; };
    const std::string left = home.write(name(), std::string(100'000, 'x'));
    const std::string target = home.write("target", "x");
    const std::string link = home.at(name());
    std::filesystem::create_symlink(target, link);
    const std::string fifo = home.at(name());
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const std::string foreign = home.write(name(), "x");
    const bool isForeign = ::chown(foreign.c_str(), 65534, 65534) == 0;
    EXPECT_EQ(removeUnfinishedFiles(home.path()), isForeign ? 1 : 2);
    EXPECT_FALSE(fileExists(left));
    EXPECT_TRUE(fileExists(target));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_TRUE(fileExists(fifo));
    EXPECT_EQ(fileExists(foreign), isForeign);
    EXPECT_EQ(removeUnfinishedFiles(home.at("missing")), 0);
}

// A process that holds one of each kind, until it is killed.
class UserOfTemporaries {
  public:
    explicit UserOfTemporaries(const std::string& folder) {
        std::array<int, 2> ready{};
        EXPECT_EQ(::pipe(ready.data()), 0);
        child_ = ::fork();
        if (child_ == 0) use(folder, ready[1]);
        ::close(ready[1]);
        char byte = 0;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
    }

    void kill() const {
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }

  private:
    [[noreturn]] static void use(const std::string& folder, int ready) {
        TemporaryFile file(folder, "corvane-rows-", ".json");
        file.closeDescriptor();
        const TemporaryFolder copy(folder, "corvane-index-");
        writeFileAtomically(posixFileLayer(), joinPath(copy.path(), "index"), "x");
        writeFileAtomically(posixFileLayer(), joinPath(folder, "cache"), [&](const ByteSink& sink) {
            sink(std::string(2'000'000, 'x'));
            EXPECT_EQ(::write(ready, "x", 1), 1);
            ::pause();
        });
        ::_exit(0);
    }

    pid_t child_;
};

TEST(Leftovers, OfALivingProcessStay_AndOfAKilledOneGo) {
    const TemporaryHome home;
    const std::string folder = home.makeFolder("tmp");
    const auto entries = [&] { return listDirectory(folder, HiddenEntries::include)->size(); };
    const UserOfTemporaries user(folder);
    ASSERT_EQ(entries(), 3U);
    // Also what it began long ago.
    const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24 * 60);
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        std::filesystem::last_write_time(entry.path(), longAgo);
    EXPECT_EQ(removeTemporaryFiles(folder) + removeUnfinishedFiles(folder), 0);
    user.kill();
    EXPECT_EQ(removeTemporaryFiles(folder), 2);
    EXPECT_EQ(removeUnfinishedFiles(folder), 1);
    EXPECT_EQ(entries(), 0U);
}

// Another program starts just before a file gets its name.
class StartBeforeRenaming final : public ForwardingFileLayer {
  public:
    explicit StartBeforeRenaming(std::string folder)
      : ForwardingFileLayer(posixFileLayer())
      , folder_(std::move(folder)) {}

    int rename(const std::string& from, const std::string& to) override {
        removed += removeUnfinishedFiles(folder_);
        return ForwardingFileLayer::rename(from, to);
    }

    int removed = 0;

  private:
    std::string folder_;
};

TEST(Leftovers, AFileStaysClaimedUntilItHasItsName) {
    const TemporaryHome home;
    StartBeforeRenaming files(home.path());
    EXPECT_FALSE(writeFileAtomically(files, home.at("settings"), "x"));
    EXPECT_EQ(files.removed, 0);
    EXPECT_TRUE(fileExists(home.at("settings")));
    EXPECT_EQ(removeUnfinishedFiles(home.path()), 0);
}

} // namespace
} // namespace corvane::platform
