#include "screens/texts/partial_mail.h"

#include <optional>

#include "listing/deletion/deletion_safety.h"
#include "screens/texts/shown_figures.h"

namespace corvane::screens {

QString partialMailText(std::int64_t count) {
    if (count == 0) return {};
    return QStringLiteral("另有 %1在 Mail 里只有一部分，附件没有下载").arg(shownMessageCount(count));
}

QString partialMailText(MailComponents& mail) {
    const IndexCounts& counts = mail.counts;
    const IndexedYears indexed{counts.indexedYearCounts(), counts.indexedYearCountsByAccount(),
                               mail.accounts.selectedAccountPrefixes(), &counts.partialYearCountsByAccount()};
    return partialMailText(indexed.partialCount(std::nullopt, {}));
}

} // namespace corvane::screens
