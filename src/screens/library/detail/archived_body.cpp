#include "screens/library/detail/archived_body.h"

#include <utility>

#include <QPointer>

#include "screens/library/detail/archived_file_state.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

struct ArrangeJob {
    std::shared_ptr<const std::string> text;
    mime::ShownParts shown;
    bool quotedExpanded = false;
    std::string query;
};

BodyNote noteOf(ArchivedBody::State state) {
    using State = ArchivedBody::State;
    switch (state) {
    case State::Loading:
        return {"loader-circle", "正在读取正文…", ""};
    case State::DiskAway:
        return {"externaldrive.badge.questionmark", "请连接归档盘",
                "这封邮件的完整文件在 U 盘或外置盘上。连接后 App 会自动准备正文预览。"};
    case State::PlaceAway:
        return {"unplug", "归档位置没有连接", "这封邮件的完整文件在那里。连接后 App 会自动准备正文预览。"};
    case State::Preparing:
        return {"loader-circle", "正在准备正文预览", "完整邮件已经在归档库中，稍后会自动显示正文。"};
    case State::Lost:
        return {"octagon-x", "没有可以显示的正文", "归档文件不见了，搜索索引里也没有它的文字。"};
    case State::NotLooked:
        return {"circle-question-mark", "还没有查看归档文件", "看到归档文件后，这里会显示正文。"};
    case State::Unavailable:
        return {"doc.text.magnifyingglass", "正文预览暂不可用",
                "完整邮件已保存在归档库。点上方“打开归档邮件”可查看原始邮件。"};
    case State::Text:
        break;
    }
    return {};
}

ShownBody arranged(const ArrangeJob& job, const TaskHandle&) {
    mime::BodyParts parts = mime::splitBody(*job.text);
    mime::ShownParts shown = job.shown;
    shown.showQuoted = parts.showQuoted(job.query, job.quotedExpanded);
    return shownBody({std::move(parts), shown, job.query});
}

} // namespace

ArchivedBody::ArchivedBody(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , arrangeTask_(model.context().tasks) {
    connect(&model.library().loader, &LibraryLoader::archiveLocationsChanged, this, &ArchivedBody::changed);
    connect(&model.library().loader, &LibraryLoader::archivedFilesChanged, this, &ArchivedBody::changed);
    connect(&model.library().bodyTexts, &BodyTexts::bodyIndexProgressChanged, this, &ArchivedBody::changed);
    connect(&model.library().bodyTexts, &BodyTexts::bodyIndexFinished, this, [this] {
        if (text_ && text_->empty()) load();
    });
    connect(&model.library().list, &LibraryListFlow::searchChanged, this, [this] {
        if (text_ && query() != arrangedQuery_) arrange();
    });
}

void ArchivedBody::show(const std::optional<ArchivedEntry>& entry) {
    entry_ = entry;
    load();
}

void ArchivedBody::load() {
    quotedExpanded_ = false;
    quotedRecipientsExpanded_ = false;
    text_.reset();
    body_ = {};
    arrangeTask_.cancel();
    Q_EMIT changed();
    Q_EMIT piecesChanged();
    if (!entry_) return;
    model_.library().bodyTexts.prepareIndexedBody(
        *entry_, [self = QPointer(this), id = entry_->id()](const std::optional<std::string>& text) {
            if (self && self->entry_ && self->entry_->id() == id) self->handleText(text);
        });
}

// One may come of an earlier look at the same mail, before it had a text.
void ArchivedBody::handleText(const std::optional<std::string>& text) {
    if (text_ && (!text || text->empty())) return;
    text_ = std::make_shared<const std::string>(text.value_or(std::string()));
    if (text_->empty()) {
        Q_EMIT changed();
    } else {
        arrange();
    }
}

void ArchivedBody::arrange() {
    if (!text_ || text_->empty()) return;
    arrangedQuery_ = query();
    arrangeTask_.start(TaskPriority::userInitiated,
                       ArrangeJob{text_, {false, quotedRecipientsExpanded_}, quotedExpanded_, arrangedQuery_},
                       &arranged, [this](ShownBody body) {
                           body_ = std::move(body);
                           Q_EMIT changed();
                           Q_EMIT piecesChanged();
                       });
}

void ArchivedBody::setQuotedExpanded(bool expanded) {
    if (quotedExpanded_ == expanded) return;
    quotedExpanded_ = expanded;
    arrange();
}

bool ArchivedBody::hidesRecipients() const {
    return body_.parts.showQuoted(query(), quotedExpanded_) && !quotedRecipientsExpanded_;
}

void ArchivedBody::showAllRecipients() {
    quotedRecipientsExpanded_ = true;
    arrange();
}

void ArchivedBody::prepareTexts() {
    model_.library().bodyTexts.rebuildBodyTextIndex(false);
}

ArchivedBody::State ArchivedBody::state() const {
    using FileState = archived_file::State;
    if (!body_.pieces.empty()) return State::Text;
    if (!text_ || !text_->empty()) return State::Loading;
    const FileState file =
        entry_ ? archived_file::stateOf(model_.library().loader, *entry_) : FileState::Unknown;
    if (file == FileState::Gone) return State::Lost;
    if (file == FileState::Unplugged) return isOnDisk() ? State::DiskAway : State::PlaceAway;
    if (model_.library().bodyTexts.bodyIndexProgress()) return State::Preparing;
    return file == FileState::Unknown ? State::NotLooked : State::Unavailable;
}

BodyNote ArchivedBody::note() const {
    return noteOf(state());
}

bool ArchivedBody::isOnDisk() const {
    const ArchiveLocation* place =
        entry_ ? model_.library().loader.location(entry_->locationRootPath) : nullptr;
    return place != nullptr && place->kind == ArchiveLocation::Kind::removable;
}

QString ArchivedBody::copied() const {
    return text_ && !text_->empty() ? screens::wholeText(mime::withoutMarkers(*text_)) : QString();
}

} // namespace corvane
