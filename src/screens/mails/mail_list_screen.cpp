#include "screens/mails/mail_list_screen.h"

#include <algorithm>
#include <stop_token>
#include <utility>

#include <QLocale>

#include "records/texts/formatters.h"
#include "screens/texts/partial_mail.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

QString countAndSize(std::int64_t count, std::int64_t bytes) {
    return QStringLiteral("%1 封 · %2")
        .arg(QLocale(QLocale::Chinese).toString(count), screens::wholeText(formatByteCount(bytes)));
}

// More are looked at in the background only.
constexpr int mostRowsLookedAt = 20'000;

std::vector<std::int64_t> bytesBeforeRows(const MessageList& messages) {
    std::vector<std::int64_t> bytes = {0};
    bytes.reserve(messages.size() + 1);
    for (const MailMessageRecord& message : messages) bytes.push_back(bytes.back() + message.messageSize);
    return bytes;
}

} // namespace

// The next list, with what was found out about it in the background.
struct MailListScreen::Update {
    SharedMessageList messages;
    RowChanges changes;
    std::vector<std::int64_t> bytesBefore;
};

MailListScreen::MailListScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , filters_(model.mail().filters, model.mail().accounts)
  , attachments_(model.context(), desktop, *detail_.attachments())
  , rowPreviews_(model.context(), list_)
  , actions_(model, desktop, list_, filters_)
  , access_(model.mail(), desktop)
  , updateTask_(model.context().tasks)
  , countTask_(model.context().tasks) {
    wire();
    updateArchived();
    updateList();
    recount();
    updateState();
}

void MailListScreen::wire() {
    connect(&model_.mail().visible, &VisibleMessages::visibleMessagesChanged, this,
            &MailListScreen::updateList);
    connect(&model_.mail().visible, &VisibleMessages::visibleMessagesChanged, this, &MailListScreen::recount);
    connect(&model_.mail().visible, &VisibleMessages::selectedMessageChanged, this,
            &MailListScreen::showSelectedMessage);
    connect(&model_.mail().catalog, &MessageCatalog::archivedMessagesChanged, this,
            &MailListScreen::updateArchived);
    connect(&model_.archiving().lastFailures, &LastFailures::changed, this, &MailListScreen::updateArchived);
    connect(&model_.library().loader, &LibraryLoader::archiveLocationsChanged, this,
            &MailListScreen::showDetail);
    connect(&model_.mail().counts, &IndexCounts::countsChanged, this, &MailListScreen::partialChanged);
    connect(&model_.mail().catalog, &MessageCatalog::previewReplaced, this, &MailListScreen::updatePreview);
    connect(&model_.mail().previews, &PreviewRefresh::nothingFound, &detail_,
            &MessageDetail::setPreviewMissing);
    connect(&detail_, &MessageDetail::messageChanged, &attachments_, &AttachmentActions::look);
    model_.mail().previews.setPreviewsShown(true);
    connect(&model_.mail().catalog, &MessageCatalog::messagesChanged, this, [this] {
        list_.forgetPreviews();
        rowPreviews_.forget();
        updateState();
    });
    connect(&model_.mail().scanFlow, &ScanFlow::stateChanged, this, &MailListScreen::updateState);
    connect(&model_.mail().scanFlow, &ScanFlow::restorableChanged, this, &MailListScreen::updateState);
    connect(&model_.mail().diskAccess, &FullDiskAccess::needsFullDiskAccessChanged, this,
            &MailListScreen::updateState);
    connect(&model_.mail().filters, &ModelFilters::listFilterChanged, this, [this] {
        isRearranging_ = true;
        updateState();
    });
    connect(&model_.archiving().archiveRun, &ArchiveRunFlow::archiveRunStarted, this,
            &MailListScreen::updateCanArchive);
    connect(&model_.archiving().archiveRun, &ArchiveRunFlow::archiveRunEnded, this,
            &MailListScreen::updateCanArchive);
    connect(selection(), &ListSelection::currentRowChanged, this, &MailListScreen::handleCurrentRowChange);
    connect(selection(), &ListSelection::selectionChanged, this, [this] {
        Q_EMIT summaryChanged();
        updateCanArchive();
    });
}

