// The overview that the organize home and the archive sheet show, kept up with the model. Main thread; the
// overview is computed by a background task on shared values, at most once a state of its inputs, and
// published at most once a second.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "listing/deletion/organize_sections.h"
#include "model/corvane_view_model.h"

namespace corvane {

class OrganizeData : public QObject {
    Q_OBJECT

  public:
    // Between two publications lies at least the interval.
    explicit OrganizeData(CorvaneViewModel& model,
                          std::chrono::milliseconds publishInterval = std::chrono::seconds(1),
                          QObject* parent = nullptr);

    [[nodiscard]] const SharedOrganizeOverview& overview() const { return overview_; }

    // The overview is that of the messages, or of the statistics that stand for them at a cold start. An
    // empty one holds only as long as nothing has changed: mail that just came in is not "nothing to do".
    [[nodiscard]] bool isKnown() const { return isKnown_ && (!overview_->accounts.empty() || isUpToDate()); }

    // The overview is that of the present state.
    [[nodiscard]] bool isUpToDate() const { return published_ == inputs(); }

    // Refers to the model: not to be kept.
    [[nodiscard]] IndexedYears indexedYears() const;

    [[nodiscard]] DeletionSafety deletionSafety(const std::optional<std::string>& accountKey,
                                                const std::set<std::int64_t>& years) const;

    // While held, what has changed waits: rows don't move under a pressed pointer.
    void setHeld(bool held);

  Q_SIGNALS:
    void overviewChanged();

  private:
    // Equal inputs have an equal overview.
    struct Inputs {
        OrganizeInput input;
        bool isAvailabilityKnown = false;
        SharedAvailability statistics; // that stand for the messages at a cold start; else null

        friend bool operator==(const Inputs&, const Inputs&) = default;
    };

    void refresh();
    void refreshWhenDue();
    void compute(Inputs current);
    void publish(SharedOrganizeOverview overview, Inputs of);
    [[nodiscard]] Inputs inputs() const;
    [[nodiscard]] bool hasOnlyStatistics() const;

    CorvaneViewModel& model_;
    std::chrono::milliseconds publishInterval_;
    SharedOrganizeOverview overview_ = std::make_shared<const OrganizeOverview>();
    bool isKnown_ = false;
    bool isHeld_ = false;
    std::optional<Inputs> published_;
    std::optional<Inputs> computing_;
    QElapsedTimer sincePublished_;
    QTimer due_;
    TaskSlot task_;
};

} // namespace corvane
