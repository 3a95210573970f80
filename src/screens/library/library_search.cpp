#include "screens/library/library_search.h"

#include <string>

#include "screens/texts/archive_place.h"
#include "screens/texts/shown_text.h"

namespace corvane {

LibrarySearch::LibrarySearch(LibraryComponents& library, QObject* parent)
  : QObject(parent)
  , library_(library) {
    connect(&library.list, &LibraryListFlow::searchChanged, this, &LibrarySearch::changed);
}

QString LibrarySearch::query() const {
    return screens::wholeText(library_.list.searchText());
}

void LibrarySearch::setQuery(const QString& query) {
    library_.list.setSearchText(query.toStdString());
}

QString LibrarySearch::note() const {
    QStringList names;
    for (const std::string& root : library_.list.rootsNotSearched())
        names += screens::archivePlaceName(library_.loader, root);
    return names.isEmpty() ? QString() : QStringLiteral("没有查到这些位置：") + names.join(u'、');
}

} // namespace corvane
