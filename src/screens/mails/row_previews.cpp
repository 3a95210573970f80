#include "screens/mails/row_previews.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "mime/emlx.h"
#include "mime/preview_layout.h"
#include "mime/preview_text.h"
#include "platform/files/directory.h"
#include "records/texts/preview_placeholders.h"

namespace corvane {

namespace {

using namespace std::chrono_literals;

// Whoever scrolls on reads no row.
constexpr auto restPause = 120ms;

// More are in no view.
constexpr int mostRowsRead = 60;

struct Wanted {
    SharedText id;
    std::vector<FileURL> files;
};

std::string textOf(const FileURL& file) {
    try {
        std::string text = mime::previewTextWithoutWorker(file);
        return isPreviewText(text) && !mime::previewLooksCorrupt(text) ? text : std::string();
    } catch (const mime::MessageFileError&) {
        return {};
    }
}

std::string textOf(const std::vector<FileURL>& files) {
    const auto there = std::ranges::find_if(
        files, [](const FileURL& file) { return platform::fileExists(file.path().str()); });
    return there == files.end() ? std::string() : textOf(*there);
}

} // namespace

struct RowPreviews::Job {
    std::vector<Wanted> wanted;
};

struct RowPreviews::Read {
    MessageListModel::RowTexts texts; // empty ones where there is none
};

RowPreviews::RowPreviews(ModelContext& context, MessageListModel& list, QObject* parent)
  : QObject(parent)
  , list_(list)
  , task_(context.tasks) {
    pause_.setSingleShot(true);
    pause_.setInterval(restPause);
    connect(&pause_, &QTimer::timeout, this, &RowPreviews::read);
}

void RowPreviews::look(int first, int last) {
    first_ = std::max(0, first);
    last_ = std::min({last, list_.count() - 1, first_ + mostRowsRead - 1});
    pause_.start();
}

void RowPreviews::forget() {
    task_.cancel();
    read_.clear();
}

void RowPreviews::read() {
    Job job;
    for (int row = first_; row <= last_; ++row) {
        const MailMessageRecord* message = list_.record(row);
        if (message != nullptr && !isPreviewText(message->preview) && !read_.contains(message->id))
            job.wanted.push_back({message->id, message->allMessageFileURLs()});
    }
    if (job.wanted.empty()) return;
    task_.start(
        TaskPriority::utility, std::move(job),
        [](const Job& wanted, const TaskHandle& task) -> std::optional<Read> {
            Read read;
            for (const Wanted& each : wanted.wanted) {
                if (task.isCancelled()) return std::nullopt;
                read.texts.emplace_back(each.id, SharedText(textOf(each.files)));
            }
            return read;
        },
        [this](const Read& read) {
            for (const auto& [id, text] : read.texts) read_.insert(id);
            list_.addRowTexts(read.texts, first_, last_);
        });
}

} // namespace corvane
