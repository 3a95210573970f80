#include "archive/archive_error.h"

namespace corvane {

namespace {

const char* textOf(ArchiveError::Kind kind) {
    switch (kind) {
    case ArchiveError::Kind::emlxParseFailed:
        return "无法解析 .emlx 文件结构";
    case ArchiveError::Kind::writeVerificationFailed:
        return "写入后从磁盘校验内容不一致（数据未真正落盘）";
    case ArchiveError::Kind::writeTimedOut:
        return "写入超时（目标位置无响应，可能是 "
               "iCloud/云盘离线或正在下载占位符），已跳过该邮件。建议改用本地位置。";
    case ArchiveError::Kind::writeFailed:
        break;
    }
    return "写入文件失败";
}

} // namespace

ArchiveError::ArchiveError(Kind kind)
  : std::runtime_error(textOf(kind))
  , kind_(kind) {}

} // namespace corvane
