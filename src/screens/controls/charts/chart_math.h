// The arithmetic of the charts: axis steps and the lengths of stacked parts. No state.
#pragma once

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class ChartMath : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

  public:
    using QObject::QObject;

    // The distance of the axis lines for values from 0 to `maximum`: 1, 2 or 5 times a power of ten, so that
    // at most four steps fit. At least 1.
    Q_INVOKABLE static qreal axisStep(qreal maximum);

    // Lengths of stacked parts that share `length` in proportion to `values`, with `gap` between neighbours
    // that show. A value that isn't zero gets at least 2, a zero (or less) gets 0. Their sum with the gaps is
    // `length` when there is room for that. Both lists hold numbers.
    Q_INVOKABLE static QVariantList parts(const QVariantList& values, qreal length, qreal gap);
};

} // namespace corvane
