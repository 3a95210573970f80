#include "model/components/mail_components.h"

#include <utility>

namespace corvane {

MailComponents::MailComponents(ModelContext& context, MessageCatalog::InputsProvider availability)
  : diskAccess(context)
  , accounts(context)
  , catalog(context, std::move(availability))
  , visible(context, catalog, filters)
  , counts(context, accounts)
  , space(context, accounts, catalog)
  , scanFlow(context, accounts, catalog, counts, filters)
  , previews(context, catalog)
  , diagnostics(context, accounts) {}

} // namespace corvane
