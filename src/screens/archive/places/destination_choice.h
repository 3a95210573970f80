// Where the archive goes: what the sheets show of the folder, and the ways to choose another one. Main
// thread.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive/places/folder_picker.h"
#include "screens/archive/places/quick_destinations.h"
#include "screens/archive/places/rebuild_notice.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/texts/destination_item.h"

namespace corvane {

class DestinationChoice : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archive sheet")
    Q_PROPERTY(corvane::DestinationItem destination READ destination NOTIFY changed)
    Q_PROPERTY(corvane::QuickDestinations* quickDestinations READ quickDestinations CONSTANT)
    Q_PROPERTY(corvane::RebuildNotice* rebuildNotice READ rebuildNotice CONSTANT)
    Q_PROPERTY(corvane::FolderPicker* folderPicker READ folderPicker CONSTANT)

  public:
    // Both must outlive it.
    DestinationChoice(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    [[nodiscard]] DestinationItem destination() const { return DestinationItem::of(model_); }

    [[nodiscard]] QuickDestinations* quickDestinations() { return &quickDestinations_; }

    [[nodiscard]] RebuildNotice* rebuildNotice() { return &rebuildNotice_; }

    [[nodiscard]] FolderPicker* folderPicker() { return &folderPicker_; }

    // Looks again, in the background, at what may have changed since the sheet was last open.
    void refresh();

    // The archive's folder in the file manager; no effect while it is out of reach.
    Q_INVOKABLE void openFolder();

  Q_SIGNALS:
    // The folder is another one, or more is known of it.
    void changed();

  private:
    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    QuickDestinations quickDestinations_;
    RebuildNotice rebuildNotice_;
    FolderPicker folderPicker_;
};

} // namespace corvane
