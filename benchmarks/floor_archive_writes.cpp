// Floor of the archive run: reads each file of a folder, writes its bytes into another one with fsync, reads
// them back past the cache and hashes what came (SHA-256). Usage: floor_archive_writes SOURCE TARGET. Prints
// the seconds.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/sha256.h"
#include "platform/files/writing/storage_flush.h"

namespace {

[[noreturn]] void die(const char* what) {
    std::perror(what);
    std::exit(1);
}

std::vector<char> readWhole(int file) {
    struct stat info{};
    if (::fstat(file, &info) != 0) die("fstat");
    std::vector<char> bytes(static_cast<std::size_t>(info.st_size));
    if (::read(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) die("read");
    return bytes;
}

void copyProven(const std::string& from, const std::string& to) {
    const int source = ::open(from.c_str(), O_RDONLY);
    if (source < 0) die("open source");
    const std::vector<char> bytes = readWhole(source);
    ::close(source);
    const int target = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (target < 0) die("open target");
    if (::write(target, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) die("write");
    if (::fsync(target) != 0) die("fsync");
    ::close(target);
    const int check = ::open(to.c_str(), O_RDONLY);
    if (check < 0) die("open check");
    corvane::platform::dropCachedPages(check);
    const std::vector<char> found = readWhole(check);
    if (found != bytes) die("compare");
    const auto hash = corvane::platform::sha256({found.data(), found.size()});
    if (hash == corvane::platform::Sha256Digest()) die("hash");
    ::close(check);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string source = argv[1];
    const std::string target = argv[2];
    ::mkdir(target.c_str(), 0755);
    std::vector<std::string> names;
    DIR* folder = ::opendir(source.c_str());
    if (folder == nullptr) die("opendir");
    while (const dirent* entry = ::readdir(folder)) {
        if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    }
    ::closedir(folder);
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& name : names) copyProven(source + "/" + name, target + "/" + name);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", elapsed.count());
}
