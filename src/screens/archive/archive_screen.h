// The archive sheet: where the mail goes and which, the run, and what came of it. Main thread. It holds no
// logic of the run: it hands messages to the model as candidates, ticks them there, and calls the model's
// run.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive/archive_candidates_model.h"
#include "screens/archive/archive_confirmation.h"
#include "screens/archive/archive_outcome.h"
#include "screens/archive/places/destination_choice.h"
#include "screens/archive/run/archive_progress.h"
#include "screens/archive/run/background_run.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/overview/organize_data.h"

namespace corvane {

// The messages that a screen wants archived. Their ids are made in the background: a million take their time.
struct ArchiveRequest {
    std::function<SharedTextSet()> makeIDs;
    std::set<std::int64_t> years; // empty: of all years
    bool isOfChosenMail = false;  // single messages were asked for, not years

    static ArchiveRequest of(std::shared_ptr<const SharedTextSet> ids);
};

class ArchiveScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(Stage stage READ stage NOTIFY stageChanged)
    Q_PROPERTY(bool isShown READ isShown NOTIFY stageChanged)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY stageChanged)
    Q_PROPERTY(QString partialText READ partialText NOTIFY stageChanged)
    Q_PROPERTY(corvane::ArchiveConfirmation confirmation READ confirmation NOTIFY confirmationChanged)
    Q_PROPERTY(int minimumSize READ minimumSize WRITE setMinimumSize NOTIFY confirmationChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorChanged)
    Q_PROPERTY(corvane::ArchiveCandidatesModel* candidates READ candidates CONSTANT)
    Q_PROPERTY(corvane::DestinationChoice* place READ place CONSTANT)
    Q_PROPERTY(corvane::BackgroundRun* background READ background CONSTANT)
    Q_PROPERTY(corvane::ArchiveProgress* progress READ progress CONSTANT)
    Q_PROPERTY(corvane::ArchiveOutcome* outcome READ outcome CONSTANT)

  public:
    enum Stage { Closed, Confirm, Running, Result };
    Q_ENUM(Stage)

    // All must outlive the screen.
    ArchiveScreen(CorvaneViewModel& model, OrganizeData& data, DesktopActions& desktop,
                  QObject* parent = nullptr);

    [[nodiscard]] Stage stage() const { return stage_; }

    // A run may go on behind any screen.
    [[nodiscard]] bool isShown() const { return stage_ != Closed && !background_.isBehind(); }

    [[nodiscard]] bool isRunning() const { return stage_ == Running; }

    // Of the mail that Mail holds in part; empty without any.
    [[nodiscard]] QString partialText() const;

    // Opens the sheet with these messages, all of them ticked; during a run brings that to the front.
    void open(ArchiveRequest request);

    [[nodiscard]] ArchiveConfirmation confirmation() const;

    // The position of the smallest size that is listed among `sizeTitles`.
    [[nodiscard]] int minimumSize() const;
    void setMinimumSize(int preset);

    [[nodiscard]] const QString& errorText() const { return errorText_; }

    [[nodiscard]] ArchiveCandidatesModel* candidates() { return &candidates_; }

    [[nodiscard]] DestinationChoice* place() { return &place_; }

    [[nodiscard]] BackgroundRun* background() { return &background_; }

    [[nodiscard]] ArchiveProgress* progress() { return &progress_; }

    [[nodiscard]] ArchiveOutcome* outcome() { return &outcome_; }

    Q_INVOKABLE void start();
    Q_INVOKABLE void cancelRun();

    Q_INVOKABLE void retryFailed();

    // Opens the sheet with what a cancelled run didn't come to.
    Q_INVOKABLE void continueRest();

    // Closes the sheet; `placeRequested` follows.
    Q_INVOKABLE void goTo(const QString& place);

    // Not during a run.
    Q_INVOKABLE void close();

  Q_SIGNALS:
    void stageChanged();
    void confirmationChanged();
    void errorChanged();
    // A run has ended and its result stands in the sheet.
    void archiveFinished();
    // A place of the sidebar is the next step.
    void placeRequested(const QString& key);

  private:
    void wire();
    void setStage(Stage stage);
    void setError(const QString& text);
    void showCandidates(std::shared_ptr<const SharedTextSet> requested);
    void forgetRun();
    void handleRunFailure(const QString& error);
    void showEnd();
    void handleRunEnd(ArchiveRunFlow::RunOutcome outcome);
    void endConfirmation();
    [[nodiscard]] bool canStart() const;

    [[nodiscard]] bool isLoading() const { return isPreparing_ || candidates_.isLoading(); }

    CorvaneViewModel& model_;
    OrganizeData& data_;
    ArchiveCandidatesModel candidates_;
    DestinationChoice place_;
    BackgroundRun background_;
    ArchiveProgress progress_;
    ArchiveOutcome outcome_;
    Stage stage_ = Closed;
    bool isOfChosenMail_ = false;   // of the open request
    ArchiveSelection runSelection_; // of the last run, with the list it ticks
    SharedMessageList runCandidates_;
    bool isPreparing_ = false;
    QString errorText_;
    std::set<std::int64_t> yearsBefore_; // of the candidates' filter, given back at the end
    TaskSlot prepareTask_;
};

} // namespace corvane
