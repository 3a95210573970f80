#include "platform/macos/menu_rules.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace corvane::platform::macos {

namespace {

constexpr std::array<std::string_view, 6> noiseSelectors{
    "showGuessPanel:", "orderFrontSubstitutionsPanel:", "uppercaseWord:", "startSpeaking:", "startDictation:",
    "performClose:"};
constexpr std::array<std::string_view, 4> servicesTitles{"服务", "服務", "Services", "サービス"};
constexpr std::array<std::string_view, 4> closeAllTitles{"全部关闭", "全部關閉", "Close All",
                                                         "すべてを閉じる"};

struct NamedAction {
    std::string_view action;
    std::string_view title;
};

constexpr std::array<NamedAction, 5> applicationActions{{{"orderFrontStandardAboutPanel:", "关于 Corvane"},
                                                         {"hide:", "隐藏 Corvane"},
                                                         {"hideOtherApplications:", "隐藏其他"},
                                                         {"unhideAllApplications:", "全部显示"},
                                                         {"terminate:", "退出 Corvane"}}};

bool contains(const auto& list, std::string_view text) {
    return std::ranges::find(list, text) != list.end();
}

} // namespace

bool shouldRemove(const MenuItemFacts& item) {
    if (contains(noiseSelectors, item.action) || contains(closeAllTitles, item.title)) return true;
    if (!item.hasSubmenu) return false;
    if (item.isServicesMenu || contains(servicesTitles, item.title)) return true;
    const auto first =
        std::ranges::find_if(item.submenuActions, [](const auto& text) { return !text.empty(); });
    return first != item.submenuActions.end() && contains(noiseSelectors, *first);
}

std::string_view titleOf(std::string_view action) {
    const auto named = std::ranges::find(applicationActions, action, &NamedAction::action);
    return named == applicationActions.end() ? std::string_view() : named->title;
}

std::vector<std::size_t> superfluousSeparators(const std::vector<bool>& isSeparator) {
    std::vector<std::size_t> superfluous;
    std::size_t end = isSeparator.size();
    while (end > 0 && isSeparator[end - 1]) --end;
    bool followsItem = false;
    for (std::size_t i = 0; i < end; ++i) {
        if (isSeparator[i] && !followsItem) superfluous.push_back(i);
        followsItem = !isSeparator[i];
    }
    for (std::size_t i = end; i < isSeparator.size(); ++i) superfluous.push_back(i);
    return superfluous;
}

} // namespace corvane::platform::macos
