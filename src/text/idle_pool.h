// Keeps costly working objects (matchers, formatters) between uses, so that one shared owner serves many
// threads: each use takes an object of its own, or makes one when all are taken, and gives it back. It never
// holds more objects than were in use at one time. Thread-safe.
#pragma once

#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "text/mutex.h"

namespace corvane::text {

template <class T>
class IdlePool {
  public:
    class Lease {
      public:
        Lease(IdlePool& pool, std::unique_ptr<T> object)
          : pool_(pool)
          , object_(std::move(object)) {}

        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;

        ~Lease() { pool_.release(std::move(object_)); }

        T& operator*() const noexcept { return *object_; }

        T* operator->() const noexcept { return object_.get(); }

      private:
        IdlePool& pool_;
        std::unique_ptr<T> object_;
    };

    // `make` gives a std::unique_ptr<T>, or throws.
    template <class Make>
    Lease take(Make make) {
        std::unique_ptr<T> object = acquireIdle();
        if (object == nullptr) object = make();
        return Lease(*this, std::move(object));
    }

  private:
    std::unique_ptr<T> acquireIdle() {
        const MutexLock lock(mutex_);
        if (idle_.empty()) return nullptr;
        std::unique_ptr<T> object = std::move(idle_.back());
        idle_.pop_back();
        return object;
    }

    void release(std::unique_ptr<T> object) noexcept {
        const MutexLock lock(mutex_);
        try {
            idle_.push_back(std::move(object));
        } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): then there is one idle object less
        }
    }

    Mutex mutex_;
    std::vector<std::unique_ptr<T>> idle_ GUARDED_BY(mutex_);
};

} // namespace corvane::text
