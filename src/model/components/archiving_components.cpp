#include "model/components/archiving_components.h"

#include <utility>

namespace corvane {

ArchivingComponents::ArchivingComponents(ModelContext& context, const MailComponents& mail,
                                         ProofProvider proofInputs)
  : destinations(context)
  , readings(context)
  , setAside(context)
  , candidates(context, mail.catalog, mail.filters)
  , ticks(context, candidates)
  , archiveRun(context)
  , proof(context, readings,
          [&context, &mail, inputs = std::move(proofInputs)] {
              return ProofJob{
                  mail.catalog.messages(), mail.catalog.state()->availability, inputs(), {}, context.support};
          })
  , rebuild(context,
            [this, &mail] { return archive::ScannedMail{mail.catalog.messages(), readings.facts()}; })
  , placeJobs(context,
              [this, &mail] { return archive::ScannedMail{mail.catalog.messages(), readings.facts()}; }) {}

} // namespace corvane
