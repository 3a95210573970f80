#include "archive/archive_error.h"

#include <fmt/format.h>

#include "records/error_reasons.h"

namespace corvane {

namespace {

const char* textOf(ArchiveError::Case kind) {
    switch (kind) {
    case ArchiveError::Case::emlxParseFailed:
        return "无法解析 .emlx 文件结构";
    case ArchiveError::Case::writeVerificationFailed:
        return "写入后从磁盘校验内容不一致（数据未真正落盘）";
    case ArchiveError::Case::writeFailed:
        return "写入文件失败";
    case ArchiveError::Case::writeTimedOut:
        break;
    }
    return "写入超时（目标位置无响应，可能是 "
           "iCloud/云盘离线或正在下载占位符），已跳过该邮件。建议改用本地位置。";
}

} // namespace

ArchiveError::ArchiveError(Case kind)
  : std::runtime_error(textOf(kind))
  , kind_(kind) {}

ArchiveAccessError::ArchiveAccessError(std::string_view what, std::string_view path, std::string_view reason)
  : std::runtime_error(fmt::format("{}“{}”：{}", what, path, reason)) {}

ArchiveAccessError::ArchiveAccessError(std::string_view what, std::string_view path, int errorNumber)
  : ArchiveAccessError(what, path, systemErrorReason(errorNumber)) {}

} // namespace corvane
