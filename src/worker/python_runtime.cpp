#include "worker/python_runtime.h"

#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane {

std::optional<std::string> findPythonRuntime(const platform::Platform& platform) {
    std::vector<std::string> candidates;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the program never sets it
    if (const char* chosen = std::getenv("CORVANE_PYTHON")) candidates.emplace_back(chosen);
    for (const std::string& folder : platform.programResourceFolders())
        candidates.push_back(platform::joinPath(folder, "PythonRuntime/bin/python3"));
    for (std::string& runtime : platform.pythonRuntimes()) candidates.push_back(std::move(runtime));
    for (std::string& candidate : candidates) {
        if (platform::isExecutableFile(candidate)) return std::move(candidate);
    }
    return std::nullopt;
}

} // namespace corvane
