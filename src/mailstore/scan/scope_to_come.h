// The accounts of a scan that began before they were known. Any thread.
#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "mailstore/folders/mailbox_url.h"
#include "text/mutex.h"

namespace corvane::mailstore {

// Which accounts a scan covers.
struct AccountScope {
    std::vector<std::string> urlPrefixes; // empty for every account
    AccountNames namesByPrefix;           // keys and names
    std::vector<std::string> names;       // in the order in which they are shown
};

class ScopeToCome {
  public:
    // To be called once.
    void set(AccountScope scope) {
        const text::MutexLock lock(mutex_);
        scope_ = std::move(scope);
        changed_.notifyAll();
    }

    // Waits for it; nullopt when a stop is requested first.
    std::optional<AccountScope> wait(const std::stop_token& stop) {
        text::MutexLock lock(mutex_);
        changed_.wait(lock, stop, [this]() REQUIRES(mutex_) { return scope_.has_value(); });
        return scope_;
    }

  private:
    text::Mutex mutex_;
    text::StoppableCondition changed_;
    std::optional<AccountScope> scope_ GUARDED_BY(mutex_);
};

} // namespace corvane::mailstore
