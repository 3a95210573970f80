// What only Linux can be asked: what a child was given, which pages of a file are kept in memory, and files
// that the system makes up.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/files/layers/file_layer.h"
#include "platform/files/writing/durable_file.h"
#include "platform/processes/child_process.h"
#include "platform/processes/peer_user.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using testing::TemporaryHome;

ChildProcessOptions shell(const std::string& script) {
    return {.executable = "/bin/sh", .arguments = {"-c", script}};
}

TEST(ChildProcess, StandsApartFromThisProcess) {
    // Ignored and blocked signals, descriptors without the flag, the process group, the streams, the
    // directory.
    struct sigaction earlier{};
    struct sigaction ignoring{};
    ignoring.sa_handler = SIG_IGN;
    ::sigaction(SIGUSR1, &ignoring, &earlier);
    const FileDescriptor leaky(::fcntl(STDERR_FILENO, F_DUPFD, 90));
    sigset_t blocked;
    sigset_t earlierMask;
    sigfillset(&blocked);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &earlierMask);
    const auto status = runAndCapture("/bin/cat", {"/proc/self/status"});
    const auto descriptors = runAndCapture("/bin/ls", {"/proc/self/fd"});
    const auto group = runAndCapture("/bin/sh", {"-c", "cut -d' ' -f5 /proc/$$/stat; echo $$"});
    ::pthread_sigmask(SIG_SETMASK, &earlierMask, nullptr);
    ::sigaction(SIGUSR1, &earlier, nullptr);

    EXPECT_NE(status.output.find("SigIgn:\t0000000000000000"), std::string::npos);
    EXPECT_NE(status.output.find("SigBlk:\t0000000000000000"), std::string::npos);
    EXPECT_EQ(descriptors.output, "0\n1\n2\n3\n") << "3 is the listing's own";
    const std::size_t line = group.output.find('\n');
    EXPECT_EQ(group.output.substr(0, line + 1), group.output.substr(line + 1));
}

TEST(Directory, ReadFile_ReadsFilesWhoseSizeIsAnnouncedAsZero) {
    const auto content = readFile("/proc/self/mountinfo");
    ASSERT_TRUE(content);
    EXPECT_FALSE(content->empty());
    EXPECT_FALSE(readFile("/proc/self/mountinfo", 10));
}

TEST(CreateDirectories, SaysWhyWhereNobodyCanMakeAny) {
    EXPECT_EQ(createDirectories(posixFileLayer(), "/proc/nothing/here").value(), ENOENT);
}

// Run by the next test in a process of its own.
TEST(ChildProcessHelper, DISABLED_StartsAChildAndIsKilled) {
    ChildProcess child(
        shell("trap '' TERM HUP INT; echo $$ > \"$CORVANE_TEST_PID_FILE\"; while :; do sleep 1000; done"));
    child.wait();
}

TEST(ChildProcess, DiesWithThisProcessEvenWhenThatIsKilled) {
    const TemporaryHome home;
    const std::string pidFile = home.at("pid");
    ASSERT_EQ(::mkfifo(pidFile.c_str(), 0600), 0);
    ChildProcess helper(
        {.executable = std::filesystem::read_symlink("/proc/self/exe"),
         .arguments = {"--gtest_filter=ChildProcessHelper.*", "--gtest_also_run_disabled_tests"},
         .environment = {{"CORVANE_TEST_PID_FILE", pidFile}}});
    const FileDescriptor reader(::open(pidFile.c_str(), O_RDONLY | O_CLOEXEC));
    std::string text(32, '\0');
    const ssize_t got = ::read(reader.get(), text.data(), text.size());
    ASSERT_GT(got, 0);
    const auto grandchild = static_cast<pid_t>(std::stol(text));
    const FileDescriptor end(static_cast<int>(::syscall(SYS_pidfd_open, grandchild, 0)));
    ASSERT_TRUE(end);
    helper.kill();
    EXPECT_EQ(helper.wait(), 128 + SIGKILL);
    pollfd event{end.get(), POLLIN, 0};
    EXPECT_EQ(::poll(&event, 1, 60'000), 1);
}

TEST(PeerUser, IsToldFromAnotherOne) {
    const TemporaryHome home;
    ::chmod(home.path().c_str(), 0755);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    home.at("s").copy(address.sun_path, sizeof(address.sun_path) - 1);
    const auto* name = reinterpret_cast<const sockaddr*>(&address);
    const FileDescriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(::bind(listener.get(), name, sizeof(address)), 0);
    ASSERT_EQ(::listen(listener.get(), 2), 0);
    ::chmod(home.at("s").c_str(), 0777);
    constexpr uid_t nobody = 65534;
    for (const bool isOther : {false, true}) {
        if (isOther && ::geteuid() != 0) GTEST_SKIP() << "only root can be somebody else";
        const pid_t child = ::fork();
        if (child == 0) {
            const int caller = ::socket(AF_UNIX, SOCK_STREAM, 0);
            if (isOther && ::setuid(nobody) != 0) ::_exit(1);
            if (::connect(caller, name, sizeof(address)) != 0) ::_exit(1);
            char byte = 0;
            ::_exit(::read(caller, &byte, 1) == 0 ? 0 : 1); // until the other end has looked
        }
        {
            const FileDescriptor peer(::accept(listener.get(), nullptr, nullptr));
            EXPECT_EQ(isPeerOfSameUser(peer.get()), !isOther);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
}

// Pages of the file that are in the page cache.
std::size_t cachedPages(const std::string& path, std::size_t bytes) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY));
    void* mapped = ::mmap(nullptr, bytes, PROT_READ, MAP_SHARED, file.get(), 0);
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> resident((bytes + pageSize - 1) / pageSize);
    EXPECT_EQ(::mincore(mapped, bytes, resident.data()), 0);
    ::munmap(mapped, bytes);
    return static_cast<std::size_t>(
        std::ranges::count_if(resident, [](unsigned char page) { return page & 1; }));
}

bool keepsFilesInMemory(const std::string& folder) {
    struct statfs status{};
    return ::statfs(folder.c_str(), &status) != 0 || status.f_type == 0x01021994 ||
           status.f_type == 0x794c7630;
}

TEST(FileLayer, BypassCache_LeavesNoPageOfAFileJustWritten) {
    const TemporaryHome home;
    if (keepsFilesInMemory(home.path()))
        GTEST_SKIP() << "the temporary folder has no storage below its cache";
    FileLayer& files = posixFileLayer();
    constexpr std::size_t size = 300'000;
    const std::string path = home.write("mail.eml", std::string(size, 'x'));
    for (const bool isSynced : {true, false}) {
        const FileDescriptor written(files.open(path, O_WRONLY | O_TRUNC, 0));
        ASSERT_EQ(files.write(written.get(), std::string(size, 'y').data(), size),
                  static_cast<ssize_t>(size));
        ASSERT_EQ(isSynced ? files.sync(written.get()) : 0, 0);
        ASSERT_GT(cachedPages(path, size), 0U);
        const FileDescriptor reader(files.open(path, O_RDONLY, 0));
        files.bypassCache(reader.get());
        EXPECT_EQ(cachedPages(path, size), 0U) << "synced: " << isSynced;
        EXPECT_EQ(readFile(path), std::string(size, 'y'));
    }
}

} // namespace
} // namespace corvane::platform
