// A mutex, its lock and its condition, as those of the standard library and at their cost, but annotated:
// clang then proves that whoever touches a member marked GUARDED_BY holds its mutex. They stand in the lowest
// folder because all others have locks; scripts/check-clang runs the proof. Other compilers see no
// annotation.
//
// https://clang.llvm.org/docs/ThreadSafetyAnalysis.html
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <utility>

#if defined(__clang__)
#define CORVANE_THREAD_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define CORVANE_THREAD_ATTRIBUTE(attribute)
#endif

// Of a type.
#define CAPABILITY(name) CORVANE_THREAD_ATTRIBUTE(capability(name))
#define SCOPED_CAPABILITY CORVANE_THREAD_ATTRIBUTE(scoped_lockable)
// Of a member: touched only with the mutex.
#define GUARDED_BY(mutex) CORVANE_THREAD_ATTRIBUTE(guarded_by(mutex))
// Of a function: called with the mutex, and it is still held afterwards. Of a predicate, too.
#define REQUIRES(...) CORVANE_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
// Of a function: has the mutex from here on, or no longer.
#define ACQUIRE(...) CORVANE_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) CORVANE_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define NO_THREAD_SAFETY_ANALYSIS CORVANE_THREAD_ATTRIBUTE(no_thread_safety_analysis)

namespace corvane::text {

class CAPABILITY("mutex") Mutex {
  public:
    void lock() ACQUIRE() { mutex_.lock(); }

    void unlock() RELEASE() { mutex_.unlock(); }

  private:
    friend class MutexLock;

    std::mutex mutex_;
};

// Holds the mutex while it lives, but for a time between unlock() and lock().
class SCOPED_CAPABILITY MutexLock {
  public:
    explicit MutexLock(Mutex& mutex) ACQUIRE(mutex)
      : lock_(mutex.mutex_) {}

    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    ~MutexLock() RELEASE() = default;

    void lock() ACQUIRE() { lock_.lock(); }

    void unlock() RELEASE() { lock_.unlock(); }

  private:
    friend class Condition;

    std::unique_lock<std::mutex> lock_;
};

// A wait gives the mutex away and has it again when it returns. The predicate runs with the mutex: it is
// marked REQUIRES of it.
class Condition {
  public:
    template <class Predicate>
    void wait(MutexLock& lock, Predicate isReached) NO_THREAD_SAFETY_ANALYSIS {
        condition_.wait(lock.lock_, isReached);
    }

    // False when the time came first. May return true for no reason.
    template <class Clock, class Duration>
    bool waitUntil(MutexLock& lock, const std::chrono::time_point<Clock, Duration>& time) {
        return condition_.wait_until(lock.lock_, time) == std::cv_status::no_timeout;
    }

    void notifyOne() noexcept { condition_.notify_one(); }

    void notifyAll() noexcept { condition_.notify_all(); }

  private:
    std::condition_variable condition_;
};

// The same for waits that a stop ends.
class StoppableCondition {
  public:
    template <class Predicate>
    void wait(MutexLock& lock, std::stop_token stop, Predicate isReached) NO_THREAD_SAFETY_ANALYSIS {
        condition_.wait(lock, std::move(stop), isReached);
    }

    void notifyOne() noexcept { condition_.notify_one(); }

    void notifyAll() noexcept { condition_.notify_all(); }

  private:
    std::condition_variable_any condition_;
};

} // namespace corvane::text
