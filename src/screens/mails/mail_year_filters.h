// The years of the mail list's filters: those that are ticked, and the limit below which mail counts as old.
// Main thread.
#pragma once

#include <cstdint>
#include <map>
#include <set>

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "model/mail/messages/model_filters.h"
#include "screens/mails/filter_options.h"

namespace corvane {

class MailYearFilters : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the filters of the mail list")
    Q_PROPERTY(bool onlyBeforeCutoff READ onlyBeforeCutoff WRITE setOnlyBeforeCutoff NOTIFY changed)
    Q_PROPERTY(int cutoff READ cutoff NOTIFY changed)
    Q_PROPERTY(bool narrows READ narrows NOTIFY changed)
    Q_PROPERTY(corvane::FilterOptions* options READ options CONSTANT)

  public:
    // `filters` must outlive it.
    explicit MailYearFilters(ModelFilters& filters, QObject* parent = nullptr)
      : QObject(parent)
      , filters_(filters) {}

    [[nodiscard]] bool onlyBeforeCutoff() const { return filters_.list().onlyBeforeCutoff; }

    void setOnlyBeforeCutoff(bool only);

    [[nodiscard]] int cutoff() const { return static_cast<int>(filters_.list().yearCutoff); }

    // Some years are hidden.
    [[nodiscard]] bool narrows() const { return onlyBeforeCutoff() || !filters_.list().filterYears.empty(); }

    [[nodiscard]] FilterOptions* options() { return &options_; }

    Q_INVOKABLE void toggle(int row);

    // No year is hidden.
    Q_INVOKABLE void clear();

    // The messages of each year within the other filters; the chosen years stand there in any case.
    void show(std::map<std::int64_t, std::int64_t> counts);

  Q_SIGNALS:
    void changed();

  private:
    ModelFilters& filters_;
    FilterOptions options_;
};

} // namespace corvane
