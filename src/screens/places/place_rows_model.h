// The places of archives as the sheet lists them, each with its work and what came of it. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <QString>
#include <QtQml/qqmlregistration.h>

#include "model/archiving/place_jobs.h"
#include "model/library/archive_places.h"
#include "screens/lists/record_list_model.h"
#include "screens/places/place_report.h"

namespace corvane {

struct PlaceRow {
    ArchivePlace place;
    QString pathText{};
    QString workText{}; // empty without any
    double workShare = 0;
    QString timeLeftText{}; // of its work; empty while that can't be told
    bool isWaiting = false; // its work hasn't begun
    bool isCounted = false; // how much work there is is known
    bool isBusy = false;    // a run of the archiver writes somewhere
    PlaceReport report{};

    friend bool operator==(const PlaceRow&, const PlaceRow&) = default;
};

struct PlaceRowKey {
    std::string_view operator()(const PlaceRow& row) const { return row.place.root; }
};

class PlaceRowsModel : public RecordListModel<PlaceRow, PlaceRowKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the places")

  public:
    enum Role {
        NameRole = FirstRole,
        PathRole,
        SymbolRole,
        IsDefaultRole,
        StateTextRole,
        StateKindRole, // of a chip
        StateSymbolRole,
        CountTextRole,
        SizeTextRole,
        SeenTextRole,
        WorkTextRole,
        WorkShareRole,
        TimeLeftTextRole,
        IsWaitingRole,
        IsCountedRole,
        ReportKindRole,
        ReportTitleRole,
        ReportLineRole,
        ReportDateRole,
        FindingsRole,
        FindingsLeftOutRole,
        OffersRebuildRole,
        CanVerifyRole,
        CanBeDefaultRole,
        CanShowRole,
        CanForgetRole,
        CanReplaceRole,
        SpokenNameRole,
    };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  protected:
    [[nodiscard]] QVariant value(const PlaceRow& row, int role) const override;
};

namespace screens {

// The row of a place; `job` and `end` may be null. `home` is the user's, for the path.
struct PlaceRowInput {
    const ArchivePlace& place;
    const PlaceJobs::Job* job = nullptr;
    bool isWaiting = false;
    QString timeLeftText;
    const PlaceJobs::End* end = nullptr;
    bool isBusy = false;
    QString home;
};

PlaceRow placeRow(const PlaceRowInput& input);

// The place can be read at this moment.
bool isReachable(const ArchivePlace& place);

} // namespace screens

} // namespace corvane
