#include "model/library/opening/opening_texts.h"

#include <fmt/format.h>

#include "locations/places/cloud_providers.h"

namespace corvane {

std::string openErrorText(ArchivedCloudFileOpener::OpenError::Kind kind, std::string_view root) {
    const std::string place = cloudProviderName(root).value_or("归档位置");
    if (kind == ArchivedCloudFileOpener::OpenError::Kind::unavailable)
        return fmt::format("无法从 {} 取回这封归档邮件。请确认网络可用，或等云盘同步完成后再试。", place);
    return fmt::format(
        "这封归档邮件的文件在 {} 上已经找不到了(可能被删除或移动)。它已不在你的归档备份里。\n\n"
        "可在右上角「⋯」菜单选「从归档库移除」清掉这条记录。",
        place);
}

std::string openingNote(platform::Opening opening) {
    switch (opening) {
    case platform::Opening::shownInFolder:
        return "这种文件可能会运行程序，为安全起见没有打开，已在它的文件夹中显示。";
    case platform::Opening::refused:
        return "系统没有能打开这个文件的程序。";
    case platform::Opening::opened:
        break;
    }
    return {};
}

std::string originalFailureText(OriginalFailure failure) {
    switch (failure) {
    case OriginalFailure::notInMail:
        return "没有在 Mail 中找到这封邮件的原件。";
    case OriginalFailure::noAnswer:
        return "无法读取 Mail 的索引，不知道原件是否还在。请确认 Mail 数据可以读取后再试。";
    case OriginalFailure::notOpened:
        break;
    }
    return "原件在 Mail 中，但系统没有能打开它的程序。";
}

} // namespace corvane
