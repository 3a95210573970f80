#include "records/json/presence_members.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include "platform/threads/parallel.h"
#include "records/json/json_writer.h"
#include "records/json/record_forms.h"

namespace corvane {

namespace {

using Status = ArchivedOriginalPresenceStatus;

constexpr std::size_t entriesPerPiece = 4096;
constexpr std::size_t piecesInFlight = 6;
constexpr std::array allStatuses = {Status::unknown, Status::present, Status::missing};

// Keeps its memory from entry to entry.
class MemberText {
  public:
    MemberText() {
        for (const Status status : allStatuses)
            values_.at(static_cast<std::size_t>(status)) = encodeJson(status);
        setRoot({});
    }

    // `"entry id":`, escaped.
    void appendKey(const ArchivedEntry& entry, std::string& text) {
        if (!entry.locationRootPath.sharesWith(root_)) setRoot(entry.locationRootPath);
        buffer_.Clear();
        writer_.Reset(buffer_);
        json_detail::writeText(writer_, entry.record.id);
        text.append(keyStart_).append(buffer_.GetString() + 1, buffer_.GetSize() - 1).append(":");
    }

    // The status in its quotation marks.
    [[nodiscard]] const std::string& valueOf(Status status) const {
        return values_.at(static_cast<std::size_t>(status));
    }

  private:
    void setRoot(const SharedText& root) {
        ArchivedEntry entry;
        entry.locationRootPath = root_ = root;
        keyStart_ = encodeJson(entry.id());
        keyStart_.pop_back();
    }

    rapidjson::StringBuffer buffer_;
    rapidjson::Writer<rapidjson::StringBuffer> writer_{buffer_};
    SharedText root_;
    std::string keyStart_; // up to the record id
    std::array<std::string, allStatuses.size()> values_;
};

} // namespace

void writePresenceMembers(const std::vector<ArchivedEntry>& entries, const PresenceStatuses& statuses,
                          const platform::ByteSink& sink) {
    std::size_t start = 0;
    const auto nextRange = [&]() -> std::optional<std::size_t> {
        if (start >= entries.size()) return std::nullopt;
        return std::exchange(start, start + entriesPerPiece);
    };
    const auto textOf = [&](std::size_t first) {
        MemberText member;
        std::string text;
        const std::size_t end = std::min(first + entriesPerPiece, entries.size());
        for (std::size_t at = first; at < end; ++at) {
            if (at > 0) text += ',';
            member.appendKey(entries[at], text);
            text += member.valueOf(statuses[at]);
        }
        return text;
    };
    platform::orderedPipeline(piecesInFlight, nextRange, textOf,
                              [&](const std::string& text) { sink(text); });
}

std::optional<PresenceStatuses> readPresenceMembers(std::string_view members,
                                                    const std::vector<ArchivedEntry>& entries) {
    MemberText member;
    PresenceStatuses statuses;
    statuses.reserve(entries.size());
    std::string key;
    for (const ArchivedEntry& entry : entries) {
        key.assign(statuses.empty() ? "" : ",");
        member.appendKey(entry, key);
        if (!members.starts_with(key)) return std::nullopt;
        members.remove_prefix(key.size());
        const auto* const found = std::ranges::find_if(
            allStatuses, [&](Status status) { return members.starts_with(member.valueOf(status)); });
        if (found == allStatuses.end()) return std::nullopt;
        members.remove_prefix(member.valueOf(*found).size());
        statuses.push_back(*found);
    }
    if (!members.empty()) return std::nullopt;
    return statuses;
}

} // namespace corvane
