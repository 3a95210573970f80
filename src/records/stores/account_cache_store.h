// "mail-account-cache.json": the accounts of the last look into the store.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "records/mail_account.h"
#include "records/mail_message_record.h"
#include "records/stores/app_support.h"

namespace corvane {

struct MailAccountCache {
    Date cachedAt{};
    std::string mailRootPath;
    std::vector<MailAccount> accounts;
};

class MailAccountCacheStore {
  public:
    explicit MailAccountCacheStore(CorvaneAppSupport support)
      : support_(std::move(support)) {}

    // Absent when there is no file or it belongs to another Mail root. Throws std::system_error or
    // JsonError.
    [[nodiscard]] std::optional<std::vector<MailAccount>> load(const std::string& mailRootPath) const;

    // A failure is ignored.
    void save(const std::string& mailRootPath, const std::vector<MailAccount>& accounts) const;

  private:
    CorvaneAppSupport support_;
};

} // namespace corvane
