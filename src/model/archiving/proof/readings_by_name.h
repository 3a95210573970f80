// The names of one archive among those under which readings are kept: a link or a mount gives its folder
// another one.
#pragma once

#include "locations/places/place_looks.h"
#include "records/archived/proof_facts.h"

namespace corvane {

// What was read, under each name of its archives that `kept` has as well. Under a name that can't be looked
// at, such as that of a disk which is mounted elsewhere now, only what takes back a reading that is kept, and
// only where the two have an unchanged file in common. Background work: looks at the places.
ReadingBatch underEveryName(const ReadingBatch& read, const ProofFacts& kept, PlaceLooks& looks);

} // namespace corvane
