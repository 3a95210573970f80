#include "screens/library/rows/row_texts.h"

#include <chrono>
#include <utility>

#include <QPointer>

#include "mime/body/body_snippets.h"
#include "screens/library/rows/marked_text.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using namespace std::chrono_literals;

// More than fit in a window; what was scrolled past meanwhile isn't read.
constexpr std::size_t mostWanted = 60;
constexpr std::size_t mostKnown = 4'000;
constexpr auto readPause = 20ms;

struct TextJob {
    std::string text;
    std::string query;
};

RowTexts::RowText rowText(const TextJob& job, const TaskHandle&) {
    RowTexts::RowText row;
    row.preview = screens::shownLine(mime::rowPreviewText(job.text).value_or(std::string()));
    if (const auto found = mime::snippet(job.text, job.query))
        row.snippet = screens::markedPieces(found->text, found->highlighted);
    return row;
}

} // namespace

RowTexts::RowTexts(ModelContext& context, BodyTexts& texts, QObject* parent)
  : QObject(parent)
  , texts_(texts)
  , tasks_(context.tasks) {
    for (QTimer* timer : {&readTimer_, &changeTimer_}) {
        timer->setSingleShot(true);
        timer->setInterval(readPause);
    }
    connect(&readTimer_, &QTimer::timeout, this, &RowTexts::readWanted);
    connect(&changeTimer_, &QTimer::timeout, this, &RowTexts::changed);
}

const RowTexts::RowText* RowTexts::of(const ArchivedEmailRecord& record) const {
    const auto known = known_.find(record.id.view());
    if (known != known_.end()) return &known->second;
    wanted_.push_back(record);
    if (!readTimer_.isActive()) readTimer_.start();
    return nullptr;
}

void RowTexts::setQuery(const std::string& query) {
    if (query_ == query) return;
    query_ = query;
    forget();
}

void RowTexts::forget() {
    known_.clear();
    Q_EMIT changed();
}

void RowTexts::readWanted() {
    if (known_.size() > mostKnown) known_.clear();
    const std::vector<ArchivedEmailRecord> wanted = std::exchange(wanted_, {});
    const std::size_t first = wanted.size() > mostWanted ? wanted.size() - mostWanted : 0;
    for (std::size_t at = first; at < wanted.size(); ++at) {
        const SharedText id = wanted[at].id;
        if (!known_.try_emplace(id).second) continue;
        texts_.indexedBody(wanted[at], [self = QPointer(this), id](const std::optional<std::string>& text) {
            if (self) self->handleText(id, text);
        });
    }
}

void RowTexts::handleText(const SharedText& id, const std::optional<std::string>& text) {
    if (!text || text->empty()) return;
    tasks_.start(TaskPriority::userInitiated, TextJob{*text, query_}, &rowText,
                 [this, id, query = query_](RowText row) {
                     if (query == query_) keep(id, std::move(row));
                 });
}

void RowTexts::keep(const SharedText& id, RowText text) {
    known_.insert_or_assign(id, std::move(text));
    if (!changeTimer_.isActive()) changeTimer_.start();
}

} // namespace corvane
