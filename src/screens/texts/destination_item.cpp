#include "screens/texts/destination_item.h"

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

DestinationView destinationView(CorvaneViewModel& model) {
    return {model.archiving().destinations.transferDestination(), model.archiving().destinations.facts(),
            model.context().platform};
}

DestinationItem DestinationItem::of(CorvaneViewModel& model) {
    const DestinationView view = destinationView(model);
    const QString home = screens::wholeText(model.context().platform.realUserHomeDirectory());
    const QString path = view.path ? screens::wholeText(*view.path) : QString();
    DestinationItem item;
    item.isChosen = view.path.has_value();
    item.isMissing = item.isChosen && !view.facts.connected;
    item.symbol = screens::destinationSymbol(view);
    item.destinationName = screens::destinationName(view);
    item.destinationPath = screens::shownPath(path, home);
    item.fullPath = path;
    item.place = screens::destinationPlace(view);
    item.shortName = item.isChosen && view.facts.cloudName ? screens::wholeText(*view.facts.cloudName)
                                                           : item.destinationName;
    item.line = screens::destinationLine(view);
    item.folder = QUrl::fromLocalFile(item.isChosen ? path : home);
    item.archiveRemark = screens::archiveRemark(view);
    item.locationBarRemark = screens::locationBarRemark(view);
    return item;
}

} // namespace corvane
