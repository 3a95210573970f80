#include "screens/controls/charts/chart_math.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

constexpr qreal mostSteps = 4;
constexpr qreal shortestPart = 2;

} // namespace

qreal ChartMath::axisStep(qreal maximum) {
    if (maximum <= mostSteps) return 1;
    const qreal power = std::pow(10, std::floor(std::log10(maximum / mostSteps)));
    for (const qreal factor : {1.0, 2.0, 5.0})
        if (maximum / (factor * power) <= mostSteps) return factor * power;
    return 10 * power;
}

QVariantList ChartMath::parts(const QVariantList& values, qreal length, qreal gap) {
    struct Part {
        qsizetype position;
        qreal value;
    };

    QList<Part> parts;
    qreal total = 0;
    for (qsizetype i = 0; i < values.size(); ++i) {
        const qreal value = values[i].toReal();
        if (value > 0) parts.append({i, value});
        total += std::max<qreal>(0, value);
    }
    // The short ones first: what they take beyond their share is missing for the others.
    std::sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) { return a.value < b.value; });
    qreal room = std::max<qreal>(0, length - gap * static_cast<qreal>(parts.size() - 1));
    QVariantList result(values.size(), 0.0);
    for (const Part& part : parts) {
        const qreal wanted = std::max(shortestPart, room * part.value / total);
        result[part.position] = wanted;
        room = std::max<qreal>(0, room - wanted);
        total -= part.value;
    }
    return result;
}

} // namespace corvane
