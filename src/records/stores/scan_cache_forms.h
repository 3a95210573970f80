// The JSON forms of the files of a scan.
#pragma once

#include <tuple>

#include "records/json/record_forms.h"
#include "records/stores/scan_cache_file.h"

namespace corvane {

template <class R>
constexpr auto scanCacheFields =
    std::tuple{jsonField("scannedAt", &R::scannedAt),
               jsonField("summary", &R::summary),
               jsonField("messages", &R::messages),
               jsonField("locallyAvailableMessageIDs", &R::locallyAvailableMessageIDs),
               jsonField("localYearStats", &R::localYearStats),
               jsonField("localAccountYearStats", &R::localAccountYearStats)};

template <>
struct JsonForm<MailScanCache> {
    static constexpr auto fields = scanCacheFields<MailScanCache>;
};

template <>
struct JsonForm<ScanCacheContent> {
    static constexpr auto fields = scanCacheFields<ScanCacheContent>;
};

template <>
struct JsonForm<MailHomeSnapshot> {
    using R = MailHomeSnapshot;
    static constexpr auto fields = std::tuple{jsonField("scannedAt", &R::scannedAt),
                                              jsonField("summary", &R::summary),
                                              jsonField("localMessageCount", &R::localMessageCount),
                                              jsonField("localMessageBytes", &R::localMessageBytes),
                                              jsonField("localYearStats", &R::localYearStats),
                                              jsonField("localAccountYearStats", &R::localAccountYearStats)};
};

} // namespace corvane
