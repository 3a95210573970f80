// How many mails are proven by archived files that can't be looked at now, counted in the background. Main
// thread.
#pragma once

#include <vector>

#include <QObject>

#include "listing/proof/away_proofs.h"
#include "locations/loading/archived_files.h"
#include "model/archiving/proof/proof_job.h"
#include "model/mail/messages/message_catalog.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/archived/archive_records.h"

namespace corvane {

class AwayProofCount : public QObject {
    Q_OBJECT

  public:
    // Both must outlive it.
    AwayProofCount(ModelContext& context, const MessageCatalog& catalog, QObject* parent = nullptr);

    // Of the messages of a scope, by the archives and their files as they were seen last; `changed` follows
    // where the figures are others than before. At once none where all files are here.
    void count(const ProofScope& scope, const std::vector<ArchiveLocation>& locations,
               const ArchivedFiles& files);

    // As last counted.
    [[nodiscard]] const AwayProofs& found() const { return found_; }

  Q_SIGNALS:
    void changed();

  private:
    void set(const AwayProofs& found);

    const MessageCatalog& catalog_;
    AwayProofs found_;
    TaskSlot task_;
};

} // namespace corvane
