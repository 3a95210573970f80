#include "model/mail/messages/model_filters.h"

#include "records/timestamps.h"

namespace corvane {

namespace {

constexpr std::int64_t yearsBeforeCutoff = 3;

} // namespace

ModelFilters::ModelFilters(QObject* parent)
  : QObject(parent) {
    list_.yearCutoff = localYear(currentTimestamp()) - yearsBeforeCutoff;
}

void ModelFilters::notifyList() {
    if (!isApplyingHomeScope_) Q_EMIT listFilterChanged();
}

void ModelFilters::notifyCandidates() {
    if (!isApplyingHomeScope_) Q_EMIT candidateFilterChanged();
}

void ModelFilters::setFilterAccountPrefixes(std::set<std::string> prefixes) {
    if (filterAccountPrefixes_ == prefixes) return;
    filterAccountPrefixes_ = std::move(prefixes);
    notifyList();
    notifyCandidates();
}

void ModelFilters::setTransferMinimumSize(TransferSizePreset preset) {
    candidates_.transferMinimumSize = preset;
    set(&CandidateFilters::minimumCandidateBytes, minimumBytes(preset));
}

void ModelFilters::applyHomeScope(const std::optional<std::string>& accountPrefix,
                                  const std::set<std::int64_t>& years) {
    isApplyingHomeScope_ = true;
    setFilterAccountPrefixes(accountPrefix ? std::set<std::string>{*accountPrefix} : std::set<std::string>{});
    set(&ListFilters::filterYears, years);
    set(&CandidateFilters::archiveFilterYears, years);
    isApplyingHomeScope_ = false;
    Q_EMIT candidateFilterChanged();
    Q_EMIT listFilterChanged();
}

void ModelFilters::clearScope() {
    setFilterAccountPrefixes({});
    set(&ListFilters::filterYears, {});
    set(&CandidateFilters::archiveFilterYears, {});
    set(&ListFilters::onlyBeforeCutoff, false);
    set(&ListFilters::onlyTroubled, false);
    set(&CandidateFilters::transferMaxYear, std::nullopt);
    Q_EMIT scopeCleared();
}

} // namespace corvane
