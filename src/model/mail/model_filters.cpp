#include "model/mail/model_filters.h"

#include <utility>

#include "records/timestamps.h"

namespace corvane {

namespace {

constexpr std::int64_t yearsBeforeCutoff = 3;

} // namespace

ModelFilters::ModelFilters(QObject* parent)
  : QObject(parent)
  , yearCutoff_(localYear(currentTimestamp()) - yearsBeforeCutoff) {}

template <class Value>
bool ModelFilters::assign(Value& field, Value value) {
    if (field == value) return false;
    field = std::move(value);
    return true;
}

void ModelFilters::notifyList() {
    if (!isApplyingHomeScope_) Q_EMIT listFilterChanged();
}

void ModelFilters::notifyCandidates() {
    if (!isApplyingHomeScope_) Q_EMIT candidateFilterChanged();
}

void ModelFilters::setSearchText(std::string text) {
    if (assign(searchText_, std::move(text))) notifyList();
}

void ModelFilters::setMinimumAttachmentCount(std::int64_t count) {
    if (assign(minimumAttachmentCount_, count)) notifyList();
}

void ModelFilters::setYearCutoff(std::int64_t year) {
    if (assign(yearCutoff_, year)) notifyList();
}

void ModelFilters::setOnlyBeforeCutoff(bool only) {
    if (assign(onlyBeforeCutoff_, only)) notifyList();
}

void ModelFilters::setOnlyTroubled(bool only) {
    if (assign(onlyTroubled_, only)) notifyList();
}

void ModelFilters::setSortMode(MailSortMode mode) {
    if (assign(sortMode_, mode)) notifyList();
}

void ModelFilters::setSortAscending(bool ascending) {
    if (assign(sortAscending_, ascending)) notifyList();
}

void ModelFilters::setMigratedFilter(MigratedFilter filter) {
    if (assign(migratedFilter_, filter)) notifyList();
}

void ModelFilters::setFilterYears(std::set<std::int64_t> years) {
    if (assign(filterYears_, std::move(years))) notifyList();
}

void ModelFilters::setFilterAccountPrefixes(std::set<std::string> prefixes) {
    if (!assign(filterAccountPrefixes_, std::move(prefixes))) return;
    notifyList();
    notifyCandidates();
}

void ModelFilters::setArchiveFilterYears(std::set<std::int64_t> years) {
    if (assign(archiveFilterYears_, std::move(years))) notifyCandidates();
}

void ModelFilters::setTransferMinimumSize(TransferSizePreset preset) {
    transferMinimumSize_ = preset;
    setMinimumCandidateBytes(minimumBytes(preset));
}

void ModelFilters::setMinimumCandidateBytes(std::int64_t bytes) {
    if (assign(minimumCandidateBytes_, bytes)) notifyCandidates();
}

void ModelFilters::setTransferMaxYear(std::optional<std::int64_t> year) {
    if (assign(transferMaxYear_, year)) notifyCandidates();
}

void ModelFilters::applyHomeScope(const std::optional<std::string>& accountPrefix,
                                  const std::set<std::int64_t>& years) {
    isApplyingHomeScope_ = true;
    setFilterAccountPrefixes(accountPrefix ? std::set<std::string>{*accountPrefix} : std::set<std::string>{});
    setFilterYears(years);
    setArchiveFilterYears(years);
    isApplyingHomeScope_ = false;
    Q_EMIT candidateFilterChanged();
    Q_EMIT listFilterChanged();
}

void ModelFilters::clearScope() {
    setFilterAccountPrefixes({});
    setFilterYears({});
    setArchiveFilterYears({});
    setOnlyBeforeCutoff(false);
    setOnlyTroubled(false);
    setTransferMaxYear(std::nullopt);
    Q_EMIT scopeCleared();
}

} // namespace corvane
