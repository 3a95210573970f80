// Everything by which the user narrows lists and candidates. Main thread. Every change of a value emits the
// signals of what depends on it; several values changed together emit them once.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>

#include <QObject>

#include "records/model_enums.h"

namespace corvane {

// What narrows and orders the list of messages.
struct ListFilters {
    std::string searchText;
    std::int64_t minimumAttachmentCount = 0;
    std::int64_t yearCutoff = 0;
    bool onlyBeforeCutoff = false;
    std::set<std::int64_t> filterYears;
    MigratedFilter migratedFilter = MigratedFilter::all;
    bool onlyTroubled = false; // mail with a reason why it doesn't count as archived
    MailSortMode sortMode = MailSortMode::newest;
    bool sortAscending = false;
};

// What narrows the candidates.
struct CandidateFilters {
    std::set<std::int64_t> archiveFilterYears;
    TransferSizePreset transferMinimumSize = TransferSizePreset::any;
    std::int64_t minimumCandidateBytes = 0; // those of the preset, or a size of the user's own
    std::optional<std::int64_t> transferMaxYear;
};

class ModelFilters : public QObject {
    Q_OBJECT

  public:
    // The year of the cut-off is a few years before the present one.
    explicit ModelFilters(QObject* parent = nullptr);

    [[nodiscard]] const ListFilters& list() const { return list_; }

    [[nodiscard]] const CandidateFilters& candidates() const { return candidates_; }

    // Of the list and the candidates.
    [[nodiscard]] const std::set<std::string>& filterAccountPrefixes() const {
        return filterAccountPrefixes_;
    }

    // Each notifies only of another value than before.
    template <class Value>
    void set(Value ListFilters::* field, std::type_identity_t<Value> value) {
        if (list_.*field == value) return;
        list_.*field = std::move(value);
        notifyList();
    }

    template <class Value>
    void set(Value CandidateFilters::* field, std::type_identity_t<Value> value) {
        if (candidates_.*field == value) return;
        candidates_.*field = std::move(value);
        notifyCandidates();
    }

    void setFilterAccountPrefixes(std::set<std::string> prefixes);

    // With its bytes.
    void setTransferMinimumSize(TransferSizePreset preset);

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
    void notifyList();
    void notifyCandidates();

    ListFilters list_;
    CandidateFilters candidates_;
    std::set<std::string> filterAccountPrefixes_;
    bool isApplyingHomeScope_ = false;
};

} // namespace corvane
