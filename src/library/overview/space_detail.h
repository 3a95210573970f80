// The senders of one account that the user picks to back up. Lives with its screen on one thread.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "records/statistics_records.h"
#include "text/shared_text.h"

namespace corvane {

class SpaceSenderTicks {
  public:
    [[nodiscard]] const std::set<std::string, std::less<>>& selected() const { return selected_; }

    [[nodiscard]] bool isTicked(std::string_view senderKey) const { return selected_.contains(senderKey); }

    void toggle(std::string_view senderKey);

    // Drops senders that the account no longer has.
    void prune(const SpaceAccountUsage& account);

    struct Sum {
        std::int64_t senders = 0;
        std::int64_t messages = 0;
        std::int64_t bytes = 0;

        friend bool operator==(const Sum&, const Sum&) = default;
    };

    [[nodiscard]] Sum sumIn(const SpaceAccountUsage& account) const;

    // What is to be backed up: the messages of all ticked senders, each once.
    [[nodiscard]] SharedTextSet
    messageIDs(const std::function<std::vector<SharedText>(const std::string& senderKey)>& idsOf) const;

  private:
    std::set<std::string, std::less<>> selected_;
};

// "186 个发件人 · 17,413 封 · 5.72 GB · 本机可备份"; the senders are left out where there are none.
std::string spaceDetailCountLine(const SpaceAccountUsage& account);

inline constexpr std::string_view spaceDetailNote =
    "只列出本机已下载的邮件;云端未下载的不在此、也不会被处理。";

} // namespace corvane
