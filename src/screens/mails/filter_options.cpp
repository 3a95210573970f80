#include "screens/mails/filter_options.h"

#include "screens/texts/shown_figures.h"

namespace corvane {

QVariant FilterOptions::value(const FilterOption& option, int role) const {
    switch (role) {
    case TitleRole:
        return option.title;
    case CountTextRole:
        return screens::shownCount(option.count);
    case TickedRole:
        return option.isTicked;
    default:
        return {};
    }
}

QHash<int, QByteArray> FilterOptions::roleNames() const {
    return {{TitleRole, "title"}, {CountTextRole, "countText"}, {TickedRole, "ticked"}};
}

} // namespace corvane
