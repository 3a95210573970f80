#include "screens/library/detail/archived_mail.h"

#include <utility>

#include <QPointer>

#include "locations/place_names.h"
#include "locations/places/cloud_providers.h"
#include "records/texts/formatters.h"
#include "screens/texts/shown_text.h"

namespace corvane {

using FileState = archived_file::State;

namespace {

using Status = ArchivedOriginalPresenceStatus;

constexpr qsizetype recipientsLimit = 4'000;
constexpr qsizetype subjectLimit = 1'000;

QString textOf(FileState file, Status status) {
    if (file == FileState::Gone) return QStringLiteral("归档文件不见了");
    const QString archived = file == FileState::Unplugged ? QStringLiteral("归档位置未连接")
                             : file == FileState::InCloud ? QStringLiteral("已归档到云端")
                             : file == FileState::Unknown ? QStringLiteral("还没有查看归档文件")
                                                          : QStringLiteral("已归档");
    switch (status) {
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
QString toneOf(FileState file, Status status) {
    if (file == FileState::Gone) return QStringLiteral("danger");
    if (file == FileState::Unplugged) return QStringLiteral("attention");
    const bool isKnown = file == FileState::Here && status != Status::unknown;
    return isKnown ? QStringLiteral("safe") : QString();
}

QString symbolOf(FileState file, Status status) {
    switch (file) {
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
    return status == Status::unknown ? QStringLiteral("archive") : QStringLiteral("circle-check");
}

} // namespace

ArchivedMail::ArchivedMail(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , body_(model) {
    connect(&model.library().loader, &LibraryLoader::archiveLocationsChanged, this, &ArchivedMail::changed);
    connect(&model.library().loader, &LibraryLoader::archivedFilesChanged, this, &ArchivedMail::changed);
    connect(&model.library().mailOpening, &ArchivedMailOpening::changed, this, &ArchivedMail::changed);
    // Texts that were read anew come with their recipients.
    connect(&model.library().bodyTexts, &BodyTexts::bodyIndexFinished, this, &ArchivedMail::loadRecipients);
}

void ArchivedMail::show(const ArchivedEntry* entry, Status status) {
    const bool isSame = entry == nullptr ? !entry_
                                         : entry_ && entry_->record.id == entry->record.id &&
                                               entry_->locationRootPath == entry->locationRootPath;
    const bool isEqual = isSame && (entry == nullptr || entry_->record == entry->record);
    if (isEqual && status_ == status) return;
    status_ = status;
    if (!isEqual) entry_ = entry == nullptr ? std::nullopt : std::optional(*entry);
    if (!isSame) {
        ccRecipients_.clear();
        body_.show(entry_);
        loadRecipients();
    }
    Q_EMIT changed();
    if (!isSame) Q_EMIT mailChanged();
}

void ArchivedMail::loadRecipients() {
    if (!entry_ || !ccRecipients_.isEmpty()) return;
    model_.library().bodyTexts.ccRecipients(
        *entry_, [self = QPointer(this), id = entry_->id()](const std::optional<std::string>& cc) {
            if (!self || !self->entry_ || self->entry_->id() != id || !cc) return;
            self->ccRecipients_ = screens::shownLine(*cc, recipientsLimit);
            Q_EMIT self->changed();
        });
}

const ArchiveLocation* ArchivedMail::place() const {
    return entry_ ? model_.library().loader.location(entry_->locationRootPath) : nullptr;
}

FileState ArchivedMail::fileState() const {
    return entry_ ? archived_file::stateOf(model_.library().loader, *entry_) : FileState::Unknown;
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

ArchivedMailState ArchivedMail::state() const {
    const FileState file = fileState();
    return {textOf(file, status_), toneOf(file, status_), symbolOf(file, status_)};
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
    if (const QString text = body_.copied(); !text.isEmpty()) lines += u'\n' + text;
    return lines.join(u'\n');
}

} // namespace corvane
