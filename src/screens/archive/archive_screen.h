// The archive sheet: where the mail goes and which, the run, and what came of it. Main thread. It holds no
// logic of the run: it offers messages to the model as candidates, ticks them there, and calls the model's
// run.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive/archive_candidates_model.h"
#include "screens/archive/archive_progress.h"
#include "screens/archive/archive_result.h"
#include "screens/archive/places/folder_picker.h"
#include "screens/archive/places/quick_destinations.h"
#include "screens/home/organize_data.h"
#include "screens/shell/desktop_actions.h"
#include "screens/texts/destination_texts.h"

namespace corvane {

// The messages that a screen hands over, made in the background: a list of a million ids takes its time.
struct ArchiveOffer {
    std::function<SharedTextSet()> makeIDs;
    std::set<std::int64_t> years; // empty: of all years
};

class ArchiveScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(Stage stage READ stage NOTIFY stageChanged)
    Q_PROPERTY(bool isShown READ isShown NOTIFY stageChanged)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY stageChanged)
    Q_PROPERTY(QString destinationName READ destinationName NOTIFY destinationChanged)
    Q_PROPERTY(QString destinationSymbol READ destinationSymbol NOTIFY destinationChanged)
    Q_PROPERTY(QString destinationPlace READ destinationPlace NOTIFY destinationChanged)
    Q_PROPERTY(QUrl destinationFolder READ destinationFolder NOTIFY destinationChanged)
    Q_PROPERTY(corvane::DestinationRemark remark READ remark NOTIFY destinationChanged)
    Q_PROPERTY(QString archiveButtonTitle READ archiveButtonTitle NOTIFY selectionChanged)
    Q_PROPERTY(bool canStart READ canStart NOTIFY selectionChanged)
    Q_PROPERTY(QString archiveSelectionSummary READ archiveSelectionSummary NOTIFY selectionChanged)
    Q_PROPERTY(QString archiveScopeTitle READ archiveScopeTitle NOTIFY candidatesChanged)
    Q_PROPERTY(QString archiveEmptyTitle READ archiveEmptyTitle NOTIFY candidatesChanged)
    Q_PROPERTY(QString archiveEmptyDescription READ archiveEmptyDescription NOTIFY candidatesChanged)
    Q_PROPERTY(QString tickedText READ tickedText NOTIFY selectionChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY candidatesChanged)
    Q_PROPERTY(QString spaceText READ spaceText NOTIFY selectionChanged)
    Q_PROPERTY(bool isSpaceShort READ isSpaceShort NOTIFY selectionChanged)
    Q_PROPERTY(QString footnote READ footnote NOTIFY selectionChanged)
    Q_PROPERTY(QStringList sizeTitles READ sizeTitles CONSTANT)
    Q_PROPERTY(int minimumSize READ minimumSize WRITE setMinimumSize NOTIFY candidatesChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorChanged)
    Q_PROPERTY(corvane::ArchiveResultView result READ result NOTIFY stageChanged)
    Q_PROPERTY(corvane::ArchiveCandidatesModel* candidates READ candidates CONSTANT)
    Q_PROPERTY(corvane::QuickDestinations* quickDestinations READ quickDestinations CONSTANT)
    Q_PROPERTY(corvane::FolderPicker* folderPicker READ folderPicker CONSTANT)
    Q_PROPERTY(corvane::ArchiveProgress* progress READ progress CONSTANT)

  public:
    enum Stage { Closed, Confirm, Running, Result };
    Q_ENUM(Stage)

    // All must outlive the screen.
    ArchiveScreen(CorvaneViewModel& model, OrganizeData& data, DesktopActions& desktop,
                  QObject* parent = nullptr);

    [[nodiscard]] Stage stage() const { return stage_; }

    // A run may go on behind any screen.
    [[nodiscard]] bool isShown() const { return stage_ != Closed && !isInBackground_; }

    [[nodiscard]] bool isRunning() const { return stage_ == Running; }

    // Opens the sheet with these messages, all of them ticked; during a run brings that to the front.
    void open(ArchiveOffer offer);

    // The same for ids that are there already.
    void open(const std::shared_ptr<const SharedTextSet>& ids);

    [[nodiscard]] QString destinationName() const;
    [[nodiscard]] QString destinationSymbol() const;

    // Provider or disk and folder: "坚果云 · 邮件归档".
    [[nodiscard]] QString destinationPlace() const;
    [[nodiscard]] QUrl destinationFolder() const;
    [[nodiscard]] DestinationRemark remark() const;
    [[nodiscard]] QString archiveButtonTitle() const;
    [[nodiscard]] bool canStart() const;
    [[nodiscard]] QString archiveSelectionSummary() const;
    [[nodiscard]] QString archiveScopeTitle() const;
    [[nodiscard]] QString archiveEmptyTitle() const;
    [[nodiscard]] QString archiveEmptyDescription() const;
    [[nodiscard]] QString tickedText() const;

    [[nodiscard]] bool isLoading() const { return isPreparing_ || candidates_.isLoading(); }

    [[nodiscard]] QString spaceText() const;
    [[nodiscard]] bool isSpaceShort() const;
    [[nodiscard]] QString footnote() const;
    [[nodiscard]] QStringList sizeTitles() const;
    [[nodiscard]] int minimumSize() const;
    void setMinimumSize(int preset);

    [[nodiscard]] const QString& errorText() const { return errorText_; }

    [[nodiscard]] const ArchiveResultView& result() const { return result_; }

    [[nodiscard]] ArchiveCandidatesModel* candidates() { return &candidates_; }

    [[nodiscard]] QuickDestinations* quickDestinations() { return &quickDestinations_; }

    [[nodiscard]] FolderPicker* folderPicker() { return &folderPicker_; }

    [[nodiscard]] ArchiveProgress* progress() { return &progress_; }

    Q_INVOKABLE void chooseDestination(const QUrl& folder);
    Q_INVOKABLE void start();
    Q_INVOKABLE void cancelRun();

    // The run goes on without its sheet; `bringToFront` shows it again.
    Q_INVOKABLE void sendToBackground();
    Q_INVOKABLE void bringToFront();
    Q_INVOKABLE void retryFailed();
    Q_INVOKABLE void copyFailures();
    Q_INVOKABLE void copyVariants();

    // The selected candidates as lines of text. Large selections arrive a moment later.
    Q_INVOKABLE void copyCandidates();

    // Not during a run.
    Q_INVOKABLE void close();

  Q_SIGNALS:
    void stageChanged();
    void destinationChanged();
    void selectionChanged();
    void candidatesChanged();
    void errorChanged();
    // A run has ended and its result stands in the sheet.
    void archiveFinished();

  private:
    void wire();
    void setStage(Stage stage);
    void setError(const QString& text);
    void takeOffer(std::shared_ptr<const SharedTextSet> offered);
    void takeOutcome(ArchiveRunFlow::RunOutcome outcome);
    void endConfirmation();
    [[nodiscard]] DestinationView destination() const;
    [[nodiscard]] DeletionSafety safety() const;

    CorvaneViewModel& model_;
    OrganizeData& data_;
    DesktopActions& desktop_;
    ArchiveCandidatesModel candidates_;
    QuickDestinations quickDestinations_;
    FolderPicker folderPicker_;
    ArchiveProgress progress_;
    Stage stage_ = Closed;
    bool isInBackground_ = false;
    bool isPreparing_ = false;
    QString errorText_;
    std::int64_t chosenCount_ = 0;
    std::vector<EmailArchiveFailure> failures_;
    std::vector<std::string> variantWarnings_;
    ArchiveResultView result_;
    std::set<std::int64_t> yearsBefore_; // of the candidates' filter, given back at the end
    TaskSlot prepareTask_;
    TaskSlot copyTask_;
};

} // namespace corvane
