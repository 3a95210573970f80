#include "model/components/library_components.h"

#include <utility>

#include "model/library/overview/overview_inputs.h"

namespace corvane {

LibraryComponents::LibraryComponents(ModelContext& context, const MailComponents& mail,
                                     const ArchivingComponents& archiving,
                                     ArchivingComponents::ProofProvider proofInputs)
  : loader(context)
  , accountRules(context)
  , index(context,
          [this, &mail] {
              return LibraryIndexInput{loader.archivedEntries(), mail.accounts.availableAccounts(),
                                       accountRules.archiveAccountMergeRules(), loader.archiveLocations()};
          })
  , places(context, loader, [&archiving] { return archiving.destinations.transferDestination(); })
  , presence(context)
  , removal(context)
  , configBackup(context)
  , bodyTexts(context, loader)
  , list(context, index, bodyTexts)
  , overview(context,
             [this, &mail, inputs = std::move(proofInputs)] {
                 return overviewInputs({mail.catalog, index, presence, mail.counts, mail.accounts}, inputs());
             })
  , mailOpening(context)
  , attachments(context)
  , mailExport(context) {}

} // namespace corvane
