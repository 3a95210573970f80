// What the model knows of all archives together: their entries and texts, whether the originals are still in
// Mail, and what is done with archived mail. Main thread. Each component can be used by itself; the reactions
// that join them are the model's.
#pragma once

#include "model/components/archiving_components.h"
#include "model/components/mail_components.h"
#include "model/library/account_rules.h"
#include "model/library/archive_places.h"
#include "model/library/archive_removal_flow.h"
#include "model/library/body_texts.h"
#include "model/library/config_backup_flow.h"
#include "model/library/library_index_flow.h"
#include "model/library/library_list_flow.h"
#include "model/library/library_loader.h"
#include "model/library/mail_export_flow.h"
#include "model/library/opening/archived_mail_opening.h"
#include "model/library/opening/attachment_flow.h"
#include "model/library/overview/overview_flow.h"
#include "model/library/presence/presence_flow.h"
#include "model/model_context.h"

namespace corvane {

struct LibraryComponents {
    // The other components must outlive these. `proofInputs` is asked whenever the overview is made.
    LibraryComponents(ModelContext& context, const MailComponents& mail, const ArchivingComponents& archiving,
                      ArchivingComponents::ProofProvider proofInputs);

    LibraryLoader loader;
    AccountRules accountRules;
    LibraryIndexFlow index;
    ArchivePlaces places;
    PresenceFlow presence;
    ArchiveRemovalFlow removal;
    ConfigBackupFlow configBackup;
    BodyTexts bodyTexts;
    LibraryListFlow list;
    OverviewFlow overview;
    ArchivedMailOpening mailOpening;
    AttachmentFlow attachments;
    MailExportFlow mailExport;
};

} // namespace corvane
