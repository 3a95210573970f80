// The words with which the user makes a smart mailbox in Apple Mail that gathers mail which is archived, and
// deletes it there by hand. Pure functions, any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "library/overview/account_groups.h"

namespace corvane {

struct SmartMailboxGuideTarget {
    std::string accountName; // its label
    std::vector<std::int64_t> years;
    std::string nameInMail{}; // told beside the label; empty where there is nothing to tell

    friend bool operator==(const SmartMailboxGuideTarget&, const SmartMailboxGuideTarget&) = default;
};

// One line that spans from the lowest to the highest year and all between; empty without years.
std::string conditionText(const SmartMailboxGuideTarget& target);

std::string suggestedName(const SmartMailboxGuideTarget& target);

// One target for each account, by the names that Mail has for them, and run of adjoining years, so that no
// guide spans a year that isn't among them. Years may come in any order and repeatedly; without any there is
// no target.
std::vector<SmartMailboxGuideTarget> smartMailboxGuideTargets(std::span<const MailName> mailNames,
                                                              std::span<const std::int64_t> offeredYears);

struct SmartMailboxGuideStep {
    std::string title; // empty: the text alone
    std::vector<std::string> lines;

    friend bool operator==(const SmartMailboxGuideStep&, const SmartMailboxGuideStep&) = default;
};

// What is to be done in Apple Mail, in order.
std::vector<SmartMailboxGuideStep> smartMailboxGuideSteps(const SmartMailboxGuideTarget& target);

inline constexpr std::string_view smartMailboxGuideTitle = "建立智能邮箱,批量删除已备份的邮件";
inline constexpr std::string_view smartMailboxGuideLead =
    "这些邮件都已备份到归档库。在 Apple Mail "
    "里建一个「智能邮箱」把它们集中起来,就能一次全选删除、清空废纸篓,把本机空间释放出来。";
inline constexpr std::string_view smartMailboxGuidePromise = "App 不会替你删邮件,删除由你在 Mail 里确认。";
inline constexpr std::string_view smartMailboxGuideScopeTitle = "要圈定的范围";
inline constexpr std::string_view smartMailboxGuideClosing =
    "只删这个智能邮箱里的邮件——它们都在归档库里有备份。云端未下载的邮件不会被圈进来,不受影响。";

} // namespace corvane
