#include "archive/mail_email_archiver.h"

#include <fmt/format.h>

#include "archive/archive_run.h"
#include "platform/directory.h"

namespace corvane {

namespace {

// Reports at most once an interval, the first time at once.
class ThrottledProgress {
  public:
    ThrottledProgress(const MailEmailArchiver::Progress& progress, std::chrono::milliseconds interval)
      : progress_(progress)
      , interval_(interval) {}

    void show(std::int64_t completed, std::int64_t total, const SharedText& subject) {
        const auto now = std::chrono::steady_clock::now();
        if (last_ && now - *last_ < interval_) return;
        last_ = now;
        progress_({completed, total, subject.str(), fmt::format("正在归档：{}", subject.view())});
    }

  private:
    const MailEmailArchiver::Progress& progress_;
    std::chrono::milliseconds interval_;
    std::optional<std::chrono::steady_clock::time_point> last_;
};

} // namespace

bool archive::isLikelyNotDownloaded(const FileURL& url) {
    return url.path().view().find("/Mail/V") != std::string_view::npos &&
           !platform::fileExists(url.path().str());
}

EmailArchiveRunResult MailEmailArchiver::archive(const MessageList& messages, const std::string& root,
                                                 const Progress& progress, const std::stop_token& stop) {
    archive::ArchiveRun run(files_, root, options_.placeTimeLimit);
    run.prepare();
    const auto total = static_cast<std::int64_t>(messages.size());
    progress({0, total, std::nullopt,
              messages.empty() ? "没有要归档的邮件" : fmt::format("准备归档 {} 封邮件...", total)});
    ThrottledProgress throttled(progress, options_.progressInterval);
    for (std::int64_t number = 0; number < total; ++number) {
        if (stop.stop_requested()) {
            run.result().wasCancelled = true;
            break;
        }
        const MailMessageRecord& message = messages[static_cast<std::size_t>(number)];
        throttled.show(number, total, message.subject);
        run.add(message);
    }
    run.finish();
    progress({total, total, std::nullopt, "归档完成"});
    return std::move(run.result());
}

} // namespace corvane
