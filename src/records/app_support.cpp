#include "records/app_support.h"

#include <cstdlib>
#include <system_error>

#include <fmt/format.h>
#include <unistd.h>

#include "platform/durable_file.h"
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
        if (const auto error = platform::createDirectories(*files_, base_))
            throw std::system_error(error, base_);
    }
    return base_;
}

std::string CorvaneAppSupport::filePath(std::string_view name) const {
    return platform::joinPath(base_, name);
}

void CorvaneAppSupport::writeFile(std::string_view name, std::string_view content) const {
    const std::string path = platform::joinPath(baseDirectory(true), name);
    if (const auto error = platform::writeFileAtomically(*files_, path, content))
        throw std::system_error(error, path);
}

bool CorvaneAppSupport::isRunningTests() {
    static const bool running =
        std::getenv("XCTestConfigurationFilePath") != nullptr || std::getenv("XCTestBundlePath") != nullptr;
    return running;
}

} // namespace corvane
