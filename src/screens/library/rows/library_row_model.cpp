#include "screens/library/rows/library_row_model.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "library/displayable_names.h"
#include "mime/body/body_snippets.h"
#include "records/texts/formatters.h"
#include "screens/library/detail/archived_file_state.h"
#include "screens/library/rows/marked_text.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using Kind = LibraryRow::Kind;
using FileState = archived_file::State;

// Of a long thread nobody reads more names than fit.
constexpr std::size_t mostSendersLookedAt = 50;
constexpr qsizetype mostSendersNamed = 3;

QString kindName(Kind kind) {
    switch (kind) {
    case Kind::thread:
        return QStringLiteral("thread");
    case Kind::member:
        return QStringLiteral("member");
    case Kind::single:
        break;
    }
    return QStringLiteral("single");
}

QString dateText(const ArchivedEmailRecord& record) {
    return screens::wholeText(formatMailDate(record.date));
}

QString sizeText(std::int64_t bytes) {
    return screens::wholeText(formatByteCount(bytes));
}

std::vector<std::string> shownAttachments(const ArchivedEmailRecord& record) {
    std::vector<std::string> names;
    for (const DisplayableName& shown : displayableNames(record.attachmentNames))
        names.push_back(shown.name.str());
    return names;
}

} // namespace

LibraryRowModel::LibraryRowModel(LibraryComponents& library, RowTexts& texts, QObject* parent)
  : RowListModel(parent)
  , library_(library)
  , texts_(texts)
  , content_{LibraryList::make({ArchiveLibraryIndex::make({})}), std::make_shared<const LibraryRows>()} {
    connect(&texts, &RowTexts::changed, this, [this] {
        notifyAllRows({TitlePiecesRole, LineRole, LinePiecesRole, SnippetPiecesRole, TallRole});
    });
}

QHash<int, QByteArray> LibraryRowModel::roleNames() const {
    return {{SelectedRole, "selected"},
            {KindRole, "kind"},
            {OpenRole, "open"},
            {LastRole, "last"},
            {TitleRole, "title"},
            {TitlePiecesRole, "titlePieces"},
            {LineRole, "line"},
            {LinePiecesRole, "linePieces"},
            {SnippetPiecesRole, "snippetPieces"},
            {TallRole, "tall"},
            {MemberCountRole, "memberCount"},
            {AttachmentCountRole, "attachmentCount"},
            {DateTextRole, "dateText"},
            {SizeTextRole, "sizeText"},
            {PlaceSymbolRole, "placeSymbol"},
            {SpokenNameRole, "spokenName"}};
}

QVariant LibraryRowModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const int row = listedRow(index.row());
    const LibraryRow* content = rowAt(row);
    return content == nullptr ? QVariant() : value(*content, role);
}

const LibraryRow* LibraryRowModel::rowAt(int row) const {
    return row >= 0 && std::cmp_less(row, content_.rows->size())
               ? &(*content_.rows)[static_cast<std::size_t>(row)]
               : nullptr;
}

const ArchivedEntry* LibraryRowModel::entryAt(int row) const {
    const LibraryRow* content = rowAt(row);
    return content == nullptr ? nullptr : &entry(*content);
}

void LibraryRowModel::apply(RowsOfList content, const RowChanges& changes) {
    const int nextCount = static_cast<int>(content.rows->size());
    applyChanges(changes, nextCount, [&] { content_ = std::move(content); });
}

void LibraryRowModel::setShownSelection(LibrarySelection selection) {
    if (shown_ == selection) return;
    shown_ = std::move(selection);
    notifyAllRows({SelectedRole});
}

int LibraryRowModel::rowOf(EntryPosition entry) const {
    const ArchiveLibraryIndex& index = content_.list->index();
    if (entry >= index.size()) return -1;
    const EntryPosition root = index.threadRoots()[entry];
    const auto found = std::ranges::find_if(*content_.rows, [&](const LibraryRow& row) {
        const bool isClosed = row.kind == Kind::thread && !row.isOpen;
        return isClosed ? index.threadRoots()[row.entry] == root
                        : row.kind != Kind::thread && row.entry == entry;
    });
    return found == content_.rows->end() ? -1 : static_cast<int>(found - content_.rows->begin());
}

QVariant LibraryRowModel::value(const LibraryRow& row, int role) const {
    const ArchivedEmailRecord& record = entry(row).record;
    const bool isThread = row.kind == Kind::thread;
    switch (role) {
    case SelectedRole:
        return isSelected(row);
    case KindRole:
        return kindName(row.kind);
    case OpenRole:
        return row.isOpen;
    case LastRole:
        return row.isLast;
    case TitleRole:
        return title(row);
    case LineRole:
        return secondLine(row);
    case TitlePiecesRole:
    case LinePiecesRole:
    case SnippetPiecesRole:
        return piecesOf(row, role);
    case TallRole:
        return isTall(row);
    case MemberCountRole:
        return isThread ? static_cast<int>(group(row).count) : 0;
    case AttachmentCountRole:
        return isThread ? 0 : static_cast<int>(displayableNames(record.attachmentNames).size());
    case DateTextRole:
        return dateText(record);
    case SizeTextRole:
        return sizeText(bytes(row));
    case PlaceSymbolRole:
        return isThread ? QString() : placeSymbol(entry(row));
    case SpokenNameRole:
        return spokenName(row);
    default:
        return {};
    }
}

