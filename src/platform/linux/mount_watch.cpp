#include "platform/linux/mount_watch.h"

#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "platform/child_process.h"
#include "platform/linux/mount_table.h"

namespace corvane::platform {

namespace {

std::vector<MountEntry> currentTable(int descriptor) {
    std::string text;
    std::array<char, 16384> buffer{};
    ::lseek(descriptor, 0, SEEK_SET);
    while (true) {
        const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
        if (got > 0) text.append(buffer.data(), static_cast<std::size_t>(got));
        if (got == 0 || (got < 0 && errno != EINTR)) return parseMountTable(text);
    }
}

class MountWatch final : public MountSubscription {
  public:
    explicit MountWatch(std::function<void(MountEvent)> handler)
      : handler_(std::move(handler))
      , stop_(makePipe())
      , table_(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)) {
        if (!table_) throw std::system_error(errno, std::generic_category(), "/proc/self/mountinfo");
        // Read here: what is mounted after the subscription began must not be taken for its start.
        mounts_ = currentTable(table_.get());
        thread_ = std::thread([this] { run(); });
    }

    ~MountWatch() override {
        stop_.writeEnd.reset();
        thread_.join();
    }

  private:
    // The kernel signals a change of the table as an exceptional condition of the open file.
    void run() {
        while (true) {
            std::array<pollfd, 2> events{{{table_.get(), POLLPRI, 0}, {stop_.readEnd.get(), POLLIN, 0}}};
            if (::poll(events.data(), events.size(), -1) < 0) continue;
            if (events[1].revents != 0) return;
            if (events[0].revents != 0) tellChanges();
        }
    }

    void tellChanges() {
        auto now = currentTable(table_.get());
        const auto changes = mountChanges(mounts_, now);
        mounts_ = std::move(now);
        for (const MountEvent event : changes) handler_(event);
    }

    std::function<void(MountEvent)> handler_;
    Pipe stop_;
    FileDescriptor table_;
    std::vector<MountEntry> mounts_;
    std::thread thread_;
};

} // namespace

std::unique_ptr<MountSubscription> watchMounts(std::function<void(MountEvent)> handler) {
    return std::make_unique<MountWatch>(std::move(handler));
}

} // namespace corvane::platform
