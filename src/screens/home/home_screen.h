// The organize home: what still has to go into the archive, by account, year and folder, how far the
// originals are backed up, and the way into a run. Main thread. It translates the model; all work is the
// model's.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive/archive_screen.h"
#include "screens/desktop/access_actions.h"
#include "screens/home/figures/account_shares_model.h"
#include "screens/home/organize_figures.h"
#include "screens/home/proof_status.h"
#include "screens/home/scan_status.h"
#include "screens/home/tree/organize_tree_model.h"
#include "screens/overview/organize_data.h"
#include "screens/texts/destination_item.h"

namespace corvane {

class HomeScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString organizeSimpleSummary READ organizeSimpleSummary NOTIFY figuresChanged)
    Q_PROPERTY(QString nothingToDoLine READ nothingToDoLine NOTIFY stateChanged)
    Q_PROPERTY(corvane::OrganizeFigures figures READ figures NOTIFY figuresChanged)
    Q_PROPERTY(corvane::OrganizeSelectionItem selection READ selection NOTIFY selectionChanged)
    Q_PROPERTY(corvane::DestinationItem destination READ destination NOTIFY destinationChanged)
    Q_PROPERTY(corvane::ScanStatus* scan READ scan CONSTANT)
    Q_PROPERTY(corvane::ProofStatus* proof READ proof CONSTANT)
    Q_PROPERTY(corvane::AccessActions* access READ access CONSTANT)
    Q_PROPERTY(corvane::OrganizeTreeModel* tree READ tree CONSTANT)
    Q_PROPERTY(corvane::AccountSharesModel* accounts READ accounts CONSTANT)

  public:
    enum State {
        NoAccess,
        Scanning,
        FirstUse,
        Loading, // the last result hasn't been read yet
        Partial, // a scan didn't come to its end: nothing here says anything of all mail
        NothingToDo,
        List,
    };
    Q_ENUM(State)

    // All must outlive the screen.
    HomeScreen(CorvaneViewModel& model, OrganizeData& data, ArchiveScreen& archive, DesktopActions& desktop,
               QObject* parent = nullptr);

    [[nodiscard]] State state() const;

    // What still has to be archived, in one sentence.
    [[nodiscard]] QString organizeSimpleSummary() const;

    // The number beside the screen's name; empty where it isn't known.
    [[nodiscard]] QString organizeSidebarSubtitle() const;

    // Where to go on when all is archived; empty where there is no archive. Names no place of the window that
    // isn't in the sidebar.
    [[nodiscard]] QString nothingToDoLine() const;

    [[nodiscard]] OrganizeFigures figures() const;
    [[nodiscard]] OrganizeSelectionItem selection() const;

    [[nodiscard]] DestinationItem destination() const { return DestinationItem::of(model_); }

    [[nodiscard]] ScanStatus* scan() { return &scan_; }

    [[nodiscard]] ProofStatus* proof() { return &proof_; }

    [[nodiscard]] AccessActions* access() { return &access_; }

    [[nodiscard]] OrganizeTreeModel* tree() { return &tree_; }

    [[nodiscard]] AccountSharesModel* accounts() { return &accounts_; }

    Q_INVOKABLE void runOrganizePrimaryAction();

    // Narrows to the year; 0 gives all years back. Ticks outside stay.
    Q_INVOKABLE void setScopeYear(int year);
    Q_INVOKABLE void chooseAccount(int row);
    Q_INVOKABLE void clearScope();

    // Narrows the list of mail to what has a reason why it doesn't count as archived, within the scope that
    // is looked at. `troubledRequested` follows.
    Q_INVOKABLE void showTroubled();

    // The selected rows of the tree as lines of text.
    Q_INVOKABLE void copyTreeRows();

    // Rows wait while a pointer is pressed or a menu is open.
    Q_INVOKABLE void setHeld(bool held) { data_.setHeld(held); }

  Q_SIGNALS:
    void stateChanged();
    void figuresChanged();
    void destinationChanged();
    void selectionChanged();
    // The library is the next step: everything is archived.
    void libraryRequested();
    // The list of mail is the next step: it shows what has trouble.
    void troubledRequested();

  private:
    enum class HomeAction { organize, openArchiveLibrary };

    void wire();
    void handleOverviewChange();
    void handleScopeCleared();
    void dropMissingYear();
    void showScope();
    void updateFigures();
    void setScope(OrganizeScope scope);
    void applyScope();
    void openArchive(bool everything);
    [[nodiscard]] bool hasFigures() const;

    [[nodiscard]] bool isPartial() const { return model_.mail().catalog.state()->isPartial(); }

    [[nodiscard]] SafetyBanner banner(const DeletionSafety& safety) const;
    [[nodiscard]] QString organizeRangeTitle() const;
    [[nodiscard]] QString organizeSelectionSummary() const;
    [[nodiscard]] QString organizePrimaryTitle() const;
    [[nodiscard]] bool organizePrimaryDisabled() const;
    [[nodiscard]] HomeAction effectiveHomeAction() const;
    [[nodiscard]] std::int64_t candidateCount() const;
    [[nodiscard]] std::int64_t candidateCountInScope() const;
    [[nodiscard]] DeletionSafety safety() const;
    [[nodiscard]] std::set<std::int64_t> scopeYears() const;

    CorvaneViewModel& model_;
    OrganizeData& data_;
    ArchiveScreen& archive_;
    DesktopActions& desktop_;
    ScanStatus scan_;
    ProofStatus proof_;
    AccessActions access_;
    OrganizeTreeModel tree_;
    AccountSharesModel accounts_;
    OrganizeScope scope_;
    OrganizeSelection selection_; // what the ticks amount to
};

} // namespace corvane
