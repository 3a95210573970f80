#include "screens/archived/figures/year_status.h"

#include <array>
#include <cstddef>
#include <string_view>

#include <QStringList>

#include "library/overview/status_titles.h"

namespace corvane::screens {

namespace {

YearStatus make(const char16_t* key, const char16_t* symbol, const char16_t* label,
                const char16_t* tone = u"") {
    return {QString::fromUtf16(key), QString::fromUtf16(symbol), QString::fromUtf16(label),
            QString::fromUtf16(tone)};
}

YearStatus make(const char16_t* key, const char16_t* symbol, std::string_view label) {
    return {QString::fromUtf16(key),
            QString::fromUtf16(symbol),
            QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())),
            {}};
}

// With the word that everybody uses.
YearStatus make(const char16_t* key, const char16_t* symbol, ArchivedOverviewRowStatus status,
                const char16_t* tone = u"", bool awaitsProof = false) {
    YearStatus made = make(key, symbol, overviewStatusTitle(status, awaitsProof));
    made.tone = QString::fromUtf16(tone);
    return made;
}

YearStatus unknownStatus(OriginalKnowledge knowledge) {
    if (knowledge == OriginalKnowledge::unavailable)
        return make(u"unavailable", u"triangle-alert", ArchivedOverviewRowStatus::unavailable);
    if (knowledge == OriginalKnowledge::checking)
        return make(u"checking", u"loader-circle", ArchivedOverviewRowStatus::checking);
    const bool isPassing = knowledge == OriginalKnowledge::loading ||
                           knowledge == OriginalKnowledge::waiting ||
                           knowledge == OriginalKnowledge::scanning;
    return isPassing ? make(u"checking", u"loader-circle", u"正在确认…")
                     : make(u"unchecked", u"circle-question-mark", u"未检查");
}

constexpr std::size_t mostSpans = 4;

} // namespace

YearStatus yearStatus(OriginalKnowledge knowledge, ArchivedOverviewRowStatus status, bool awaitsProof) {
    if (knowledge != OriginalKnowledge::known) return unknownStatus(knowledge);
    switch (status) {
    case ArchivedOverviewRowStatus::cleanable:
        return make(u"cleanable", u"check", status, u"safe");
    case ArchivedOverviewRowStatus::incomplete:
        return awaitsProof ? make(u"awaiting", u"search", status, u"", true)
                           : make(u"incomplete", u"triangle-alert", status, u"attention");
    case ArchivedOverviewRowStatus::serverUnbacked:
        return make(u"server", u"cloud", status);
    case ArchivedOverviewRowStatus::pendingReview:
        return make(u"pending", u"circle-question-mark", status);
    case ArchivedOverviewRowStatus::completed:
        return make(u"completed", u"minus", status);
    case ArchivedOverviewRowStatus::unavailable:
        return unknownStatus(OriginalKnowledge::unavailable);
    case ArchivedOverviewRowStatus::checking:
        break;
    }
    return unknownStatus(OriginalKnowledge::waiting);
}

YearStatus yearStatus(OriginalKnowledge knowledge, const ArchivedOverviewStats::Year& year) {
    if (knowledge == OriginalKnowledge::known && isPartlyRemoved(year))
        return make(u"pending", u"circle-question-mark", overviewYearTitle(year));
    return yearStatus(knowledge, year.status, year.awaitsProof);
}

QString yearSpans(std::span<const std::int64_t> years) {
    QStringList spans;
    for (std::size_t first = 0; first < years.size();) {
        std::size_t last = first;
        while (last + 1 < years.size() && years[last + 1] == years[last] + 1) ++last;
        spans += first == last ? QString::number(years[first])
                               : QStringLiteral("%1 – %2").arg(years[first]).arg(years[last]);
        first = last + 1;
    }
    if (static_cast<std::size_t>(spans.size()) <= mostSpans) return spans.join(u'、');
    return spans.mid(0, mostSpans).join(u'、') + QStringLiteral(" 等 %1 个").arg(years.size());
}

} // namespace corvane::screens
