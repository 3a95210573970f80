// A scan or a full refresh in this process, and when each of its stages was reached: what the user waits for
// ends with the published list. Prints one JSON object; all times are seconds from the start.
//
//   measure_refresh scan|refresh HOME
//
// The shell is started through a script that notes when each piece of the candidate query began and ended, so
// that it shows how much they are slowed by what runs beside them, and what is left to do behind the last.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <fmt/format.h>
#include <sys/resource.h>

#include "model/corvane_view_model.h"
#include "processor_time.h"

namespace {

using namespace corvane;
using Clock = std::chrono::system_clock; // that of the script

double secondsOf(Clock::time_point time) {
    return std::chrono::duration<double>(time.time_since_epoch()).count();
}

double now() {
    return secondsOf(Clock::now());
}

// The real platform with another shell.
class WatchedPlatform : public platform::Platform {
  public:
    WatchedPlatform(const std::string& home, std::string shell)
      : real_(platform::makePlatform(home))
      , shell_(std::move(shell)) {}

    std::string realUserHomeDirectory() const override { return real_->realUserHomeDirectory(); }

    std::string applicationSupportDirectory() const override { return real_->applicationSupportDirectory(); }

    std::string settingsPath() const override { return real_->settingsPath(); }

    std::string temporaryDirectory() const override { return real_->temporaryDirectory(); }

    std::string sqliteShellPath() const override { return shell_; }

    std::optional<std::vector<platform::Volume>> mountedVolumes() const override {
        return real_->mountedVolumes();
    }

    std::optional<platform::Volume> volumeOf(const std::string& path) const override {
        return real_->volumeOf(path);
    }

    std::optional<std::string> removableMountPoint(const std::string& path) const override {
        return real_->removableMountPoint(path);
    }

    std::optional<std::string> fileSystemTypeName(const std::string& path) const override {
        return real_->fileSystemTypeName(path);
    }

    std::optional<std::int64_t> availableCapacity(const std::string& path) const override {
        return real_->availableCapacity(path);
    }

    bool isCloudPlaceholder(const std::string& path) const override {
        return real_->isCloudPlaceholder(path);
    }

    void markHidden(const std::string& path) const override { real_->markHidden(path); }

    std::unique_ptr<platform::MountSubscription>
    subscribeToMounts(std::function<void(platform::MountEvent)> handler) const override {
        return real_->subscribeToMounts(std::move(handler));
    }

  private:
    std::unique_ptr<platform::Platform> real_;
    std::string shell_;
};

void writeShellScript(const std::string& path, const std::string& notes) {
    std::ofstream(path) << "#!/bin/bash\n[[ $(readlink /proc/$$/fd/1) == */corvane-envelope-* ]] || "
                        << "exec /usr/bin/sqlite3 \"$@\"\n"
                        << "begin=$EPOCHREALTIME\n/usr/bin/sqlite3 \"$@\"\nstatus=$?\n"
                        << "echo \"$begin $EPOCHREALTIME\" >> '" << notes << "'\nexit $status\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

struct Span {
    double begin = 0;
    double end = 0;
};

Span notedQuery(const std::string& notes) {
    Span query;
    std::ifstream file(notes);
    for (Span piece; file >> piece.begin >> piece.end;) {
        if (query.begin == 0) query.begin = piece.begin;
        query.end = std::max(query.end, piece.end);
    }
    return query;
}

void waitUntilIdle(TaskRunner& tasks) {
    do {
        QCoreApplication::processEvents(tasks.isIdle() ? QEventLoop::AllEvents
                                                       : QEventLoop::WaitForMoreEvents);
        if (tasks.isIdle()) QCoreApplication::processEvents();
    } while (!tasks.isIdle());
}

void measure(const std::string& command, const std::string& home) {
    const std::string shell = home + "/watched-sqlite3";
    const std::string notes = home + "/query-times";
    std::filesystem::remove(notes);
    writeShellScript(shell, notes);
    const WatchedPlatform platform(home, shell);
    ModelContext context(platform);
    CorvaneViewModel model(context);
    waitUntilIdle(context.tasks);
    const double begin = now();
    const double usedBefore = processorSeconds(RUSAGE_SELF);
    double scanning = 0;
    double merged = 0;
    double available = 0;
    double published = 0;
    double used = 0;
    QObject::connect(&model.mail().scanFlow, &ScanFlow::scanStarted, [&] { scanning = now(); });
    QObject::connect(&model.mail().catalog, &MessageCatalog::messagesChanged, [&] { merged = now(); });
    QObject::connect(&model.mail().catalog, &MessageCatalog::availabilityPublished,
                     [&] { available = now(); });
    QObject::connect(&model.mail().visible, &VisibleMessages::visibleMessagesChanged, [&] {
        published = now();
        used = processorSeconds(RUSAGE_SELF) - usedBefore;
    });
    if (command == "refresh")
        model.mail().scanFlow.refreshAllMailData();
    else
        model.mail().scanFlow.scan();
    waitUntilIdle(context.tasks);
    if (model.mail().scanFlow.state().kind != MailScanState::Kind::finished) {
        throw std::runtime_error("the scan failed: " + model.mail().scanFlow.state().text);
    }
    const Span query = notedQuery(notes);
    fmt::print(
        R"({{"messages":{},"scanning":{:.3f},"queryBegins":{:.3f},"queryEnds":{:.3f},"merged":{:.3f},)"
        R"("available":{:.3f},"published":{:.3f},"processorSeconds":{:.3f},"shellProcessorSeconds":{:.3f}}})"
        "\n",
        model.mail().visible.visibleMessages()->size(), scanning - begin, query.begin - begin,
        query.end - begin, merged - begin, available - begin, published - begin, used,
        processorSeconds(RUSAGE_CHILDREN));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const std::string command = argc == 3 ? argv[1] : "";
    if (command != "scan" && command != "refresh") {
        fmt::print(stderr, "usage: measure_refresh scan|refresh HOME\n");
        return 2;
    }
    measure(command, argv[2]);
}
