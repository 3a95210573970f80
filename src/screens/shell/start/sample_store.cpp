#include "screens/shell/start/sample_store.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "platform/child_process.h"
#include "platform/paths.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

bool isThere(const std::string& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

std::string firstThere(const std::vector<std::string>& paths) {
    for (const std::string& path : paths)
        if (isThere(path)) return path;
    return {};
}

std::string pythonRuntime(const platform::Platform& platform) {
    const char* chosen = std::getenv("CORVANE_PYTHON"); // NOLINT(concurrency-mt-unsafe): never set by us
    if (chosen != nullptr && *chosen != '\0') return chosen;
    return firstThere(platform.pythonRuntimes());
}

// Made beside its place and then moved there: a broken try never looks like a store.
void makeSamples(const platform::Platform& platform, const std::string& maker, const std::string& home) {
    if (isThere(platform::joinPath(home, "Library/Mail"))) return;
    const std::string draft = home + ".new";
    fs::remove_all(draft);
    fs::create_directories(platform::parentPath(home));
    const platform::CapturedOutput run =
        platform::runAndCapture(pythonRuntime(platform), {"-B", maker, "--no-odd", "--quiet", draft});
    if (run.exitStatus != 0) throw std::runtime_error(run.errorOutput);
    fs::remove_all(home);
    fs::rename(draft, home);
}

struct MakeJob {
    const platform::Platform& platform;
    std::string maker;
    std::string home;
};

// The user's text; empty when the samples are there.
QString failureOfMaking(const MakeJob& job, const TaskHandle&) {
    try {
        makeSamples(job.platform, job.maker, job.home);
    } catch (const std::exception& error) {
        return QStringLiteral("没能生成示例邮件：") + QString::fromLocal8Bit(error.what()).trimmed();
    }
    return {};
}

} // namespace

SampleStore::SampleStore(ModelContext& context, std::vector<std::string> makers, QObject* parent)
  : QObject(parent)
  , context_(context)
  , task_(context.tasks) {
    look(std::move(makers));
}

std::vector<std::string> SampleStore::makersOf(const platform::Platform& platform) {
    std::vector<std::string> makers;
    for (const std::string& folder : platform.programResourceFolders())
        makers.push_back(platform::joinPath(folder, "make_sample_store.py"));
    makers.emplace_back(CORVANE_DEVELOPMENT_SAMPLE_MAKER);
    return makers;
}

bool SampleStore::open() const {
    return platform::parentPath(platform::parentPath(context_.mailRootPath)).ends_with("/sample-home");
}

void SampleStore::make() {
    if (busy_ || !offered()) return;
    busy_ = true;
    failure_.clear();
    Q_EMIT changed();
    task_.start(TaskPriority::userInitiated, MakeJob{context_.platform, maker_, sampleHome()},
                &failureOfMaking, [this](const QString& failure) {
                    busy_ = false;
                    failure_ = failure;
                    Q_EMIT changed();
                    if (failure.isEmpty()) Q_EMIT ready(QString::fromStdString(sampleHome()));
                });
}

std::string SampleStore::sampleHome() const {
    return context_.support.filePath("sample-home");
}

void SampleStore::look(std::vector<std::string> makers) {
    struct Job {
        const platform::Platform& platform;
        std::string mailRoot;
        std::vector<std::string> makers;
    };

    task_.start(
        TaskPriority::utility, Job{context_.platform, context_.mailRootPath, std::move(makers)},
        [](const Job& job, const TaskHandle&) {
            return isThere(job.mailRoot) || pythonRuntime(job.platform).empty() ? std::string()
                                                                                : firstThere(job.makers);
        },
        [this](std::string maker) {
            maker_ = std::move(maker);
            Q_EMIT changed();
        });
}

} // namespace corvane
