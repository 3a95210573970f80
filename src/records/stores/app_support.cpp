#include "records/stores/app_support.h"

#include <cstdlib>
#include <system_error>

#include <fmt/format.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/files/writing/leftovers.h"
#include "platform/files/writing/private_files.h"
#include "platform/paths.h"

namespace corvane {

namespace {

std::string parentOfBase(const platform::Platform& platform) {
    if (!CorvaneAppSupport::isRunningTests()) return platform.applicationSupportDirectory();
    return platform::joinPath(platform.temporaryDirectory(), fmt::format("CorvaneTests-{}", ::getpid()));
}

} // namespace

CorvaneAppSupport::CorvaneAppSupport(const platform::Platform& platform, platform::FileLayer& files)
  : base_(platform::joinPath(parentOfBase(platform), "Corvane"))
  , files_(&files) {}

std::string CorvaneAppSupport::baseDirectory(bool createDirectory) const {
    if (createDirectory) {
        if (const auto error = createBaseDirectory()) throw std::system_error(error, base_);
    }
    return base_;
}

std::error_code CorvaneAppSupport::createBaseDirectory() const {
    const std::error_code error = platform::makePrivateFolder(*files_, base_);
    setWriteFailure(error.value());
    return error;
}

std::string CorvaneAppSupport::filePath(std::string_view name) const {
    return platform::joinPath(base_, name);
}

std::error_code CorvaneAppSupport::writeFile(std::string_view name, std::string_view content) const {
    return writeFile(name, [&](const platform::ByteSink& sink) { sink(content); });
}

std::error_code
CorvaneAppSupport::writeFile(std::string_view name,
                             const std::function<void(const platform::ByteSink&)>& produce) const {
    if (const auto error = createBaseDirectory()) return error;
    const std::error_code error = platform::writeFileAtomically(*files_, filePath(name), produce);
    setWriteFailure(error.value());
    return error;
}

std::error_code CorvaneAppSupport::writeFailure() const {
    return {writeFailure_->load(), std::generic_category()};
}

void CorvaneAppSupport::setWriteFailure(int error) const {
    if (error != 0) *writeFailure_ = error;
}

void CorvaneAppSupport::removeUnfinishedFiles() const {
    platform::removeUnfinishedFiles(base_);
    const auto entries = platform::listDirectory(base_, platform::HiddenEntries::include);
    if (!entries) return;
    for (const platform::DirectoryEntry& entry : *entries) {
        if (entry.kind == platform::EntryKind::directory)
            platform::removeUnfinishedFiles(filePath(entry.name));
    }
}

bool CorvaneAppSupport::isRunningTests() {
    static const bool running =
        std::getenv("XCTestConfigurationFilePath") != nullptr || std::getenv("XCTestBundlePath") != nullptr;
    return running;
}

} // namespace corvane