bool LibraryRowModel::isSelected(const LibraryRow& row) const {
    // The mail of an open thread stands below.
    if (row.isOpen) return false;
    if (row.kind != Kind::thread) return shown_.libraryRowSelected(row.entry);
    const auto members = content_.list->groups.view().entries(group(row));
    return std::ranges::any_of(members,
                               [this](EntryPosition member) { return shown_.libraryRowSelected(member); });
}

QString LibraryRowModel::title(const LibraryRow& row) const {
    if (row.kind == Kind::member) return senders(row);
    if (row.kind == Kind::single) return screens::shownLine(entry(row).record.subject);
    const LibraryList& list = *content_.list;
    return screens::shownLine(groupSubject(list.index(), list.groups.view(), group(row)));
}

QString LibraryRowModel::secondLine(const LibraryRow& row) const {
    if (row.kind != Kind::member) return senders(row);
    const RowTexts::RowText* text = texts_.of(entry(row).record);
    return text == nullptr ? QString() : text->preview;
}

QVariantList LibraryRowModel::piecesOf(const LibraryRow& row, int role) const {
    const std::string& query = library_.list.debouncedQuery();
    if (query.empty()) return {};
    if (role == TitlePiecesRole) return screens::markedLine(title(row).toStdString(), query);
    const bool isMember = row.kind == Kind::member;
    if (role == LinePiecesRole && !isMember) return screens::markedLine(senders(row).toStdString(), query);
    if (!isMember && !isTall(row)) return {};
    const RowTexts::RowText* text = texts_.of(entry(row).record);
    return text == nullptr ? QVariantList() : text->snippet;
}

QString LibraryRowModel::senders(const LibraryRow& row) const {
    if (row.kind != Kind::thread) return screens::shownSender(entry(row).record.sender);
    QStringList names;
    const auto members = content_.list->groups.view().entries(group(row));
    for (const EntryPosition member : members.first(std::min(members.size(), mostSendersLookedAt))) {
        const QString name = screens::shownSender(content_.list->index().entry(member).record.sender);
        if (!names.contains(name)) names += name;
        if (names.size() == mostSendersNamed) break;
    }
    return names.join(u"、");
}

std::int64_t LibraryRowModel::bytes(const LibraryRow& row) const {
    if (row.kind != Kind::thread) return entry(row).record.sizeBytes;
    return groupBytes(content_.list->index(), content_.list->groups.view(), group(row));
}

QString LibraryRowModel::placeSymbol(const ArchivedEntry& entry) const {
    const ArchiveLocation* place = library_.loader.location(entry.locationRootPath);
    if (place == nullptr) return {};
    const FileState state = archived_file::stateOf(library_.loader, entry);
    if (state == FileState::Unplugged) return QStringLiteral("externaldrive.badge.questionmark");
    if (state == FileState::Gone) return QStringLiteral("octagon-x");
    if (state == FileState::InCloud) return QStringLiteral("icloud.and.arrow.down");
    return QString::fromUtf8(place->symbol());
}

bool LibraryRowModel::isTall(const LibraryRow& row) const {
    const std::string& query = library_.list.debouncedQuery();
    if (query.empty() || row.kind != Kind::single) return false;
    const ArchivedEmailRecord& record = entry(row).record;
    return mime::needsBodySnippet(query, record.subject, record.sender, shownAttachments(record));
}

QString LibraryRowModel::spokenName(const LibraryRow& row) const {
    QStringList parts = {title(row), secondLine(row), dateText(entry(row).record), sizeText(bytes(row))};
    if (row.kind == Kind::thread) {
        parts += screens::shownMessageCount(group(row).count);
        parts += row.isOpen ? QStringLiteral("已展开") : QStringLiteral("已收起");
    } else if (const FileState state = archived_file::stateOf(library_.loader, entry(row));
               state == FileState::Gone) {
        parts += QStringLiteral("归档文件不见了");
    } else if (state == FileState::Unplugged) {
        parts += QStringLiteral("归档位置未连接");
    }
    parts.removeAll(QString());
    return parts.join(u"，");
}

QString LibraryRowModel::copiedLine(const ArchivedEmailRecord& record) {
    return QStringList{dateText(record), screens::wholeText(record.sender),
                       screens::wholeText(record.subject), sizeText(record.sizeBytes)}
        .join(u'\t');
}

} // namespace corvane