void MailListScreen::updateList() {
    isUpdating_ = true;
    wasRowChosen_ = false;
    waiting_.reset();

    struct Lists {
        SharedMessageList from;
        SharedMessageList to;
    };

    updateTask_.start(
        TaskPriority::userInitiated, Lists{list_.records(), model_.mail().visible.visibleMessages()},
        [](const Lists& lists, const TaskHandle&) {
            auto update = std::make_shared<Update>();
            update->changes = messageRowChanges(*lists.from, *lists.to);
            update->bytesBefore = bytesBeforeRows(*lists.to);
            update->messages = lists.to;
            return update;
        },
        [this](std::shared_ptr<Update> update) { applyUnlessHeld(std::move(update)); });
    updateState();
}

void MailListScreen::applyUnlessHeld(std::shared_ptr<Update> update) {
    if (isHeld_) {
        waiting_ = std::move(update);
    } else {
        apply(*update);
    }
}

void MailListScreen::setHeld(bool held) {
    if (isHeld_ == held) return;
    isHeld_ = held;
    Q_EMIT heldChanged();
    if (const auto update = std::exchange(waiting_, nullptr); !held && update) apply(*update);
}

void MailListScreen::apply(Update& update) {
    isUpdating_ = false;
    bytesBefore_ = std::move(update.bytesBefore);
    SharedMessageList earlier = list_.records();
    isApplying_ = true;
    list_.apply(std::move(update.messages), update.changes);
    isApplying_ = false;
    // The end of a large list takes longer than a frame.
    model_.context().tasks.discard(std::move(earlier));
    const ListRules rules = model_.mail().visible.listRules();
    const bool isReordered = rules.query != rules_.query || rules.sortMode != rules_.sortMode ||
                             rules.ascending != rules_.ascending;
    rules_ = rules;
    list_.setQuery(screens::wholeText(rules.query));
    showSelectedMessage();
    if (isReordered && !wasRowChosen_) showBeginning();
    if (std::exchange(isRearranging_, false) && !isReordered) Q_EMIT listRearranged();
    Q_EMIT summaryChanged();
    updateCanArchive();
    updateState();
}

// Who sorts or searches wants what stands first now; several rows that were selected stay so.
void MailListScreen::showBeginning() {
    if (selection()->count() <= 1) selection()->select(0);
    Q_EMIT listReordered();
}

QString MailListScreen::partialText() const {
    return screens::partialMailText(model_.mail());
}

// The model says which message is selected; the row follows where it isn't there already.
void MailListScreen::showSelectedMessage() {
    if (isUpdating_ || isApplying_) return;
    const auto& id = model_.mail().visible.selectedMessageID();
    const MailMessageRecord* present = current();
    if (id && (present == nullptr || present->id != *id)) showMessage(QString::fromStdString(*id));
    // The selected message has gone from the list meanwhile.
    if (current() == nullptr) selection()->select(0);
    showDetail();
}

void MailListScreen::showMessage(const QString& id) {
    const std::string wanted = id.toStdString();
    const MessageList& messages = *list_.records();
    const auto found = std::find_if(messages.begin(), messages.end(),
                                    [&](const MailMessageRecord& message) { return message.id == wanted; });
    if (found != messages.end()) selection()->select(static_cast<int>(found - messages.begin()));
}

void MailListScreen::handleCurrentRowChange() {
    if (isApplying_) return;
    wasRowChosen_ = isUpdating_;
    if (const MailMessageRecord* message = current())
        model_.mail().visible.setSelectedMessageID(message->id.str());
    showDetail();
}

void MailListScreen::showDetail() {
    const MailMessageRecord* message = current();
    // The catalog's record may know more than the list's: its preview is read again when it was damaged.
    const MailMessageRecord* newest =
        message == nullptr ? nullptr : model_.mail().catalog.messageByID(message->id);
    if (newest == nullptr) newest = message;
    if (newest == nullptr) return detail_.show(nullptr, {});
    detail_.show(newest, {list_.isArchived(*newest), list_.troubleOf(*newest),
                          screens::awayProofText(model_, *newest)});
}

