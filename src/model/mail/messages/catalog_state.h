// Everything that is known of the mail at one moment. Immutable: a change publishes another state, whose
// unchanged parts are shared, so equal pointers mean equal content.
#pragma once

#include <memory>

#include "listing/availability.h"
#include "listing/message_set.h"
#include "records/statistics_records.h"

namespace corvane {

struct CatalogState {
    // The present generation, never null. Everything derived is of it.
    SharedMessageSet set = std::make_shared<const MessageSet>();

    // What a scan has listed so far, from its beginning; null once its generation is there. It stays where a
    // scan was cancelled or broke off.
    SharedMessageSet growing;

    MailScanSummary summary;

    // While the availability of the generation isn't known, only the statistics say something: those of the
    // generation before, or of a home snapshot. Never null.
    SharedAvailability availability = std::make_shared<const AvailabilityResult>();
    bool isAvailabilityKnown = true;

    // What is shown is a part of the mail: a scan is listing the rest, or has left it out. Nothing that is
    // said of all the mail may rest on it.
    [[nodiscard]] bool isPartial() const { return growing != nullptr; }

    // The messages that are shown.
    [[nodiscard]] const SharedMessageSet& shown() const { return growing ? growing : set; }
};

using SharedCatalogState = std::shared_ptr<const CatalogState>;

} // namespace corvane
