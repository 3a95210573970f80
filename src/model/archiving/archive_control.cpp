#include "model/archiving/archive_control.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "listing/archive_capacity.h"
#include "records/stable_hash.h"

namespace corvane {

namespace {

std::string joined(const auto& values) {
    return fmt::format("{}", fmt::join(values, ","));
}

MessageList selectedOf(const MessageList& candidates, const SharedTextSet& selection) {
    MessageList selected;
    for (const MailMessageRecord& message : candidates) {
        if (selection.contains(message.id)) selected.push_back(message);
    }
    return selected;
}

std::string runSignature(const MessageList& messages, const std::string& destination) {
    std::string run = fmt::format("postArchive:{}:", destination);
    for (const MailMessageRecord& message : messages)
        fmt::format_to(std::back_inserter(run), "{},", message.id);
    return stableHash(run);
}

struct RunJob {
    SharedMessageList candidates;
    std::shared_ptr<const SharedTextSet> selection;
    std::string destination;
    const platform::Platform& platform;
};

struct EndedRun {
    ArchiveControl::RunOutcome outcome;
    SharedMessageList selectedFrom; // the candidates, when they hold the whole selection; or null
    std::string signature;
};

ArchiveControl::RunOutcome archived(const RunJob& job, const MessageList& messages,
                                    const ReportingTask<EmailArchiveProgress>& task) {
    // The place may be a sleeping disk, so it isn't asked on the main thread.
    if (auto shortfall = archiveCapacityShortfall(messages, job.destination, job.platform))
        return std::unexpected(std::move(*shortfall));
    try {
        ArchiverOptions options;
        options.markHidden = [&platform = job.platform](const std::string& path) {
            platform.markHidden(path);
        };
        const auto report = [&](const EmailArchiveProgress& progress) { task.report(progress); };
        return MailEmailArchiver(platform::posixFileLayer(), options)
            .archive(messages, job.destination, report, task.stopToken());
    } catch (const std::exception& error) {
        return std::unexpected(std::string(error.what()));
    }
}

EndedRun runArchive(const RunJob& job, const ReportingTask<EmailArchiveProgress>& task) {
    const MessageList messages = selectedOf(*job.candidates, *job.selection);
    // Found out here, where a pass over all of them costs nobody time.
    SharedMessageList selectedFrom = messages.size() == job.selection->size() ? job.candidates : nullptr;
    return {archived(job, messages, task), std::move(selectedFrom), runSignature(messages, job.destination)};
}

} // namespace

CandidateRules candidateRulesOf(const ModelFilters& filters) {
    return {filters.minimumCandidateBytes(), filters.transferMaxYear(), filters.filterAccountPrefixes(),
            filters.archiveFilterYears()};
}

ArchiveControl::ArchiveControl(ModelContext& context, MessageCatalog& catalog, ModelFilters& filters,
                               QObject* parent)
  : QObject(parent)
  , context_(context)
  , catalog_(catalog)
  , filters_(filters)
  , countTask_(context.tasks)
  , candidatesTask_(context.tasks)
  , runTask_(context.tasks) {}

std::string ArchiveControl::signature() const {
    const CandidateRules rules = candidateRulesOf(filters_);
    return fmt::format("{}|{}|{}|{}|{}|{}|{}|{}", catalog_.messagesToken(), catalog_.availabilityToken(),
                       catalog_.locallyAvailableIDs()->size(), rules.minimumBytes,
                       rules.maximumYear.value_or(-1), joined(rules.accountPrefixes), joined(rules.years),
                       archivedRevision_);
}

std::string ArchiveControl::candidatesSignature() const {
    return fmt::format("{}|{}", signature(), offerRevision_);
}

CandidateInputs ArchiveControl::candidateInputs() const {
    return {.messages = catalog_.messages(),
            .rules = candidateRulesOf(filters_),
            .offer = offer_,
            .locallyAvailableIDs = catalog_.locallyAvailableIDs(),
            .archivedMessageIDs = catalog_.archivedMessageIDs(),
            .archivedBaseIDs = nullptr,
            .yearByID = catalog_.messageYearByID()};
}

void ArchiveControl::setCandidateOffer(std::shared_ptr<const SharedTextSet> ids) {
    context_.tasks.discard(std::exchange(offer_, std::move(ids)));
    ++offerRevision_;
    isWholeOfferSelected_ = false;
}

void ArchiveControl::selectWholeOffer(SharedTextSet ids) {
    takeSelection(std::move(ids));
    isWholeOfferSelected_ = true;
    Q_EMIT selectionChanged();
}

const SharedMessageList& ArchiveControl::archiveCandidates() {
    if (!catalog_.isAvailabilityKnown()) catalog_.refreshAvailabilityCacheAsync(false);
    std::string current = candidatesSignature();
    if (current == candidatesSignature_) return candidatesCache_;
    candidatesSignature_ = std::move(current);
    context_.tasks.discard(std::exchange(candidatesCache_, makeCandidates(candidateInputs())));
    return candidatesCache_;
}

void ArchiveControl::refreshArchiveCandidatesAsync() {
    if (!catalog_.isAvailabilityKnown()) catalog_.refreshAvailabilityCacheAsync(false);
    const std::string made = candidatesSignature();
    if (made == candidatesSignature_) {
        candidatesTask_.start(
            TaskPriority::userInitiated, std::monostate(), [](std::monostate, const TaskHandle&) {},
            [this] { Q_EMIT archiveCandidatesReady(); });
        return;
    }
    candidatesTask_.start(
        TaskPriority::userInitiated, candidateInputs(),
        [](const CandidateInputs& inputs, const TaskHandle& task) {
            return makeCandidates(inputs, task.stopToken());
        },
        [this, made](SharedMessageList candidates) {
            // Whoever changed an input since has asked again or will ask for the list itself.
            if (made != candidatesSignature()) return;
            if (made != candidatesSignature_) {
                candidatesSignature_ = made;
                context_.tasks.discard(std::exchange(candidatesCache_, std::move(candidates)));
            }
            Q_EMIT archiveCandidatesReady();
        });
}

MailScanSummary ArchiveControl::archiveCandidateSummary() {
    const auto& candidates = *archiveCandidates();
    return makeSummary(allOf(candidates), static_cast<std::int64_t>(candidates.size()));
}

MailScanSummary ArchiveControl::selectedArchiveSummary() {
    const MessageList selected = selectedArchiveMessages();
    return makeSummary(allOf(selected), static_cast<std::int64_t>(selected.size()));
}

MessageList ArchiveControl::selectedArchiveMessages() {
    return selectedOf(*archiveCandidates(), *selection_);
}

std::int64_t ArchiveControl::cachedCandidateCount(const std::optional<std::string>& accountPrefix,
                                                  const std::set<std::int64_t>& years) {
    if (!catalog_.isAvailabilityKnown()) catalog_.refreshAvailabilityCacheAsync(false);
    std::int64_t count = 0;
    for (const AccountYearStatGroup& group : catalog_.cachedAccountYearStats()) {
        if (accountPrefix && group.accountPrefix != *accountPrefix) continue;
        for (const YearStat& stat : group.years) {
            if (years.empty() || years.contains(stat.year)) count += stat.messageCount;
        }
    }
    return count;
}

SharedTextSet& ArchiveControl::changeableSelection() {
    if (isSelectionOfARun_) selection_ = std::make_shared<SharedTextSet>(*selection_);
    isSelectionOfARun_ = false;
    isWholeOfferSelected_ = false;
    selectedFrom_.reset();
    return *selection_;
}

void ArchiveControl::setArchiveSelection(SharedTextSet ids) {
    takeSelection(std::move(ids));
    Q_EMIT selectionChanged();
}

void ArchiveControl::takeSelection(SharedTextSet ids) {
    context_.tasks.discard(std::exchange(selection_, std::make_shared<SharedTextSet>(std::move(ids))));
    isSelectionOfARun_ = false;
    isWholeOfferSelected_ = false;
    selectedFrom_.reset();
}

void ArchiveControl::toggleArchiveSelection(std::string_view id) {
    SharedTextSet& selection = changeableSelection();
    const auto selected = selection.find(id);
    if (selected == selection.end()) {
        selection.insert(SharedText(id));
    } else {
        selection.erase(selected);
    }
    Q_EMIT selectionChanged();
}

void ArchiveControl::selectAllArchiveCandidates() {
    selectFirstArchiveCandidates(archiveCandidates()->size());
}

void ArchiveControl::selectFirstArchiveCandidates(std::size_t count) {
    SharedTextSet ids;
    for (const MailMessageRecord& message : *archiveCandidates()) {
        if (ids.size() >= count) break;
        ids.insert(message.id);
    }
    setArchiveSelection(std::move(ids));
}

void ArchiveControl::selectArchiveRange(std::string_view from, std::string_view to) {
    const MessageList& candidates = *archiveCandidates();
    const auto find = [&](std::string_view id) {
        return std::find_if(candidates.begin(), candidates.end(),
                            [&](const auto& message) { return message.id == id; });
    };
    const auto [low, high] = std::minmax({find(from), find(to)});
    if (high == candidates.end()) return;
    SharedTextSet& selection = changeableSelection();
    for (auto message = low; message <= high; ++message) selection.insert(message->id);
    Q_EMIT selectionChanged();
}

void ArchiveControl::pruneArchiveSelection() {
    if (selection_->empty() || selectedFrom_.lock() == archiveCandidates()) return;
    SharedTextSet kept;
    for (const MailMessageRecord& message : *archiveCandidates()) {
        if (selection_->contains(message.id)) kept.insert(message.id);
    }
    const bool isWhole = kept.size() == selection_->size();
    if (!isWhole) takeSelection(std::move(kept));
    selectedFrom_ = candidatesCache_;
    if (!isWhole) Q_EMIT selectionChanged();
}

void ArchiveControl::setCount(std::int64_t count, bool ready) {
    if (candidateCount_ == count && candidateCountReady_ == ready) return;
    candidateCount_ = count;
    candidateCountReady_ = ready;
    Q_EMIT candidateCountChanged();
}

void ArchiveControl::markArchiveCandidateCountStale() {
    const bool isEmpty = catalog_.messages()->empty();
    candidateCountSignature_.clear();
    setCount(isEmpty ? 0 : candidateCount_, isEmpty);
}

void ArchiveControl::refreshArchiveCandidateCountAsync() {
    std::string current = signature();
    if (current == candidateCountSignature_ && candidateCountReady_) return;
    candidateCountSignature_ = current;
    countTask_.cancel();
    if (catalog_.messages()->empty()) {
        setCount(0, true);
        return;
    }
    CandidateInputs inputs{.messages = catalog_.messages(),
                           .rules = candidateRulesOf(filters_),
                           .offer = nullptr, // the count is that of the filters
                           .locallyAvailableIDs = nullptr,
                           .archivedMessageIDs = nullptr,
                           .archivedBaseIDs = archivedBaseIDs_,
                           .yearByID = nullptr};
    if (catalog_.isAvailabilityKnown()) {
        inputs.locallyAvailableIDs = catalog_.locallyAvailableIDs();
        inputs.yearByID = catalog_.messageYearByID();
    }
    countTask_.start(
        TaskPriority::utility, std::move(inputs),
        [](const CandidateInputs& counted, const TaskHandle& task) {
            return countCandidates(counted, task.stopToken());
        },
        [this, current = std::move(current)](std::int64_t count) {
            if (current == candidateCountSignature_) setCount(count, true);
        });
}

void ArchiveControl::setKnownCandidateCount(std::int64_t count) {
    setCount(count, true);
}

void ArchiveControl::setArchivedBaseIDs(std::shared_ptr<const SharedTextSet> baseIDs) {
    archivedBaseIDs_ = std::move(baseIDs);
    ++archivedRevision_;
}

void ArchiveControl::archivedMessagesReplaced() {
    candidatesSignature_.clear();
    markArchiveCandidateCountStale();
}

void ArchiveControl::setProgress(std::optional<EmailArchiveProgress> progress) {
    progress_ = std::move(progress);
    Q_EMIT progressChanged();
}

void ArchiveControl::archiveSelectedEmails(const std::optional<std::string>& destination,
                                           Completion completion) {
    if (isArchiving()) {
        completion(std::unexpected("已有归档任务正在进行，请等待其完成。"));
        return;
    }
    if (!destination) {
        completion(std::unexpected("您没有将文件存储到该位置的权限：请先选择归档位置。"));
        return;
    }
    const MessageList& candidates = *archiveCandidates();
    if (std::none_of(candidates.begin(), candidates.end(),
                     [this](const auto& message) { return selection_->contains(message.id); })) {
        completion(std::unexpected("文件不存在：没有选择要归档的邮件。"));
        return;
    }
    completion_ = std::move(completion);
    startRun(*destination);
}

void ArchiveControl::startRun(const std::string& destination) {
    isSelectionOfARun_ = true;
    runTask_.startReporting<EmailArchiveProgress>(
        TaskPriority::userInitiated, RunJob{archiveCandidates(), selection_, destination, context_.platform},
        &runArchive, [this](EmailArchiveProgress progress) { setProgress(std::move(progress)); },
        [this, destination](EndedRun ended) {
            if (isSelectionOfARun_) selectedFrom_ = ended.selectedFrom;
            finishRun(std::move(ended.outcome), destination, QString::fromStdString(ended.signature));
        });
}

void ArchiveControl::finishRun(RunOutcome outcome, const std::string& destination, const QString& signature) {
    const Completion completion = std::exchange(completion_, nullptr);
    setProgress(std::nullopt);
    if (outcome) Q_EMIT archiveRunFinished(*outcome, QString::fromStdString(destination), signature);
    pruneArchiveSelection();
    completion(std::move(outcome));
}

void ArchiveControl::cancelEmailArchive() {
    runTask_.requestStop();
}

} // namespace corvane
