#include "archive/opening/archived_cloud_file_opener.h"

#include <exception>
#include <memory>

#include "platform/paths.h"
#include "text/mutex.h"

namespace corvane {

namespace {

using archive::CloudFileState;
using Clock = std::chrono::steady_clock;

const char* textOf(ArchivedCloudFileOpener::OpenError::Kind kind) {
    return kind == ArchivedCloudFileOpener::OpenError::Kind::missing ? "归档文件已不存在"
                                                                     : "云端文件尚未取回";
}

// Ends early at a stop.
void pause(std::chrono::milliseconds time, const std::stop_token& stop) {
    text::Mutex mutex;
    text::Condition stopped;
    const std::stop_callback wake(stop, [&] {
        const text::MutexLock lock(mutex);
        stopped.notifyAll();
    });
    const auto end = Clock::now() + time;
    text::MutexLock lock(mutex);
    while (!stop.stop_requested() && stopped.waitUntil(lock, end)) {
    }
}

} // namespace

ArchivedCloudFileOpener::OpenError::OpenError(Kind kind)
  : std::runtime_error(textOf(kind))
  , kind_(kind) {}

bool ArchivedCloudFileOpener::isAvailable(const std::string& path) {
    const auto look = [path](const auto& platform) { return archive::cloudFileState(platform, path); };
    return stateBy(look, {}) == CloudFileState::available;
}

bool ArchivedCloudFileOpener::isGone(const std::string& path) {
    const auto look = [path](const auto& platform) { return archive::cloudFileState(platform, path); };
    return stateBy(look, {}) == CloudFileState::gone;
}

void ArchivedCloudFileOpener::ensureLocal(const std::string& path, const std::stop_token& stop) {
    bringBack(path, [path](const auto& platform) { return archive::cloudFileState(platform, path); }, stop);
}

std::string ArchivedCloudFileOpener::ensureLocal(const ArchivedEntry& entry, const std::stop_token& stop) {
    const std::string root = entry.locationRootPath.str();
    const std::string relativePath = entry.record.emlRelativePath.str();
    std::string path = platform::joinPath(root, relativePath);
    const auto look = [root, relativePath](const auto& platform) {
        return archive::archivedFileState(platform, root, relativePath);
    };
    bringBack(path, look, stop);
    return path;
}

std::optional<CloudFileState> ArchivedCloudFileOpener::stateBy(const Look& look,
                                                               const std::stop_token& stop) {
    const auto state = std::make_shared<CloudFileState>(CloudFileState::unknown);
    const auto job = [state, look, &platform = platform_](platform::JobLimit&) {
        try {
            *state = look(platform);
        } catch (const std::exception&) { // no memory
            *state = CloudFileState::unknown;
        }
    };
    const bool hasAnswered = worker_.run(limits_.ofLook, job, stop);
    if (stop.stop_requested()) throw OpeningCancelled();
    if (!hasAnswered) return std::nullopt;
    return *state;
}

void ArchivedCloudFileOpener::bringBack(const std::string& path, const Look& look,
                                        const std::stop_token& stop) {
    auto state = stateBy(look, stop);
    if (state == CloudFileState::unknown) throw OpenError(OpenError::Kind::unavailable);
    if (state == CloudFileState::inCloud)
        worker_.run(
            limits_.ofLook, [path, &platform = platform_](auto&) { platform.requestDownload(path); }, stop);
    for (int looks = 0; state != CloudFileState::available; ++looks) {
        if (state == CloudFileState::gone) throw OpenError(OpenError::Kind::missing);
        if (!state || looks == limits_.looks) throw OpenError(OpenError::Kind::unavailable);
        pause(limits_.betweenLooks, stop);
        state = stateBy(look, stop);
    }
}

} // namespace corvane
