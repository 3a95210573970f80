#include "screens/library/library_search.h"

#include <string>

#include "screens/texts/archive_place.h"
#include "screens/texts/shown_text.h"

namespace corvane {

LibrarySearch::LibrarySearch(LibraryComponents& library, QObject* parent)
  : QObject(parent)
  , library_(library) {
    connect(&library.list, &LibraryListFlow::searchChanged, this, &LibrarySearch::changed);
    connect(&library.bodyTexts, &BodyTexts::bodyIndexProgressChanged, this, &LibrarySearch::changed);
}

QString LibrarySearch::query() const {
    return screens::wholeText(library_.list.searchText());
}

void LibrarySearch::setQuery(const QString& query) {
    library_.list.setSearchText(query.toStdString());
}

QString LibrarySearch::placeNames(const std::vector<std::string>& roots) const {
    QStringList names;
    for (const std::string& root : roots) names += screens::archivePlaceName(library_.loader, root);
    return names.join(u'、');
}

QString LibrarySearch::note() const {
    QStringList notes;
    if (!library_.list.rootsNotSearched().empty())
        notes += QStringLiteral("没有查到这些位置：") + placeNames(library_.list.rootsNotSearched());
    if (!library_.list.rootsNotPrepared().empty())
        notes +=
            QStringLiteral("这些位置的邮件大多还搜索不到：") + placeNames(library_.list.rootsNotPrepared());
    return notes.join(u"；");
}

bool LibrarySearch::canPrepare() const {
    return !library_.list.rootsNotPrepared().empty() && !library_.bodyTexts.bodyIndexProgress();
}

void LibrarySearch::prepare() {
    if (canPrepare()) library_.bodyTexts.rebuildBodyTextIndex(false);
}

} // namespace corvane
