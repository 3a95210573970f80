#include "support/scripted_platform.h"

#include <filesystem>
#include <system_error>

namespace corvane::testing {

namespace fs = std::filesystem;

ScriptedPlatform::ScriptedPlatform(const TemporaryHome& home)
  : temporary(home.makeFolder("tmp"))
  , home_(home) {}

void ScriptedPlatform::setShellScript(const std::string& lines) {
    shell = home_.write("shell.sh", "#!/bin/sh\n" + lines + "\n");
    fs::permissions(shell, fs::perms::owner_all);
}

std::vector<std::string> leftoversIn(const platform::Platform& platform) {
    std::vector<std::string> names;
    std::error_code noFolder;
    for (const auto& entry : fs::directory_iterator(platform.temporaryDirectory(), noFolder))
        names.push_back(entry.path().string());
    return names;
}

} // namespace corvane::testing
