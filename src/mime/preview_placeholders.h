// The placeholders of a record's preview, under the names of the store's reader.
#pragma once

#include "records/preview_placeholders.h"

namespace corvane::mailstore {

using corvane::emptyBodyPreviewPlaceholder;
using corvane::lazyPreviewPlaceholder;

} // namespace corvane::mailstore
