#include "archive/archive_error.h"

#include <cerrno>
#include <system_error>

#include <fmt/format.h>

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

std::string reasonOf(int errorNumber) {
    switch (errorNumber) {
    case EACCES:
    case EPERM:
        return "没有访问权限";
    case EROFS:
        return "磁盘是只读的";
    case ENOSPC:
    case EDQUOT:
        return "磁盘空间不足";
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return "位置不存在或磁盘未连接";
    case ENOTDIR:
    case EEXIST:
        return "同名文件占用了该位置";
    case EISDIR:
        return "同名文件夹占用了该位置";
    case ENAMETOOLONG:
        return "路径过长";
    case ELOOP:
        return "该位置是指向别处的链接";
    case ETIMEDOUT:
        return "目标位置无响应";
    case EIO:
        return "磁盘读写出错";
    default:
        return fmt::format("系统错误（{}）", std::generic_category().message(errorNumber));
    }
}

} // namespace

ArchiveError::ArchiveError(Case kind)
  : std::runtime_error(textOf(kind))
  , kind_(kind) {}

ArchiveAccessError::ArchiveAccessError(std::string_view what, std::string_view path, std::string_view reason)
  : std::runtime_error(fmt::format("{}“{}”：{}", what, path, reason)) {}

ArchiveAccessError::ArchiveAccessError(std::string_view what, std::string_view path, int errorNumber)
  : ArchiveAccessError(what, path, reasonOf(errorNumber)) {}

} // namespace corvane
