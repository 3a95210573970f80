// One run of the program without a display: the application's model and the event loop around it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/corvane_view_model.h"
#include "model/leftover_removal.h"
#include "model/model_context.h"
#include "model/owned_platform.h"
#include "platform/platform.h"

namespace corvane {
class QuickLibrary;
}

namespace corvane::cli {

// The operation failed; the message is for the user.
class CommandFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The command can't be run as it was typed; the message is for the user and may have several lines.
class WrongUsage : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Session {
  public:
    // `home` replaces the user's home; empty for the real one.
    explicit Session(const std::string& home);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    // Made by the first call: it reads the caches of what the window shows.
    [[nodiscard]] CorvaneViewModel& model();

    // What answers for single mails without the library; null where only a load can tell. Looked for once.
    [[nodiscard]] const QuickLibrary* quickLibrary();

    // It has turned out not to fit.
    void dropQuickLibrary();

    // What components of the model work with that a command needs without the rest of it.
    [[nodiscard]] ModelContext& context() { return *context_; }

    // By loadLibrary().
    [[nodiscard]] bool isLibraryLoaded() const { return isLibraryLoaded_; }

    [[nodiscard]] const platform::Platform& platform() const { return *platform_; }

    // Runs the event loop until everything that was started has ended. `onInterrupt` is called at SIGINT and
    // SIGTERM; without one the wait ends there with an Interrupted.
    void waitUntilIdle(const std::function<void()>& onInterrupt = {});

    // Warns of archives that no answer counts, since their index can't be read; once of each. Those of a live
    // load are told when it was waited for.
    void tellUnreadable(const std::vector<std::string>& roots);

    // For a command that was to keep just this: throws CommandFailure with the text of what couldn't be kept,
    // unless that is empty.
    void requireKept(std::string unkept);

    // How far the last scan has to be restored.
    enum class Restored {
        whole,
        withoutCounts, // those of Mail's index are read beside what comes next
    };

    // Restores the last scan with what is archived, and waits for it. Throws CommandFailure when the cache
    // can't be read.
    void restoreLastScan(Restored restored = Restored::whole);

  private:
    void waitUntil(bool (TaskRunner::*isReached)() const, const std::function<void()>& onInterrupt);

    friend void loadLibrary(Session& session);

    OwnedPlatform platform_;
    std::unique_ptr<ModelContext> context_;
    std::optional<LeftoverRemoval> leftovers_;
    std::unique_ptr<CorvaneViewModel> model_;
    bool isLibraryLoaded_ = false;
    std::set<std::string> toldRoots_; // that can't be read
    std::string toldFailure_;         // to keep something
    bool isQuickLibraryKnown_ = false;
    std::unique_ptr<const QuickLibrary> quickLibrary_;
};

// Makes a live load of the library.
void loadLibrary(Session& session);

// SIGINT or SIGTERM came while a command waited that has nothing to bring in order.
class Interrupted : public std::runtime_error {
  public:
    Interrupted()
      : std::runtime_error("已中断") {}
};

// From here on the first SIGINT or SIGTERM asks the command to end, and ends the process within ten seconds
// in any case; the second one ends it at once.
void catchInterrupts();

// One of them came.
bool wasInterrupted();

} // namespace corvane::cli
