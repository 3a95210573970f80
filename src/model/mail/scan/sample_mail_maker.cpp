#include "model/mail/scan/sample_mail_maker.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "platform/files/directory.h"
#include "platform/paths.h"
#include "platform/processes/child_process.h"
#include "worker/python_runtime.h"

namespace corvane {

namespace fs = std::filesystem;

std::vector<std::string> sampleMailMakers(const platform::Platform& platform) {
    std::vector<std::string> makers;
    for (const std::string& folder : platform.programResourceFolders())
        makers.push_back(platform::joinPath(folder, "make_sample_store.py"));
#ifdef CORVANE_DEVELOPMENT_SAMPLE_MAKER
    makers.emplace_back(CORVANE_DEVELOPMENT_SAMPLE_MAKER);
#endif
    return makers;
}

std::string findSampleMailMaker(const platform::Platform& platform, const std::string& mailRoot,
                                const std::vector<std::string>& makers) {
    std::error_code ignored;
    if (fs::exists(mailRoot, ignored)) return {};
    const auto maker = std::ranges::find_if(makers, platform::isRegularFile);
    return maker != makers.end() && findPythonRuntime(platform) ? *maker : std::string();
}

void makeSampleMail(const platform::Platform& platform, const std::string& maker, const std::string& home) {
    if (fs::exists(platform::joinPath(home, "Library/Mail"))) return;
    const auto python = findPythonRuntime(platform);
    if (!python) throw std::runtime_error("python3");
    // Made beside its place and then moved there: a try that was cut off never looks like a store.
    const std::string draft = home + ".new";
    fs::remove_all(draft);
    fs::create_directories(platform::parentPath(home));
    const platform::CapturedOutput run =
        platform::runAndCapture(*python, {"-B", maker, "--no-odd", "--quiet", draft});
    if (run.exitStatus != 0) throw std::runtime_error(run.errorOutput);
    fs::remove_all(home);
    fs::rename(draft, home);
}

} // namespace corvane
