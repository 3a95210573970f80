#include "screens/archive/places/destination_choice.h"

#include "screens/texts/shown_text.h"

namespace corvane {

DestinationChoice::DestinationChoice(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , desktop_(desktop)
  , quickDestinations_(model)
  , rebuildNotice_(model.archiving().rebuild)
  , folderPicker_(model) {
    ArchiveDestinations& destinations = model_.archiving().destinations;
    connect(&destinations, &ArchiveDestinations::destinationChanged, this, &DestinationChoice::changed);
    connect(&destinations, &ArchiveDestinations::factsChanged, this, &DestinationChoice::changed);
    connect(&folderPicker_, &FolderPicker::chosen, this,
            [this] { model_.archiving().destinations.setTransferDestination(folderPicker_.chosenPath()); });
}

void DestinationChoice::refresh() {
    quickDestinations_.refreshDetectedDestinations();
    model_.archiving().destinations.refreshFacts();
}

void DestinationChoice::openFolder() {
    const DestinationView destination = destinationView(model_);
    if (destination.path && destination.facts.connected)
        desktop_.open(QUrl::fromLocalFile(screens::wholeText(*destination.path)));
}

} // namespace corvane
