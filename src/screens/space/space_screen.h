// The screen Mail 空间: what each account of Mail occupies on this machine, its largest senders, and the way
// to archive the mail of some of them. Main thread. The figures are the model's, from the moment that it is
// known what is on this machine or the screen was opened; the ticks are kept by account as long as the
// program runs.
#pragma once

#include <functional>
#include <map>
#include <string>

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "library/overview/space_detail.h"
#include "model/corvane_view_model.h"
#include "screens/archive/archive_screen.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/space/space_accounts_model.h"
#include "screens/space/space_chosen_account.h"
#include "screens/space/space_senders_model.h"

namespace corvane {

class SpaceScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(State state READ state NOTIFY changed)
    Q_PROPERTY(QString totalSize READ totalSize NOTIFY changed)
    Q_PROPERTY(QString totalCount READ totalCount NOTIFY changed)
    Q_PROPERTY(QVariantList shares READ shares NOTIFY changed)
    Q_PROPERTY(corvane::SpaceChosenAccount chosen READ chosen NOTIFY changed)
    Q_PROPERTY(QString note READ note CONSTANT)
    Q_PROPERTY(bool canBackUp READ canBackUp NOTIFY changed)
    Q_PROPERTY(QString backUpTitle READ backUpTitle NOTIFY changed)
    Q_PROPERTY(corvane::SpaceAccountsModel* accounts READ accounts CONSTANT)
    Q_PROPERTY(corvane::SpaceSendersModel* senders READ senders CONSTANT)

  public:
    enum State { Loading, NoAccess, NoMail, Scanning, Partial, Listed };
    Q_ENUM(State)

    // All must outlive the screen.
    SpaceScreen(CorvaneViewModel& model, ArchiveScreen& archive, DesktopActions& desktop,
                QObject* parent = nullptr);

    // Makes the figures, now and from here on.
    Q_INVOKABLE void open();

    [[nodiscard]] State state() const;

    // Of the mail on this machine; empty while it isn't known.
    [[nodiscard]] QString totalSize() const;
    [[nodiscard]] QString totalCount() const;

    // The total size, or a dash as long as it is being found out.
    [[nodiscard]] QString sidebarFigure() const;

    // The accounts as parts of a share bar; all beyond the third are one.
    [[nodiscard]] QVariantList shares() const;

    [[nodiscard]] SpaceChosenAccount chosen() const;
    [[nodiscard]] QString note() const;

    // Something is ticked, it is known what is on this machine, and no run is under way.
    [[nodiscard]] bool canBackUp() const;
    [[nodiscard]] QString backUpTitle() const;

    [[nodiscard]] SpaceAccountsModel* accounts() { return &accounts_; }

    [[nodiscard]] SpaceSendersModel* senders() { return &senders_; }

    Q_INVOKABLE void openAccount(int row);
    Q_INVOKABLE void closeAccount();

    // Of all selected rows where this is one of them: they take the tick that it gets.
    Q_INVOKABLE void toggleTicks(int row);
    Q_INVOKABLE void toggleTick(int row);
    Q_INVOKABLE void setAllTicks(bool ticked);

    // Opens the sheet of the archive with the mail of the ticked senders; during a run shows that.
    Q_INVOKABLE void backUp();

    // The selected senders as lines of text.
    Q_INVOKABLE void copySenders();

  Q_SIGNALS:
    void changed();

  private:
    void update();
    void showSenders();
    void setTick(int row, bool ticked);
    [[nodiscard]] const SpaceAccountUsage* account() const;
    [[nodiscard]] const SpaceSenderTicks& ticks() const;

    CorvaneViewModel& model_;
    ArchiveScreen& archive_;
    DesktopActions& desktop_;
    bool isOpened_ = false;
    bool wasClosed_ = false; // nobody looks at an account, and none is chosen by itself
    std::string chosenKey_;
    std::map<std::string, SpaceSenderTicks> ticks_; // by account
    SpaceAccountsModel accounts_;
    SpaceSendersModel senders_;
};

} // namespace corvane
