// Counts by year that only the store's index knows, and the figures of safety made from them. Main thread;
// the queries run in the background.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <QObject>

#include "listing/deletion/deletion_safety.h"
#include "listing/deletion/found_by_mail.h"
#include "model/mail/account_directory.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class IndexCounts : public QObject {
    Q_OBJECT

  public:
    IndexCounts(ModelContext& context, const AccountDirectory& accounts, QObject* parent = nullptr);

    [[nodiscard]] const CountByYear& indexedYearCounts() const { return counts_.indexed; }

    [[nodiscard]] const CountByAccountAndYear& indexedYearCountsByAccount() const {
        return counts_.indexedByAccount;
    }

    [[nodiscard]] const CountByAccountAndYear& undownloadedYearCountsByAccount() const {
        return counts_.undownloadedByAccount;
    }

    // Of these, what Mail holds in part.
    [[nodiscard]] const CountByAccountAndYear& partialYearCountsByAccount() const {
        return counts_.partialByAccount;
    }

    // The counts are those of an index that was asked: until then they are empty, and say nothing of Mail.
    [[nodiscard]] bool isKnown() const { return isKnown_; }

    // The index couldn't be asked the last time, or wasn't there.
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }

    // They are being read.
    [[nodiscard]] bool isReading() const { return isReading_; }

    // What Mail's own search finds, read with the counts; null before the first time and where there was no
    // index to ask.
    [[nodiscard]] const SharedFoundByMail& foundByMail() const { return counts_.foundByMail; }

    struct Indexed {
        CountByYear counts;
        CountByAccountAndYear countsByAccount;
        bool isKnown = true;
        CountByAccountAndYear partialByAccount{};
    };

    // For a scan that may have to bring them back.
    [[nodiscard]] Indexed indexed() const {
        return {counts_.indexed, counts_.indexedByAccount, isKnown_, counts_.partialByAccount};
    }

    // Replaces these, without a look at the index.
    void setIndexed(Indexed indexed);

    // Reads the counts from the index in the background, beside this list of it; `countsRefreshed` follows.
    // Where there is no index the counts are empty; one that couldn't be asked leaves those of before, and
    // `countsRefreshed` doesn't follow.
    void refreshIndexedYearCounts(SharedMessageList messages);

    // The same where they are old, or the index couldn't be asked; what rests on them hears at once that they
    // are being read.
    void refreshIfOld(SharedMessageList messages);

  Q_SIGNALS:
    void countsChanged();
    // Behind countsChanged, when the counts were read from the index anew.
    void countsRefreshed();

  private:
    struct Counts {
        CountByYear indexed;
        CountByAccountAndYear indexedByAccount;
        CountByAccountAndYear undownloadedByAccount;
        CountByAccountAndYear partialByAccount;
        SharedFoundByMail foundByMail;
    };

    struct CountJob;
    struct Answer;

    static Answer answer(const CountJob& job, const TaskHandle& task);
    // Nullopt when the index couldn't be asked for all of them: those that are known stay.
    static std::optional<Counts> readCounts(const CountJob& job, const TaskHandle& task);
    void publish(Answer answer);
    // Mail may have another account, or name one otherwise, since they were read.
    [[nodiscard]] bool areOld() const;

    ModelContext& context_;
    const AccountDirectory& accounts_;
    Counts counts_;
    bool isKnown_ = false;
    bool hasFailed_ = false;
    bool isReading_ = false;
    std::optional<std::chrono::steady_clock::time_point> readAt_; // as its last reading began
    TaskSlot countTask_;
};

} // namespace corvane
