// The sheet of one account in the archived overview: its years, folders and mail, and which of the years may
// be cleaned. Main thread.
#pragma once

#include <string>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/library/opening/archived_mail_opening.h"
#include "screens/archived/account/account_rows_model.h"
#include "screens/archived/figures/overview_figures.h"

namespace corvane {

class AccountDetail : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the archived overview")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY changed)
    Q_PROPERTY(QString freeable READ freeable NOTIFY changed)
    Q_PROPERTY(bool hasGuide READ hasGuide NOTIFY changed)
    Q_PROPERTY(QString awaitingText READ awaitingText NOTIFY changed)
    Q_PROPERTY(corvane::AccountRowsModel* rows READ rows CONSTANT)

  public:
    // `opening` must outlive it.
    explicit AccountDetail(ArchivedMailOpening& opening, QObject* parent = nullptr);

    // Of the group with that key.
    void open(const std::string& key);
    Q_INVOKABLE void close();

    void show(SharedOverview overview, OriginalKnowledge knowledge);

    // A group that has gone while it was looked at is open no longer.
    [[nodiscard]] bool isOpen() const { return group_ != nullptr; }

    [[nodiscard]] const std::string& key() const { return key_; }

    [[nodiscard]] QString title() const;

    // Which years may be cleaned, and what stands against the others.
    [[nodiscard]] QString subtitle() const;

    // Empty where nothing can be freed.
    [[nodiscard]] QString freeable() const;

    // There are years that may be cleaned.
    [[nodiscard]] bool hasGuide() const;

    // How many originals still have to be compared; empty for none.
    [[nodiscard]] QString awaitingText() const;

    [[nodiscard]] AccountRowsModel* rows() { return &rows_; }

    // Opens the original of the mail in this row in Apple Mail; `failed` follows where that isn't possible.
    Q_INVOKABLE void locateOriginal(int row);

  Q_SIGNALS:
    void changed();
    void failed(const QString& text);

  private:
    void find();

    ArchivedMailOpening& opening_;
    std::string key_;
    SharedOverview overview_;
    OriginalKnowledge knowledge_ = OriginalKnowledge::loading;
    const ArchivedOverviewGroup* group_ = nullptr; // of the overview
    const ArchivedOverviewStats::Group* stats_ = nullptr;
    AccountRowsModel rows_;
};

} // namespace corvane
