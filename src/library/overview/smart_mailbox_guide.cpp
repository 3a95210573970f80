#include "library/overview/smart_mailbox_guide.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace corvane {

std::string conditionText(const SmartMailboxGuideTarget& target) {
    if (target.years.empty()) return {};
    const auto [lowest, highest] = std::ranges::minmax(target.years);
    return fmt::format("「账号」是「{}」;并「收到日期」在 {} 年 1 月 1 日之后、在 {} 年 1 月 1 日之前。",
                       target.accountName, lowest, highest + 1);
}

std::string suggestedName(const SmartMailboxGuideTarget& target) {
    if (target.years.empty()) return "可删除";
    const auto [lowest, highest] = std::ranges::minmax(target.years);
    return target.years.size() == 1 ? fmt::format("可删除·{}", lowest)
                                    : fmt::format("可删除·{}–{}", lowest, highest);
}

std::vector<SmartMailboxGuideTarget> smartMailboxGuideTargets(std::span<const MailName> mailNames,
                                                              std::span<const std::int64_t> offeredYears) {
    std::vector<std::int64_t> years(offeredYears.begin(), offeredYears.end());
    std::ranges::sort(years);
    const auto repeated = std::ranges::unique(years);
    years.erase(repeated.begin(), repeated.end());
    std::vector<SmartMailboxGuideTarget> targets;
    for (const MailName& name : mailNames) {
        bool isFirst = true;
        for (const std::int64_t year : years) {
            if (std::exchange(isFirst, false) || targets.back().years.back() + 1 != year)
                targets.push_back({.accountName = name.label, .years = {}, .nameInMail = name.inMail});
            targets.back().years.push_back(year);
        }
    }
    return targets;
}

std::vector<SmartMailboxGuideStep> smartMailboxGuideSteps(const SmartMailboxGuideTarget& target) {
    std::vector<std::string> condition = {conditionText(target)};
    if (!target.nameInMail.empty())
        condition.push_back(fmt::format("这个账户在 Mail 的菜单里显示为「{}」,请选它。", target.nameInMail));
    return {
        {.title = "新建智能邮箱",
         .lines = {"打开 Apple Mail,顶部菜单栏选「邮箱」→「新建智能邮箱…」。",
                   fmt::format("名字随意,比如「{}」", suggestedName(target))}},
        {.title = "设置条件(选「符合以下全部条件」)", .lines = std::move(condition)},
        {.title = "", .lines = {"点「好」后,打开左侧这个智能邮箱 → 按 ⌘A 全选 → 删除。"}},
        {.title = "清空废纸篓,释放空间", .lines = {"菜单「邮箱」→「清除已删除的邮件」,本机空间就释放了。"}}};
}

} // namespace corvane
