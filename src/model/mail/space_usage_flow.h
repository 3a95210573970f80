// The space that Mail's accounts occupy on this machine, kept up to date from the moment that somebody wants
// it. Main thread; it is computed in the background, and the earlier figures stay until the new ones are
// there.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <QObject>

#include "listing/space_usage.h"
#include "model/mail/account_directory.h"
#include "model/mail/messages/message_catalog.h"
#include "model/tasks/task_slot.h"
#include "records/mail_account.h"
#include "records/statistics_records.h"

namespace corvane {

using SharedSpaceUsage = std::shared_ptr<const std::vector<SpaceAccountUsage>>;

class SpaceUsageFlow : public QObject {
    Q_OBJECT

  public:
    // Both must outlive it.
    SpaceUsageFlow(ModelContext& context, const AccountDirectory& accounts, const MessageCatalog& catalog,
                   QObject* parent = nullptr);

    // Of each account, in bytes; never null, and empty before the first computation. While it isn't known
    // which messages are on this machine, all count as local.
    [[nodiscard]] const SharedSpaceUsage& spaceUsage() const { return usage_; }

    [[nodiscard]] std::int64_t spaceUsageLocalTotalBytes() const;

    // Computes the figures where they aren't of the present mail; from here on every change of it does.
    void refreshSpaceUsage();

    // The mail or its accounts may have changed. No effect as long as nobody wants the figures.
    void onInputsChanged();

  Q_SIGNALS:
    void spaceUsageChanged();

  private:
    struct Inputs {
        SharedMessageSet messages;
        std::shared_ptr<const SharedTextSet> locallyAvailableIDs; // null while not known
        std::vector<MailAccount> accounts;

        friend bool operator==(const Inputs&, const Inputs&) = default;
    };

    static SharedSpaceUsage compute(const Inputs& inputs, const TaskHandle& task);
    [[nodiscard]] Inputs inputs() const;
    void setStartedWith(Inputs inputs);

    ModelContext& context_;
    const AccountDirectory& accounts_;
    const MessageCatalog& catalog_;
    bool isWanted_ = false;
    Inputs startedWith_{}; // of the figures that are there or being computed
    SharedSpaceUsage usage_ = std::make_shared<const std::vector<SpaceAccountUsage>>();
    TaskSlot task_;
};

} // namespace corvane
