#include "archive/archive_error.h"

#include <cerrno>

#include <fmt/format.h>

#include "records/texts/error_reasons.h"

namespace corvane {

namespace {

const char* textOf(ArchiveError::Case kind, int errorNumber) {
    switch (kind) {
    case ArchiveError::Case::emlxParseFailed:
        return "无法解析 .emlx 文件结构";
    case ArchiveError::Case::writeVerificationFailed:
        return "写入后从磁盘校验内容不一致（数据未真正落盘）";
    case ArchiveError::Case::writeFailed:
        return errorNumber == ENOSPC || errorNumber == EDQUOT ? "写入文件失败：磁盘已满，空间不足"
                                                              : "写入文件失败";
    case ArchiveError::Case::readTimedOut:
        return "读取邮件文件超时（邮件所在的位置无响应），已跳过该邮件。";
    case ArchiveError::Case::couldNotLook:
        return "无法查看归档中已有的文件（目标位置没有给出回答，或文件还在云端），已跳过该邮件，没有写入任何"
               "内容。";
    case ArchiveError::Case::writeTimedOut:
        break;
    }
    return "写入超时（目标位置无响应，可能是 "
           "iCloud/云盘离线或正在下载占位符），已跳过该邮件。建议改用本地位置。";
}

} // namespace

ArchiveError::ArchiveError(Case kind, int errorNumber)
  : std::runtime_error(textOf(kind, errorNumber))
  , kind_(kind) {}

std::string fileErrorReason(bool isInCloud, int errorNumber) {
    return isInCloud ? "文件还在云端，没有下载到本机" : systemErrorReason(errorNumber);
}

ArchiveAccessError::ArchiveAccessError(std::string_view what, std::string_view path, std::string_view reason)
  : std::runtime_error(fmt::format("{}“{}”：{}", what, path, reason)) {}

ArchiveAccessError::ArchiveAccessError(std::string_view what, std::string_view path, int errorNumber)
  : ArchiveAccessError(what, path, systemErrorReason(errorNumber)) {}

} // namespace corvane
