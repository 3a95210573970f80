#include "screens/library/detail/archived_mail.h"

#include <utility>

#include <QPointer>

#include "locations/place_names.h"
#include "locations/places/cloud_providers.h"
#include "records/texts/formatters.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using Status = ArchivedOriginalPresenceStatus;

constexpr qsizetype recipientsLimit = 4'000;
constexpr qsizetype subjectLimit = 1'000;

struct ArrangeJob {
    std::shared_ptr<const std::string> text;
    mime::ShownParts shown;
    bool quotedExpanded = false;
    std::string query;
};

BodyNote noteOf(ArchivedMail::BodyState state) {
    using State = ArchivedMail::BodyState;
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

ArchivedMail::ArchivedMail(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , arrangeTask_(model.context().tasks) {
    connect(&model.library().loader, &LibraryLoader::archiveLocationsChanged, this, [this] {
        Q_EMIT changed();
        Q_EMIT bodyChanged();
    });
    connect(&model.library().loader, &LibraryLoader::archivedFilesChanged, this, [this] {
        Q_EMIT changed();
        Q_EMIT bodyChanged();
    });
    connect(&model.library().mailOpening, &ArchivedMailOpening::changed, this, &ArchivedMail::changed);
    connect(&model.library().bodyTexts, &BodyTexts::bodyIndexProgressChanged, this,
            &ArchivedMail::bodyChanged);
    connect(&model.library().bodyTexts, &BodyTexts::bodyIndexFinished, this, [this] {
        if (text_ && text_->empty()) load();
    });
    connect(&model.library().list, &LibraryListFlow::searchChanged, this, [this] {
        if (text_) arrange();
    });
}

void ArchivedMail::show(const ArchivedEntry* entry, Status status) {
    const bool isSame = entry == nullptr ? !entry_
                                         : entry_ && entry_->record.id == entry->record.id &&
                                               entry_->locationRootPath == entry->locationRootPath;
    const bool isEqual = isSame && (entry == nullptr || entry_->record == entry->record);
    if (isEqual && status_ == status) return;
    status_ = status;
    if (!isEqual) entry_ = entry == nullptr ? std::nullopt : std::optional(*entry);
    if (!isSame) load();
    Q_EMIT changed();
    if (!isSame) Q_EMIT mailChanged();
}

void ArchivedMail::load() {
    ccRecipients_.clear();
    quotedExpanded_ = false;
    quotedRecipientsExpanded_ = false;
    text_.reset();
    body_ = {};
    arrangeTask_.cancel();
    Q_EMIT bodyChanged();
    if (!entry_) return;
    const auto isShown = [self = QPointer(this), id = entry_->id()] {
        return self && self->entry_ && self->entry_->id() == id;
    };
    BodyTexts& texts = model_.library().bodyTexts;
    texts.prepareIndexedBody(*entry_, [this, isShown](const std::optional<std::string>& text) {
        if (isShown()) handleText(text);
    });
    texts.ccRecipients(*entry_, [this, isShown](const std::optional<std::string>& cc) {
        if (!isShown() || !cc) return;
        ccRecipients_ = screens::shownLine(*cc, recipientsLimit);
        Q_EMIT changed();
    });
}

// One may come of an earlier look at the same mail, before it had a text.
void ArchivedMail::handleText(const std::optional<std::string>& text) {
    if (text_ && (!text || text->empty())) return;
    text_ = std::make_shared<const std::string>(text.value_or(std::string()));
    if (text_->empty()) {
        Q_EMIT bodyChanged();
    } else {
        arrange();
    }
}

void ArchivedMail::arrange() {
    if (!text_ || text_->empty()) return;
    arrangeTask_.start(TaskPriority::userInitiated,
                       ArrangeJob{text_, {false, quotedRecipientsExpanded_}, quotedExpanded_, query()},
                       &arranged, [this](ShownBody body) {
                           body_ = std::move(body);
                           Q_EMIT bodyChanged();
                       });
}

void ArchivedMail::setQuotedExpanded(bool expanded) {
    if (quotedExpanded_ == expanded) return;
    quotedExpanded_ = expanded;
    arrange();
}

bool ArchivedMail::hidesRecipients() const {
    return body_.parts.showQuoted(query(), quotedExpanded_) && !quotedRecipientsExpanded_;
}

void ArchivedMail::showAllRecipients() {
    quotedRecipientsExpanded_ = true;
    arrange();
}

void ArchivedMail::prepareTexts() {
    model_.library().bodyTexts.rebuildBodyTextIndex(false);
}

ArchivedMail::BodyState ArchivedMail::bodyState() const {
    if (!body_.pieces.empty()) return BodyState::Text;
    if (!text_ || !text_->empty()) return BodyState::Loading;
    const FileState file = fileState();
    if (file == FileState::Gone) return BodyState::Lost;
    if (file == FileState::Unplugged) return isOnDisk() ? BodyState::DiskAway : BodyState::PlaceAway;
    if (model_.library().bodyTexts.bodyIndexProgress()) return BodyState::Preparing;
    return file == FileState::Unknown ? BodyState::NotLooked : BodyState::Unavailable;
}

BodyNote ArchivedMail::bodyNote() const {
    return noteOf(bodyState());
}

const ArchiveLocation* ArchivedMail::place() const {
    return entry_ ? model_.library().loader.location(entry_->locationRootPath) : nullptr;
}

bool ArchivedMail::isOnDisk() const {
    const ArchiveLocation* location = place();
    return location != nullptr && location->kind == ArchiveLocation::Kind::removable;
}

ArchivedMail::FileState ArchivedMail::fileState() const {
    return entry_ ? stateOfFile(model_.library().loader, *entry_) : FileState::Unknown;
}

ArchivedMail::FileState ArchivedMail::stateOfFile(const LibraryLoader& library, const ArchivedEntry& entry) {
    const ArchiveLocation* location = library.location(entry.locationRootPath);
    if (location != nullptr && !location->isConnected) return FileState::Unplugged;
    switch (library.archivedFiles()->presence(entry.locationRootPath, entry.record.emlRelativePath)) {
    case ArchivedFilePresence::there:
        return FileState::Here;
    case ArchivedFilePresence::inCloud:
        return FileState::InCloud;
    case ArchivedFilePresence::gone:
        return FileState::Gone;
    case ArchivedFilePresence::unknown:
        break;
    }
    return FileState::Unknown;
}

QString ArchivedMail::subject() const {
    return entry_ ? screens::shownLine(entry_->record.subject, subjectLimit) : QString();
}

QString ArchivedMail::sender() const {
    return entry_ ? screens::shownLine(entry_->record.sender, subjectLimit) : QString();
}

QString ArchivedMail::recipients() const {
    return entry_ ? screens::shownLine(entry_->record.recipients, recipientsLimit) : QString();
}

QString ArchivedMail::dateText() const {
    return entry_ ? screens::wholeText(formatMailDate(entry_->record.date)) : QString();
}

QString ArchivedMail::sizeText() const {
    return entry_ ? screens::wholeText(formatByteCount(entry_->record.sizeBytes)) : QString();
}

QString ArchivedMail::placeName() const {
    if (!entry_) return {};
    return screens::shownLine(mailLocationName(place(), entry_->locationRootPath.view()));
}

QString ArchivedMail::placeSymbol() const {
    const ArchiveLocation* location = place();
    if (location == nullptr) return QStringLiteral("folder");
    return location->isConnected ? QString::fromUtf8(location->symbol())
                                 : QStringLiteral("externaldrive.badge.questionmark");
}

QString ArchivedMail::stateText() const {
    if (fileState() == FileState::Gone) return QStringLiteral("归档文件不见了");
    const QString archived = fileState() == FileState::Unplugged ? QStringLiteral("归档位置未连接")
                             : fileState() == FileState::InCloud ? QStringLiteral("已归档到云端")
                             : fileState() == FileState::Unknown ? QStringLiteral("还没有查看归档文件")
                                                                 : QStringLiteral("已归档");
    switch (status_) {
    case Status::present:
        return archived + QStringLiteral(" · 原件仍在 Mail");
    case Status::missing:
        return archived + QStringLiteral(" · 已从 Mail 删除");
    case Status::unknown:
        break;
    }
    return archived + QStringLiteral(" · 未对照 Mail");
}

// Green is only what is there and was compared.
QString ArchivedMail::stateTone() const {
    if (fileState() == FileState::Gone) return QStringLiteral("danger");
    if (fileState() == FileState::Unplugged) return QStringLiteral("attention");
    const bool isKnown = fileState() == FileState::Here && status_ != Status::unknown;
    return isKnown ? QStringLiteral("safe") : QString();
}

QString ArchivedMail::stateSymbol() const {
    switch (fileState()) {
    case FileState::Gone:
        return QStringLiteral("octagon-x");
    case FileState::Unplugged:
        return QStringLiteral("unplug");
    case FileState::InCloud:
        return QStringLiteral("cloud");
    case FileState::Unknown:
        return QStringLiteral("circle-question-mark");
    case FileState::Here:
        break;
    }
    return status_ == Status::unknown ? QStringLiteral("archive") : QStringLiteral("circle-check");
}

bool ArchivedMail::isOpening() const {
    return entry_ && model_.library().mailOpening.openingArchiveID() == entry_->id();
}

QString ArchivedMail::openTitle() const {
    return isRetrieving() ? QStringLiteral("正在从云端取回...") : QStringLiteral("打开归档邮件");
}

QString ArchivedMail::openHelp() const {
    if (fileState() == FileState::Unplugged)
        return QStringLiteral("归档位置当前不可访问，连接后才能打开归档邮件");
    if (isOpening()) return QStringLiteral("正在准备完整归档邮件");
    const auto provider = entry_ ? cloudProviderName(entry_->locationRootPath) : std::nullopt;
    if (!provider) return QStringLiteral("打开归档库里的完整邮件");
    return QStringLiteral("完整邮件保存在 %1。如果文件已被系统卸载，点击后会先从云端取回。")
        .arg(screens::shownLine(*provider));
}

QString ArchivedMail::wholeMail() const {
    if (!entry_) return {};
    QStringList lines = {QStringLiteral("主题：") + screens::wholeText(entry_->record.subject),
                         QStringLiteral("发件人：") + screens::wholeText(entry_->record.sender),
                         QStringLiteral("收件人：") + screens::wholeText(entry_->record.recipients)};
    if (!ccRecipients_.isEmpty()) lines += QStringLiteral("抄送：") + ccRecipients_;
    lines += QStringLiteral("日期：") + dateText();
    if (text_ && !text_->empty()) lines += u'\n' + screens::wholeText(mime::withoutMarkers(*text_));
    return lines.join(u'\n');
}

} // namespace corvane
