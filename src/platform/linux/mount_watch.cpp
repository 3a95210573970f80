#include "platform/linux/mount_watch.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <libmount/libmount.h>
#include <poll.h>

#include "platform/linux/mount_table.h"
#include "platform/processes/child_process.h"

namespace corvane::platform {

namespace {

// libmount returns what errno holds, below zero.
int checked(int result) {
    if (result < 0) throw std::system_error(-result, std::generic_category(), mountTableFile);
    return result;
}

class MountWatch final : public MountSubscription {
  public:
    explicit MountWatch(std::function<void(MountEvent)> handler)
      : handler_(std::move(handler))
      , stop_(makePipe())
      , monitor_(mnt_new_monitor(), mnt_unref_monitor) {
        checked(monitor_ ? mnt_monitor_enable_kernel(monitor_.get(), 1) : -ENOMEM);
        changes_ = checked(mnt_monitor_get_fd(monitor_.get()));
        // Read here: what is mounted after the subscription began must not be taken for its start.
        mounts_ = readMountTable();
        thread_ = std::thread([this] { run(); });
    }

    ~MountWatch() override {
        stop_.writeEnd.reset();
        thread_.join();
    }

  private:
    void run() {
        std::array<pollfd, 2> events{{{changes_, POLLIN, 0}, {stop_.readEnd.get(), POLLIN, 0}}};
        while (true) {
            if (::poll(events.data(), events.size(), -1) < 0) continue;
            if (events[1].revents != 0) return;
            if (events[0].revents != 0) handleChanges();
        }
    }

    // The event is cleared before the table is read: a change in between gives another event.
    void handleChanges() {
        mnt_monitor_event_cleanup(monitor_.get());
        auto now = readMountTable();
        const auto changes = mountChanges(mounts_, now);
        mounts_ = std::move(now);
        for (const MountEvent event : changes) handler_(event);
    }

    std::function<void(MountEvent)> handler_;
    Pipe stop_;
    std::unique_ptr<libmnt_monitor, decltype(&mnt_unref_monitor)> monitor_;
    int changes_ = -1; // a descriptor of the monitor's
    std::vector<MountEntry> mounts_;
    std::thread thread_;
};

} // namespace

std::unique_ptr<MountSubscription> watchMounts(std::function<void(MountEvent)> handler) {
    return std::make_unique<MountWatch>(std::move(handler));
}

} // namespace corvane::platform
