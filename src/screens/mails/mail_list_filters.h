// The filters and the order of the mail list as the window sets and shows them. All of them live in
// ModelFilters; this makes their texts, their counts and the chips, and holds back the query until typing
// pauses. Main thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include "model/mail/account_directory.h"
#include "model/mail/messages/model_filters.h"
#include "screens/mails/filter_options.h"
#include "screens/mails/listed_counts.h"
#include "screens/mails/mail_year_filters.h"

namespace corvane {

// While somebody types, the list waits this long for the next character before it is filtered.
inline constexpr std::chrono::milliseconds queryPause{150};

class MailListFilters : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the mail list")
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(int migrated READ migrated WRITE setMigrated NOTIFY changed)
    Q_PROPERTY(int sortMode READ sortMode WRITE setSortMode NOTIFY changed)
    Q_PROPERTY(bool ascending READ ascending WRITE setAscending NOTIFY changed)
    Q_PROPERTY(int minimumAttachments READ minimumAttachments WRITE setMinimumAttachments NOTIFY changed)
    Q_PROPERTY(bool onlyTroubled READ onlyTroubled WRITE setOnlyTroubled NOTIFY changed)
    Q_PROPERTY(QString troubledCountText READ troubledCountText NOTIFY changed)
    Q_PROPERTY(bool narrows READ narrows NOTIFY changed)
    Q_PROPERTY(QStringList chips READ chips NOTIFY chipsChanged)
    Q_PROPERTY(corvane::FilterOptions* accounts READ accounts CONSTANT)
    Q_PROPERTY(corvane::MailYearFilters* years READ years CONSTANT)

  public:
    MailListFilters(ModelFilters& filters, AccountDirectory& accounts, QObject* parent = nullptr);

    [[nodiscard]] const QString& query() const { return query_; }

    [[nodiscard]] int migrated() const { return static_cast<int>(filters_.list().migratedFilter); }

    [[nodiscard]] int sortMode() const { return static_cast<int>(filters_.list().sortMode); }

    [[nodiscard]] bool ascending() const { return filters_.list().sortAscending; }

    [[nodiscard]] int minimumAttachments() const {
        return static_cast<int>(filters_.list().minimumAttachmentCount);
    }

    // Only mail with a reason why it doesn't count as archived.
    [[nodiscard]] bool onlyTroubled() const { return filters_.list().onlyTroubled; }

    // How many those are; empty for none.
    [[nodiscard]] QString troubledCountText() const;

    // Something hides messages: then an empty list can be filled by `clear`.
    [[nodiscard]] bool narrows() const;

    [[nodiscard]] const QStringList& chips() const { return chips_; }

    [[nodiscard]] FilterOptions* accounts() { return &accountOptions_; }

    [[nodiscard]] MailYearFilters* years() { return &years_; }

    void setQuery(const QString& query);
    void setMigrated(int filter);
    void setSortMode(int mode);
    void setAscending(bool ascending);
    void setMinimumAttachments(int count);
    void setOnlyTroubled(bool only);

    // Without waiting for the pause.
    Q_INVOKABLE void applyQuery();

    Q_INVOKABLE void toggleAccount(int row);
    Q_INVOKABLE void removeChip(int index);

    // Everything that hides messages, the query too; not the order.
    Q_INVOKABLE void clear();

    void setCounts(ListedCounts counts);

  Q_SIGNALS:
    void queryChanged();
    void changed();
    void chipsChanged();

  private:
    struct Chip {
        QString text;
        std::function<void()> remove;
    };

    void update();
    [[nodiscard]] QString accountTitle(const std::string& key) const;
    [[nodiscard]] std::vector<FilterOption> makeAccountOptions() const;
    [[nodiscard]] std::vector<Chip> makeChips();

    ModelFilters& filters_;
    AccountDirectory& directory_;
    ListedCounts counts_;
    FilterOptions accountOptions_;
    MailYearFilters years_;
    std::vector<Chip> chipList_;
    QStringList chips_;
    QString query_;
    QTimer pause_;
};

// "2015、2020–2021 年": neighbours as one range, in order.
QString yearRangesText(const std::set<std::int64_t>& years);

} // namespace corvane
