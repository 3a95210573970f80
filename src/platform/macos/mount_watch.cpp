#include "platform/macos/mount_watch.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <sys/event.h>
#include <sys/mount.h>
#include <unistd.h>

#include "platform/macos/mount_list.h"
#include "platform/processes/child_process.h"

namespace corvane::platform::macos {

namespace {

// The folder of a disk stays for a moment after the disk has gone, and the name of one that comes is there a
// moment after it.
constexpr timespec settlingTime{.tv_sec = 0, .tv_nsec = 500'000'000};

[[noreturn]] void throwLastError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

class MountWatch final : public MountSubscription {
  public:
    explicit MountWatch(std::function<void(MountEvent)> handler)
      : handler_(std::move(handler))
      , stop_(makePipe())
      , queue_(::kqueue()) {
        if (!queue_) throwLastError("kqueue");
        std::array<struct kevent, 2> wanted{};
        EV_SET(wanted.data(), 0, EVFILT_FS, EV_ADD | EV_CLEAR, VQ_MOUNT | VQ_UNMOUNT, 0, nullptr);
        EV_SET(&wanted[1], static_cast<uintptr_t>(stop_.readEnd.get()), EVFILT_READ, EV_ADD, 0, 0, nullptr);
        if (::kevent(queue_.get(), wanted.data(), static_cast<int>(wanted.size()), nullptr, 0, nullptr) != 0)
            throwLastError("kevent");
        // Read here: what is mounted after the subscription began must not be taken for its start.
        mounts_ = mountedFileSystems().value_or(std::vector<Mount>());
        thread_ = std::thread([this] { run(); });
    }

    MountWatch(const MountWatch&) = delete;
    MountWatch& operator=(const MountWatch&) = delete;

    ~MountWatch() override {
        stop_.writeEnd.reset();
        thread_.join();
    }

  private:
    void run() {
        bool isSettling = false;
        while (true) {
            std::array<struct kevent, 2> events{};
            const int count = ::kevent(queue_.get(), nullptr, 0, events.data(),
                                       static_cast<int>(events.size()), isSettling ? &settlingTime : nullptr);
            if (count < 0 && errno != EINTR) return;
            for (int i = 0; i < count; ++i) {
                if (events[static_cast<std::size_t>(i)].filter == EVFILT_READ) return;
            }
            if (count == 0) notifyChanges();
            if (count >= 0) isSettling = count > 0;
        }
    }

    void notifyChanges() {
        auto now = mountedFileSystems();
        if (!now) return;
        const auto changes = mountChanges(mounts_, *now);
        mounts_ = std::move(*now);
        for (const MountEvent event : changes) handler_(event);
    }

    std::function<void(MountEvent)> handler_;
    Pipe stop_;
    FileDescriptor queue_;
    std::vector<Mount> mounts_;
    std::thread thread_;
};

} // namespace

std::unique_ptr<MountSubscription> watchMounts(std::function<void(MountEvent)> handler) {
    return std::make_unique<MountWatch>(std::move(handler));
}

} // namespace corvane::platform::macos
