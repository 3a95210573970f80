// The application's private folder: caches, search databases and logs. Nothing in it is a source of truth,
// every file may be deleted at any time. Only this user may look into it. A value; all operations from any
// thread.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/files/layers/file_layer.h"
#include "platform/files/writing/durable_file.h"
#include "platform/platform.h"

namespace corvane {

// Held by the open window of a home.
inline constexpr const char* windowLockFileName = "window.lock";

class CorvaneAppSupport {
  public:
    explicit CorvaneAppSupport(const platform::Platform& platform,
                               platform::FileLayer& files = platform::posixFileLayer());

    // Path of the folder. Writers ask for its creation; throws std::system_error when that fails.
    std::string baseDirectory(bool createDirectory) const;

    // Path of a file directly in the folder, which need not exist.
    [[nodiscard]] std::string filePath(std::string_view name) const;

    // Creates the folder where it is missing, and narrows one that an earlier version left open to others.
    // Returns the error, or a falsy code.
    std::error_code createBaseDirectory() const;

    // Creates the folder and writes the file atomically. Returns the error, or a falsy code, which a writer
    // of what can be made again may ignore.
    std::error_code writeFile(std::string_view name, std::string_view content) const;

    // The same for content that is produced in chunks, see platform/durable_file.h.
    std::error_code writeFile(std::string_view name,
                              const std::function<void(const platform::ByteSink&)>& produce) const;

    // What could not be kept here by any copy of this object: the error of the last failure. A falsy code as
    // long as there is none.
    [[nodiscard]] std::error_code writeFailure() const;

    // For who writes here by other ways. `error` is an errno; 0 has no effect.
    void setWriteFailure(int error) const;

    // What was kept of files that were read for proofs counts again when the program next starts, although
    // some of it was found to be wrong: it could neither be replaced nor removed.
    [[nodiscard]] bool hasOutdatedReadings() const { return *hasOutdatedReadings_; }

    void setOutdatedReadings() const { *hasOutdatedReadings_ = true; }

    // Removes what writes of killed processes left in the folder and in those right below it. Blocks.
    void removeUnfinishedFiles() const;

    [[nodiscard]] platform::FileLayer& files() const { return *files_; }

    // True when a test bundle runs in this process: the folder then lies in the temporary directory.
    static bool isRunningTests();

  private:
    std::string base_;
    platform::FileLayer* files_;
    std::shared_ptr<std::atomic<int>> writeFailure_ = std::make_shared<std::atomic<int>>(0);
    std::shared_ptr<std::atomic<bool>> hasOutdatedReadings_ = std::make_shared<std::atomic<bool>>(false);
};

} // namespace corvane
