#include "mailstore/sqlite/mail_index_query_error.h"

#include <utility>

namespace corvane {

namespace {

std::optional<std::string> description(MailIndexQueryError::Kind kind, const std::string& detail) {
    using Kind = MailIndexQueryError::Kind;
    switch (kind) {
    case Kind::launchFailed:
        return "读取 Mail 索引失败：" + detail;
    case Kind::queryFailed:
        return detail.empty() ? "读取 Mail 索引失败，请稍后重试。" : "读取 Mail 索引失败：" + detail;
    case Kind::timedOut:
        return "Apple Mail 正在更新邮件索引，当前扫描已停止。请先等待 Mail 同步完成，或完全退出 Apple Mail "
               "后再点“更新 "
               "Mail 数据”。";
    case Kind::unreadableOutput:
        return "读取 Mail 索引结果失败，请稍后重试。";
    case Kind::unavailable:
        break;
    }
    return std::nullopt;
}

} // namespace

MailIndexQueryError::MailIndexQueryError(Kind kind, std::string detail)
  : std::runtime_error(description(kind, detail).value_or("Mail index unavailable"))
  , kind_(kind)
  , detail_(std::move(detail)) {}

std::optional<std::string> MailIndexQueryError::errorDescription() const {
    return description(kind_, detail_);
}

} // namespace corvane
