// The candidates of the archive sheet with their ticks. Main thread. The ticks are the model's selection; new
// lists of candidates are compared in the background and applied by row.
#pragma once

#include <cstdint>
#include <set>

#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/lists/message_list_model.h"

namespace corvane {

class ArchiveCandidatesModel : public MessageListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archive sheet")
    Q_PROPERTY(int tickState READ tickState NOTIFY selectionSummed)

  public:
    enum CandidateRole { TickedRole = FirstRoleOfDerived };

    // Both must outlive it.
    ArchiveCandidatesModel(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Asks the model for the candidates; `isLoading` until they are shown.
    void load();

    // Empties the list and drops what is still under way.
    void clear();

    [[nodiscard]] bool isLoading() const { return isLoading_; }

    // Both follow a change of many ticks a moment later.
    [[nodiscard]] std::int64_t selectedCount() const { return selected_.count; }

    [[nodiscard]] std::int64_t selectedBytes() const { return selected_.bytes; }

    // Of a list that is short enough to be looked through at once; empty for a longer one, or with mail
    // without a date.
    [[nodiscard]] std::set<std::int64_t> yearsOfFew() const;

    // 0 none, 1 all, 2 some.
    [[nodiscard]] int tickState() const;

    Q_INVOKABLE void toggleTick(int row);

    // Of all selected rows where this is one of them: they take the tick that it gets.
    Q_INVOKABLE void toggleTicks(int row);

    // Ticks everything from the row that was ticked last.
    Q_INVOKABLE void tickRange(int row);
    Q_INVOKABLE void tickAll();
    Q_INVOKABLE void toggleAllTicks();

    // The selected rows as lines of text. Large selections arrive a moment later.
    Q_INVOKABLE void copySelection();

    // What a screen reader says of the row and its tick.
    Q_INVOKABLE [[nodiscard]] QString spokenCandidate(int row) const;

    // With the address.
    Q_INVOKABLE [[nodiscard]] QString wholeSender(int row) const;

  Q_SIGNALS:
    void loadingChanged();
    // Count or size of what is ticked may have changed.
    void selectionSummed();

  protected:
    [[nodiscard]] QVariant value(const MailMessageRecord& message, int role) const override;

  private:
    struct Sum {
        std::int64_t count = 0;
        std::int64_t bytes = 0;
    };

    struct SumJob;

    static Sum sumOf(const SumJob& job);
    void show(const SharedMessageList& candidates);
    void sumSelection();
    void setSum(const Sum& sum);
    void setTicksOfAll(bool ticked);
    [[nodiscard]] bool isTicked(const MailMessageRecord& message) const;

    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    bool isLoading_ = false;
    bool isOwnChange_ = false;
    Sum selected_;      // of the ticked rows
    SharedText anchor_; // id of the message ticked last
    TaskSlot compareTask_;
    TaskSlot sumTask_;
    TaskSlot tickTask_;
    TaskSlot copyTask_;
};

} // namespace corvane