void MailListScreen::updatePreview(const QString& id) {
    if (const MailMessageRecord* message = model_.mail().catalog.messageByID(id.toStdString()))
        list_.setPreview(message->id, message->preview);
    showDetail();
}

void MailListScreen::updateArchived() {
    const MessageCatalog& catalog = model_.mail().catalog;
    list_.setArchivedIDs(catalog.archivedMessageIDs());
    list_.setTroubles(MessageTroubles::known(model_));
    showDetail();
    updateCanArchive();
}

void MailListScreen::recount() {
    struct Job {
        ListInput input;
        ListRules rules;
    };

    countTask_.start(
        TaskPriority::utility, Job{model_.mail().visible.listInput(), model_.mail().visible.listRules()},
        [](const Job& job, const TaskHandle& task) {
            return listedCounts(job.input, job.rules, task.stopToken());
        },
        [this](ListedCounts counts) { filters_.setCounts(std::move(counts)); });
    updateState();
}

MailListScreen::State MailListScreen::currentState() const {
    if (list_.count() > 0) return State::Listed;
    const ScanFlow& scan = model_.mail().scanFlow;
    if (scan.state().isScanning()) return State::Scanning;
    const bool hasFailed = scan.state().kind == MailScanState::Kind::failed;
    if (model_.mail().catalog.state()->isPartial() &&
        !(hasFailed && model_.mail().catalog.messages()->empty()) &&
        (model_.hasScanDisplayData() || scan.restorableScanTime()))
        return State::Partial;
    if (!model_.mail().catalog.messages()->empty()) {
        // A list without rows stays as it is until the next one is there.
        if (isUpdating_ || !model_.mail().visible.isCurrent())
            return state_ == State::NoMatch ? State::NoMatch : State::Loading;
        return filters_.narrows() ? State::NoMatch : State::NothingLocal;
    }
    if (model_.mail().diskAccess.needsFullDiskAccess()) return State::NoAccess;
    if (hasFailed) return State::Failed;
    // The small snapshot is there, the messages are being read.
    if (scan.state().kind == MailScanState::Kind::finished) return State::Loading;
    return scan.isLastScanAwaited() ? State::Loading : State::NeverScanned;
}

void MailListScreen::updateState() {
    state_ = currentState();
    Q_EMIT stateChanged();
}

QString MailListScreen::stateText() const {
    const bool tellsOfScan = state_ == State::Scanning || state_ == State::Failed || state_ == State::Partial;
    return tellsOfScan ? screens::wholeText(model_.mail().scanFlow.state().text) : QString();
}

QString MailListScreen::summaryText() const {
    return list_.count() == 0 ? QStringLiteral("0 封") : countAndSize(list_.count(), bytesBefore_.back());
}

QString MailListScreen::selectionText() const {
    const RowRanges& rows = list_.selection()->rows();
    if (rows.count() < 2) return {};
    std::int64_t bytes = 0;
    for (const auto& range : rows.ranges()) {
        bytes += bytesBefore_[static_cast<std::size_t>(range.end)] -
                 bytesBefore_[static_cast<std::size_t>(range.first)];
    }
    return QStringLiteral("已选 ") + countAndSize(rows.count(), bytes);
}

// What was set aside, or can't be read whole, is no candidate.
bool MailListScreen::canBeArchived(const MailMessageRecord& message) const {
    return !list_.isArchived(message) &&
           !model_.mail().catalog.availability().withheldIDs->contains(message.id.view());
}

bool MailListScreen::mayArchiveSelection() const {
    if (model_.archiving().archiveRun.isArchiving()) return false;
    int looked = 0;
    for (const auto& range : list_.selection()->rows().ranges()) {
        for (int row = range.first; row < range.end; ++row) {
            if (++looked > mostRowsLookedAt || canBeArchived(*list_.record(row))) return true;
        }
    }
    return false;
}

void MailListScreen::updateCanArchive() {
    const bool can = mayArchiveSelection();
    if (can == canArchive_) return;
    canArchive_ = can;
    Q_EMIT canArchiveChanged();
}

const MailMessageRecord* MailListScreen::current() const {
    return list_.record(list_.selection()->currentRow());
}

} // namespace corvane
