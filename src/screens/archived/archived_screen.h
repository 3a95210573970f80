// The screen 已归档概览: how much room the originals of archived mail would free, by account, year and
// folder, and what is to be done before they may go. Main thread. All figures are the model's; nothing here
// starts to look for originals before the screen was opened.
#pragma once

#include <optional>
#include <string>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/archiving/proof/away_proof_count.h"
#include "model/corvane_view_model.h"
#include "screens/archived/account/account_detail.h"
#include "screens/archived/figures/archived_accounts_model.h"
#include "screens/archived/figures/overview_figures.h"
#include "screens/archived/guide/deletion_guide.h"
#include "screens/archived/original_check.h"
#include "screens/archived/overview_proof.h"
#include "screens/desktop/access_actions.h"
#include "screens/desktop/desktop_actions.h"

namespace corvane {

class ArchivedScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(State state READ state NOTIFY changed)
    Q_PROPERTY(corvane::OverviewHero hero READ hero NOTIFY changed)
    Q_PROPERTY(QVariantList holdings READ holdings NOTIFY changed)
    Q_PROPERTY(QString totalCount READ totalCount NOTIFY changed)
    Q_PROPERTY(QString totalSize READ totalSize NOTIFY changed)
    Q_PROPERTY(bool needsAccess READ needsAccess NOTIFY changed)
    Q_PROPERTY(int filter READ filter WRITE setFilter NOTIFY changed)
    Q_PROPERTY(corvane::OriginalCheck* check READ check CONSTANT)
    Q_PROPERTY(corvane::OverviewProof* proof READ proof CONSTANT)
    Q_PROPERTY(corvane::ArchivedAccountsModel* accounts READ accounts CONSTANT)
    Q_PROPERTY(corvane::AccountDetail* detail READ detail CONSTANT)
    Q_PROPERTY(corvane::DeletionGuide* guide READ guide CONSTANT)
    Q_PROPERTY(corvane::AccessActions* access READ access CONSTANT)

  public:
    enum State { Loading, Empty, Listed };
    Q_ENUM(State)

    // Both must outlive the screen.
    ArchivedScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    // It was looked at: from here on the figures are made. Shows what an earlier check has found.
    Q_INVOKABLE void open();

    [[nodiscard]] State state() const;

    [[nodiscard]] OriginalKnowledge knowledge() const;

    [[nodiscard]] OverviewHero hero() const;
    [[nodiscard]] QVariantList holdings() const;
    [[nodiscard]] QString totalCount() const;
    [[nodiscard]] QString totalSize() const;

    // What can be freed, for the sidebar: words for what isn't known of now, empty without archived mail.
    [[nodiscard]] QString sidebarFigure() const;

    [[nodiscard]] bool needsAccess() const { return model_.mail().diskAccess.needsFullDiskAccess(); }

    // The place in the list of filters.
    [[nodiscard]] int filter() const { return static_cast<int>(filter_); }

    void setFilter(int filter);

    [[nodiscard]] OriginalCheck* check() { return &check_; }

    [[nodiscard]] OverviewProof* proof() { return &proof_; }

    [[nodiscard]] ArchivedAccountsModel* accounts() { return &accounts_; }

    [[nodiscard]] AccountDetail* detail() { return &detail_; }

    [[nodiscard]] DeletionGuide* guide() { return &guide_; }

    [[nodiscard]] AccessActions* access() { return &access_; }

    Q_INVOKABLE void openAccount(int row);

    // For the years of the account that is open.
    Q_INVOKABLE void openGuide();

    // Asks for the sheet of address collections: for the account that is open, else for a new group.
    Q_INVOKABLE void collect();

  Q_SIGNALS:
    void changed();
    // Empty for a new group.
    void collectionRequested(const QString& accountKey);

  private:
    void wire();
    void update();
    void showCachedCheck();

    CorvaneViewModel& model_;
    OriginalCheck check_;
    OverviewProof proof_;
    AwayProofCount away_;
    bool isOpened_ = false;
    ArchivedOverviewFilter filter_ = ArchivedOverviewFilter::all;
    ArchivedShares shares_;
    ArchivedAccountsModel accounts_;
    AccountDetail detail_;
    DeletionGuide guide_;
    AccessActions access_;
};

} // namespace corvane
