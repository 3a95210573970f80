// Everything by which the user narrows lists and candidates. Main thread. Every setter that changes a value
// emits the signals of what depends on it; several values set together emit them once.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include <QObject>

#include "records/model_enums.h"

namespace corvane {

class ModelFilters : public QObject {
    Q_OBJECT

  public:
    explicit ModelFilters(QObject* parent = nullptr);

    // The list.
    [[nodiscard]] const std::string& searchText() const { return searchText_; }

    [[nodiscard]] std::int64_t minimumAttachmentCount() const { return minimumAttachmentCount_; }

    [[nodiscard]] std::int64_t yearCutoff() const { return yearCutoff_; }

    [[nodiscard]] bool onlyBeforeCutoff() const { return onlyBeforeCutoff_; }

    [[nodiscard]] MailSortMode sortMode() const { return sortMode_; }

    [[nodiscard]] bool sortAscending() const { return sortAscending_; }

    [[nodiscard]] MigratedFilter migratedFilter() const { return migratedFilter_; }

    // Only mail with a reason why it doesn't count as archived.
    [[nodiscard]] bool onlyTroubled() const { return onlyTroubled_; }

    [[nodiscard]] const std::set<std::int64_t>& filterYears() const { return filterYears_; }

    // The list and the candidates.
    [[nodiscard]] const std::set<std::string>& filterAccountPrefixes() const {
        return filterAccountPrefixes_;
    }

    // The candidates.
    [[nodiscard]] const std::set<std::int64_t>& archiveFilterYears() const { return archiveFilterYears_; }

    [[nodiscard]] TransferSizePreset transferMinimumSize() const { return transferMinimumSize_; }

    // The bytes of `transferMinimumSize`, or a size of the user's own.
    [[nodiscard]] std::int64_t minimumCandidateBytes() const { return minimumCandidateBytes_; }

    [[nodiscard]] std::optional<std::int64_t> transferMaxYear() const { return transferMaxYear_; }

    // Each notifies only of another value than before.
    void setSearchText(std::string text);
    void setMinimumAttachmentCount(std::int64_t count);
    void setYearCutoff(std::int64_t year);
    void setOnlyBeforeCutoff(bool only);
    void setSortMode(MailSortMode mode);
    void setSortAscending(bool ascending);
    void setMigratedFilter(MigratedFilter filter);
    void setOnlyTroubled(bool only);
    void setFilterYears(std::set<std::int64_t> years);
    void setFilterAccountPrefixes(std::set<std::string> prefixes);
    void setArchiveFilterYears(std::set<std::int64_t> years);
    void setTransferMinimumSize(TransferSizePreset preset);
    void setMinimumCandidateBytes(std::int64_t bytes);
    void setTransferMaxYear(std::optional<std::int64_t> year);

    // Narrows list and candidates to one account (or none in particular) and some years at a stroke.
    void applyHomeScope(const std::optional<std::string>& accountPrefix, const std::set<std::int64_t>& years);

    // A refresh covers everything: no account, no years, no cut-off.
    void clearScope();

  Q_SIGNALS:
    // Behind the other signals of `clearScope`: whoever narrowed the filters gives it up as well.
    void scopeCleared();
    void listFilterChanged();
    void candidateFilterChanged();

  private:
    template <class Value>
    bool assign(Value& field, Value value);
    void notifyList();
    void notifyCandidates();

    std::string searchText_;
    std::int64_t minimumAttachmentCount_ = 0;
    std::int64_t yearCutoff_;
    bool onlyBeforeCutoff_ = false;
    MailSortMode sortMode_ = MailSortMode::newest;
    bool sortAscending_ = false;
    MigratedFilter migratedFilter_ = MigratedFilter::all;
    bool onlyTroubled_ = false;
    std::set<std::int64_t> filterYears_;
    std::set<std::string> filterAccountPrefixes_;
    std::set<std::int64_t> archiveFilterYears_;
    TransferSizePreset transferMinimumSize_ = TransferSizePreset::any;
    std::int64_t minimumCandidateBytes_ = 0;
    std::optional<std::int64_t> transferMaxYear_;
    bool isApplyingHomeScope_ = false;
};

} // namespace corvane
