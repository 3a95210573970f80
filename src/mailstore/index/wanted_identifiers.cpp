#include "mailstore/index/wanted_identifiers.h"

#include <memory>

#include "mime/message_identifiers.h"
#include "platform/threads/parallel.h"
#include "text/idle_pool.h"

namespace corvane::mailstore {

namespace {

constexpr std::size_t piecesInFlight = 4;

} // namespace

WantedIdentifiers::WantedIdentifiers(const std::vector<std::string_view>& identifiers)
  : identifiers_(identifiers) {
    positions_.reserve(identifiers.size());
    firstOfSame_.reserve(identifiers.size());
    for (Position at = 0; at < identifiers.size(); ++at) {
        if (identifiers[at].empty())
            firstOfSame_.push_back(at);
        else
            firstOfSame_.push_back(
                positions_.insert(identifiers[at], at, [&](Position known) { return identifiers[known]; })
                    .first);
    }
}

WantedIdentifiers::Found WantedIdentifiers::inPiece(const JsonRowPiece& piece, JsonRowParser& parser) const {
    Found found;
    std::string room;
    found.isWhole = parser.parse(piece, [&](JsonRow& row) {
        const std::string_view identifier =
            mime::normalizedMessageIdentifier(row.text("messageId").value_or(""), room);
        const auto at = positions_.position(identifier, [&](Position known) { return identifiers_[known]; });
        if (at) found.positions.push_back(*at);
    });
    return found;
}

std::optional<std::vector<bool>> WantedIdentifiers::inRows(const std::string& rowsPath) const {
    JsonRowFile file(rowsPath);
    text::IdlePool<JsonRowParser> parsers;
    const auto findWanted = [&](const JsonRowPiece& piece) {
        return inPiece(piece, *parsers.take([] { return std::make_unique<JsonRowParser>(); }));
    };
    std::vector<bool> isThere(identifiers_.size());
    bool isWhole = true;
    platform::orderedPipeline(
        piecesInFlight, [&] { return file.next(); }, findWanted,
        [&](const Found& found) {
            isWhole = isWhole && found.isWhole;
            for (const Position at : found.positions) isThere[at] = true;
        });
    if (!isWhole || file.hasFailed()) return std::nullopt;
    for (std::size_t at = 0; at < isThere.size(); ++at) isThere[at] = isThere[firstOfSame_[at]];
    return isThere;
}

} // namespace corvane::mailstore
