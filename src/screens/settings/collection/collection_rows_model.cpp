#include "screens/settings/collection/collection_rows_model.h"

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

QHash<int, QByteArray> CollectionRowsModel::roleNames() const {
    return {{TitleRole, "title"},
            {CountTextRole, "countText"},
            {SizeTextRole, "sizeText"},
            {IsTickedRole, "isTicked"}};
}

QVariant CollectionRowsModel::value(const CollectionRow& row, int role) const {
    switch (role) {
    case TitleRole:
        return screens::shownLine(row.title);
    case CountTextRole:
        return row.count ? screens::shownMessageCount(*row.count) : QStringLiteral("—");
    case SizeTextRole:
        return screens::shownSize(row.bytes);
    case IsTickedRole:
        return row.isTicked;
    default:
        return {};
    }
}

} // namespace corvane
