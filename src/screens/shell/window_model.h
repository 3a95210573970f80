// What the window shows: one object for each screen over the one application model, and what the frame around
// the screens needs. Main thread. Made by the entry; the QML root gets it as its initial property `app`.
#pragma once

#include <chrono>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive/archive_screen.h"
#include "screens/archived/archived_screen.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/home/home_screen.h"
#include "screens/library/library_screen.h"
#include "screens/mails/mail_list_screen.h"
#include "screens/overview/organize_data.h"
#include "screens/places/places_screen.h"
#include "screens/settings/collection/address_collection.h"
#include "screens/settings/settings_travel.h"
#include "screens/shell/sidebar/activity.h"
#include "screens/shell/sidebar/sidebar_model.h"
#include "screens/shell/start/other_mail.h"
#include "screens/shell/start/sample_store.h"
#include "screens/shell/window_lengths.h"
#include "screens/shell/window_notices.h"
#include "screens/space/space_screen.h"
#include "screens/texts/destination_item.h"

namespace corvane {

class WindowModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the entry of the program")
    Q_PROPERTY(corvane::HomeScreen* home READ home CONSTANT)
    Q_PROPERTY(corvane::ArchiveScreen* archive READ archive CONSTANT)
    Q_PROPERTY(corvane::SidebarModel* sidebar READ sidebar CONSTANT)
    Q_PROPERTY(corvane::Activity* activity READ activity CONSTANT)
    Q_PROPERTY(corvane::DestinationItem destination READ destination NOTIFY destinationChanged)
    Q_PROPERTY(corvane::SampleStore* sampleStore READ sampleStore CONSTANT)
    Q_PROPERTY(corvane::OtherMail* otherMail READ otherMail CONSTANT)
    Q_PROPERTY(corvane::ArchivedScreen* archived READ archived CONSTANT)
    Q_PROPERTY(corvane::MailListScreen* mails READ mails CONSTANT)
    Q_PROPERTY(corvane::LibraryScreen* library READ library CONSTANT)
    Q_PROPERTY(corvane::SpaceScreen* space READ space CONSTANT)
    Q_PROPERTY(corvane::PlacesScreen* places READ places CONSTANT)
    Q_PROPERTY(corvane::SettingsTravel* settings READ settings CONSTANT)
    Q_PROPERTY(corvane::AddressCollection* collection READ collection CONSTANT)
    Q_PROPERTY(bool archiving READ archiving NOTIFY archivingChanged)
    Q_PROPERTY(corvane::WindowNotices* notices READ notices CONSTANT)
    Q_PROPERTY(corvane::WindowLengths* lengths READ lengths CONSTANT)

  public:
    // `model` must outlive the window's model.
    // Figures change at most once an interval.
    explicit WindowModel(CorvaneViewModel& model,
                         std::chrono::milliseconds figuresInterval = std::chrono::seconds(1),
                         QObject* parent = nullptr);

    [[nodiscard]] HomeScreen* home() { return &home_; }

    [[nodiscard]] ArchiveScreen* archive() { return &archive_; }

    [[nodiscard]] SidebarModel* sidebar() { return &sidebar_; }

    [[nodiscard]] Activity* activity() { return &activity_; }

    [[nodiscard]] DestinationItem destination() const { return DestinationItem::of(model_); }

    [[nodiscard]] SampleStore* sampleStore() { return &sampleStore_; }

    [[nodiscard]] OtherMail* otherMail() { return &otherMail_; }

    [[nodiscard]] ArchivedScreen* archived() { return &archived_; }

    [[nodiscard]] MailListScreen* mails() { return &mails_; }

    [[nodiscard]] LibraryScreen* library() { return &library_; }

    [[nodiscard]] SpaceScreen* space() { return &space_; }

    [[nodiscard]] PlacesScreen* places() { return &places_; }

    [[nodiscard]] SettingsTravel* settings() { return &settings_; }

    [[nodiscard]] AddressCollection* collection() { return &collection_; }

    [[nodiscard]] bool archiving() const { return model_.archiving().archiveRun.isArchiving(); }

    [[nodiscard]] WindowNotices* notices() { return &notices_; }

    [[nodiscard]] WindowLengths* lengths() { return &lengths_; }

    // The first frame has been shown: the work of the start that may take longer. Does it once.
    Q_INVOKABLE void startUp();

    // What a menu of the system was asked for; the window shows its sheet.
    enum class Command { Places, ExportSettings, ImportSettings };
    Q_ENUM(Command)

    void request(Command command) { Q_EMIT requested(command); }

    // "更新 Mail 数据", unless something runs that it would disturb.
    Q_INVOKABLE void refreshAllMailData();

    // Ends a running archive in good order: after the message at work, with its index saved. `stopped`
    // follows, at once when none runs.
    Q_INVOKABLE void stopArchiving();

    // Opens the folder that one of the program's own addresses names, if there is one; no effect for any
    // other.
    Q_INVOKABLE void openAddress(const QString& address);

  Q_SIGNALS:
    void archivingChanged();
    void destinationChanged();
    void stopped();
    void requested(corvane::WindowModel::Command command);

  private:
    void showFigures();

    CorvaneViewModel& model_;
    WindowNotices notices_;
    WindowLengths lengths_;
    DesktopActions desktop_;
    OrganizeData organizeData_;
    ArchiveScreen archive_;
    HomeScreen home_;
    SidebarModel sidebar_;
    Activity activity_;
    SampleStore sampleStore_;
    OtherMail otherMail_;
    ArchivedScreen archived_;
    MailListScreen mails_;
    LibraryScreen library_;
    SpaceScreen space_;
    PlacesScreen places_;
    SettingsTravel settings_;
    AddressCollection collection_;
    TaskSlot addressTask_;
    bool startedUp_ = false;
    bool stopping_ = false;
};

} // namespace corvane
