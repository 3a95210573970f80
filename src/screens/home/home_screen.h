// The organize home: what still has to go into the archive, by account, year and folder, how far the
// originals are backed up, and the way into a run. Main thread. It translates the model; all work is the
// model's.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive/archive_screen.h"
#include "screens/home/figures/account_shares_model.h"
#include "screens/home/organize_data.h"
#include "screens/home/safety_banner.h"
#include "screens/home/tree/organize_tree_model.h"
#include "screens/texts/destination_texts.h"

namespace corvane {

class HomeScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString organizeSimpleSummary READ organizeSimpleSummary NOTIFY figuresChanged)
    Q_PROPERTY(QString organizeSidebarSubtitle READ organizeSidebarSubtitle NOTIFY figuresChanged)
    Q_PROPERTY(QString organizeRangeTitle READ organizeRangeTitle NOTIFY figuresChanged)
    Q_PROPERTY(QString updatedText READ updatedText NOTIFY stateChanged)
    Q_PROPERTY(QString updateTitle READ updateTitle NOTIFY stateChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY stateChanged)
    Q_PROPERTY(bool canUpdate READ canUpdate NOTIFY stateChanged)
    Q_PROPERTY(QString scanLine READ scanLine NOTIFY stateChanged)
    Q_PROPERTY(QString scanElapsed READ scanElapsed NOTIFY scanElapsedChanged)
    Q_PROPERTY(QVariantList scanAccounts READ scanAccounts NOTIFY scanAccountsChanged)
    Q_PROPERTY(QString failureText READ failureText NOTIFY stateChanged)
    Q_PROPERTY(bool isFailureAdvice READ isFailureAdvice NOTIFY stateChanged)
    Q_PROPERTY(corvane::SafetyBanner banner READ banner NOTIFY figuresChanged)
    Q_PROPERTY(bool hasFigures READ hasFigures NOTIFY figuresChanged)
    Q_PROPERTY(QVariantList years READ years NOTIFY figuresChanged)
    Q_PROPERTY(QVariantList sums READ sums NOTIFY figuresChanged)
    Q_PROPERTY(int scopeYear READ scopeYear NOTIFY figuresChanged)
    Q_PROPERTY(bool isNarrowed READ isNarrowed NOTIFY figuresChanged)
    Q_PROPERTY(QString destinationName READ destinationName NOTIFY destinationChanged)
    Q_PROPERTY(QString destinationPath READ destinationPath NOTIFY destinationChanged)
    Q_PROPERTY(QString destinationSymbol READ destinationSymbol NOTIFY destinationChanged)
    Q_PROPERTY(bool hasDestination READ hasDestination NOTIFY destinationChanged)
    Q_PROPERTY(corvane::DestinationRemark locationRemark READ locationRemark NOTIFY destinationChanged)
    Q_PROPERTY(QString selectionTitle READ selectionTitle NOTIFY selectionChanged)
    Q_PROPERTY(QString selectionLine READ selectionLine NOTIFY selectionChanged)
    Q_PROPERTY(QString organizeSelectionSummary READ organizeSelectionSummary NOTIFY selectionChanged)
    Q_PROPERTY(QString organizePrimaryTitle READ organizePrimaryTitle NOTIFY selectionChanged)
    Q_PROPERTY(bool organizePrimaryDisabled READ organizePrimaryDisabled NOTIFY selectionChanged)
    Q_PROPERTY(QString nothingToDoLine READ nothingToDoLine NOTIFY stateChanged)
    Q_PROPERTY(corvane::OrganizeTreeModel* tree READ tree CONSTANT)
    Q_PROPERTY(corvane::AccountSharesModel* accounts READ accounts CONSTANT)

  public:
    enum State { NoAccess, Scanning, FirstUse, NothingToDo, List };
    Q_ENUM(State)

    // All must outlive the screen.
    HomeScreen(CorvaneViewModel& model, OrganizeData& data, ArchiveScreen& archive, DesktopActions& desktop,
               QObject* parent = nullptr);

    [[nodiscard]] State state() const;

    // What still has to be archived, in one sentence.
    [[nodiscard]] QString organizeSimpleSummary() const;

    // The number beside the screen's name; empty where it isn't known.
    [[nodiscard]] QString organizeSidebarSubtitle() const;

    // The scope's title: "全部年份", "2021 年", with the account where one is looked at.
    [[nodiscard]] QString organizeRangeTitle() const;

    [[nodiscard]] QString updatedText() const;
    [[nodiscard]] QString updateTitle() const;

    [[nodiscard]] bool isScanning() const { return model_.scanFlow().state().isScanning(); }

    // A scan would take the messages of a run from below it.
    [[nodiscard]] bool canUpdate() const { return !isScanning() && !archive_.isRunning(); }

    [[nodiscard]] QString scanLine() const;
    [[nodiscard]] QString scanElapsed() const;
    [[nodiscard]] QVariantList scanAccounts() const;
    [[nodiscard]] QString failureText() const;

    [[nodiscard]] bool isFailureAdvice() const { return model_.scanFlow().scanFailureIsYearRangeInfo(); }

    [[nodiscard]] SafetyBanner banner() const;

    // What is archived is known; before that only the candidates are.
    [[nodiscard]] bool hasFigures() const { return data_.isKnown() && data_.overview()->hasMessages; }

    [[nodiscard]] QVariantList years() const;

    // The three series in all, for legend and share bar.
    [[nodiscard]] QVariantList sums() const;

    [[nodiscard]] int scopeYear() const { return static_cast<int>(scope_.year.value_or(0)); }

    [[nodiscard]] bool isNarrowed() const { return scope_ != OrganizeScope(); }

    [[nodiscard]] QString destinationName() const;
    [[nodiscard]] QString destinationPath() const;
    [[nodiscard]] QString destinationSymbol() const;

    [[nodiscard]] bool hasDestination() const { return destination().path.has_value(); }

    [[nodiscard]] DestinationRemark locationRemark() const;

    // "已选 462.8 MB" and the same with the count; what is to come where nothing is ticked.
    [[nodiscard]] QString selectionTitle() const;
    [[nodiscard]] QString selectionLine() const;
    [[nodiscard]] QString organizeSelectionSummary() const;
    [[nodiscard]] QString nothingToDoLine() const;
    [[nodiscard]] QString organizePrimaryTitle() const;
    [[nodiscard]] bool organizePrimaryDisabled() const;

    [[nodiscard]] OrganizeTreeModel* tree() { return &tree_; }

    [[nodiscard]] AccountSharesModel* accounts() { return &accounts_; }

    Q_INVOKABLE void runOrganizePrimaryAction();

    // Narrows to the year; 0 gives all years back. Ticks outside stay.
    Q_INVOKABLE void setScopeYear(int year);
    Q_INVOKABLE void chooseAccount(int row);
    Q_INVOKABLE void clearScope();

    // The selected rows of the tree as lines of text.
    Q_INVOKABLE void copyTreeRows();

    Q_INVOKABLE void updateMailData();
    Q_INVOKABLE void cancelScan();
    Q_INVOKABLE void recheckAccess();
    Q_INVOKABLE void openPrivacySettings();

    // Rows wait while a pointer is pressed or a menu is open.
    Q_INVOKABLE void setHeld(bool held) { data_.setHeld(held); }

  Q_SIGNALS:
    void stateChanged();
    void figuresChanged();
    void destinationChanged();
    void selectionChanged();
    void scanElapsedChanged();
    void scanAccountsChanged();
    // The library is the next step: everything is archived.
    void libraryRequested();

  private:
    enum class HomeAction { organize, openArchiveLibrary };

    void wire();
    void takeOverview();
    void takeScanState();
    void setScope(OrganizeScope scope);
    void showFigures();
    void openArchive(bool everything);
    void openLibrary();
    [[nodiscard]] HomeAction effectiveHomeAction() const;
    [[nodiscard]] std::int64_t candidateCount() const;
    [[nodiscard]] std::int64_t candidateCountInScope() const;
    [[nodiscard]] DeletionSafety safety() const;
    [[nodiscard]] DestinationView destination() const;

    CorvaneViewModel& model_;
    OrganizeData& data_;
    ArchiveScreen& archive_;
    DesktopActions& desktop_;
    OrganizeTreeModel tree_;
    AccountSharesModel accounts_;
    OrganizeScope scope_;
    OrganizeSelection selection_;
    QElapsedTimer scanClock_;
    QTimer scanTick_;
};

} // namespace corvane
