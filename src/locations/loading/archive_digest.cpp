#include "locations/loading/archive_digest.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <exception>
#include <limits>
#include <unordered_set>
#include <utility>

#include "platform/files/file_look.h"
#include "platform/files/mapped_file.h"
#include "records/json/json_outline.h"
#include "records/json/json_reader.h"
#include "records/json/record_forms.h"

namespace corvane {

namespace {

constexpr std::array<char, 8> magic = {'c', 'r', 'v', 'd', 'g', 's', 't', '2'};
constexpr std::int64_t noDate = std::numeric_limits<std::int64_t>::min();
constexpr std::size_t byHandle = 0;
constexpr std::size_t byRecordID = 1;
constexpr std::size_t tableCount = 2;

constexpr std::size_t longestRecordBytes = std::size_t{16} << 20;

std::int64_t nowNanoseconds() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

// Only a look-up begins with it: what it finds is compared.
std::uint64_t recordIDHash(std::string_view id) {
    return handleValue(id);
}

SourceStamp stampOfFile(const std::string& path) {
    const platform::FileLook look = platform::lookAtFile(path);
    return {look.sizeBytes, look.modifiedNanoseconds, look.inode};
}

template <class T>
void append(std::string& bytes, const T& value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string entryIDOf(const std::string& root, std::string_view recordID) {
    ArchivedEntry entry;
    entry.record.id = SharedText(recordID);
    entry.locationRootPath = SharedText(root);
    return entry.id();
}

} // namespace

SourceStamp SourceStamp::of(const struct stat& status) {
    return {status.st_size, platform::modifiedNanoseconds(status), static_cast<std::uint64_t>(status.st_ino)};
}

struct ArchiveDigest::Head {
    std::array<char, 8> magic{};
    SourceStamp index;
    SourceStamp copy;
    std::int64_t madeAt = 0;
    std::int64_t createdAt = 0;
    std::uint64_t count = 0;       // of records with an id of their own
    std::uint64_t recordCount = 0; // of all
    std::uint64_t presenceSum = 0; // of the PresenceSignature
    std::uint64_t rootBytes = 0;   // the root stands behind the head
    std::uint64_t isUnusable = 0;  // the index is
};

struct ArchiveDigest::Place {
    std::uint64_t hash = 0;
    Position position = 0;
    std::uint32_t unused = 0;

    friend auto operator<=>(const Place&, const Place&) = default;
};

struct ArchiveDigest::Row {
    std::uint32_t offset = 0; // in the copy
    std::uint32_t length = 0;
    std::int64_t date = noDate;
};

namespace {

// The records of an index's text, with what else a digest has of it.
struct IndexContent {
    struct Found {
        SharedText id;
        std::optional<Date> date;
        std::size_t offset = 0;
        std::size_t length = 0;
    };

    Date createdAt{};
    std::vector<Found> records; // the first of each id
    std::uint64_t recordCount = 0;
    PresenceSignature presence; // of the first ones
};

// Throws JsonError.
IndexContent contentOf(std::string_view text, const SharedText& root) {
    IndexContent content;
    std::string rest = "{\"records\":[]";
    JsonReader reader;
    std::string_view list;
    JsonObjectOutline outline(text);
    while (const auto member = outline.next()) {
        if (member->key.find('\\') != std::string_view::npos) throw JsonError("JSON: a key with escapes");
        if (member->key == "records") list = member->value;
        if (member->key == "createdAt" || member->key == "updatedAt")
            rest.append(",\"").append(member->key).append("\":").append(member->value);
    }
    content.createdAt = reader.read<EmailArchiveIndex>(rest + '}').createdAt;
    std::unordered_set<SharedText, TextHash, TextEqual> seen;
    JsonArrayPieces pieces(list, 1);
    while (const auto piece = pieces.next()) {
        auto record = reader.read<ArchivedEmailRecord>(*piece);
        ++content.recordCount;
        if (!seen.insert(record.id).second) continue;
        content.presence.add(root, record);
        const auto offset = static_cast<std::size_t>(piece->data() - text.data());
        content.records.push_back({std::move(record.id), record.date, offset, piece->size()});
    }
    return content;
}

} // namespace

void ArchiveDigest::make(platform::FileLayer& layer, const Files& files, const std::string& root,
                         const SourceStamp& indexStamp) {
    Head head{.magic = magic,
              .index = indexStamp,
              .copy = stampOfFile(files.copy),
              .madeAt = nowNanoseconds(),
              .rootBytes = root.size()};
    try {
        const platform::MappedFile copy(files.copy);
        const IndexContent content = contentOf(copy.text(), SharedText(root));
        head.createdAt = content.createdAt.time_since_epoch().count();
        head.count = content.records.size();
        head.recordCount = content.recordCount;
        head.presenceSum = content.presence.sum();
        std::array<std::vector<Place>, tableCount> tables;
        std::string rows;
        for (const IndexContent::Found& found : content.records) {
            const auto position = static_cast<Position>(tables[byHandle].size());
            tables[byHandle].push_back({handleValue(entryIDOf(root, found.id)), position, 0});
            tables[byRecordID].push_back({recordIDHash(found.id), position, 0});
            append(rows,
                   Row{static_cast<std::uint32_t>(found.offset), static_cast<std::uint32_t>(found.length),
                       found.date ? found.date->time_since_epoch().count() : noDate});
        }
        std::string whole;
        append(whole, head);
        whole += root;
        for (std::vector<Place>& table : tables) {
            std::ranges::sort(table);
            for (const Place& place : table) append(whole, place);
        }
        if (stampOfFile(files.copy) == head.copy) DerivedFile::write(layer, files.digest, whole + rows);
    } catch (const std::exception&) {
        layer.unlink(files.digest);
    }
}

void ArchiveDigest::makeOfUnusableIndex(platform::FileLayer& layer, const Files& files,
                                        const std::string& root, const SourceStamp& indexStamp) {
    std::string whole;
    append(whole, Head{.magic = magic,
                       .index = indexStamp,
                       .copy = stampOfFile(files.copy),
                       .madeAt = nowNanoseconds(),
                       .rootBytes = root.size(),
                       .isUnusable = 1});
    DerivedFile::write(layer, files.digest, whole + root);
}

ArchiveDigest::ArchiveDigest(DerivedFile file, std::string root, std::string copyPath, std::size_t count)
  : file_(std::move(file))
  , root_(std::move(root))
  , copyPath_(std::move(copyPath))
  , count_(count) {}

std::optional<ArchiveDigest> ArchiveDigest::open(const Files& files, const std::string& root) {
    auto file = DerivedFile::open(files.digest);
    if (!file || file->size() < sizeof(Head) + root.size()) return std::nullopt;
    const auto head = file->at<Head>(0);
    const bool isOurs = head.magic == magic && head.rootBytes == root.size() &&
                        file->bytes(sizeof(Head), root.size()) == root;
    const std::size_t rowBytes = tableCount * sizeof(Place) + sizeof(Row);
    const std::size_t rest = file->size() - sizeof(Head) - root.size();
    const bool hasForm = isOurs && rest % rowBytes == 0 && rest / rowBytes == head.count;
    if (!hasForm || stampOfFile(files.copy) != head.copy) return std::nullopt;
    return ArchiveDigest(std::move(*file), root, files.copy, head.count);
}

bool ArchiveDigest::isOf(const SourceStamp& index) const {
    return file_.at<Head>(0).index == index;
}

bool ArchiveDigest::fits(const SourceStamp& index) const {
    return isOf(index) && index.modifiedNanoseconds + platform::youngNanoseconds < file_.at<Head>(0).madeAt;
}

bool ArchiveDigest::isOfUnusableIndex() const {
    return file_.at<Head>(0).isUnusable != 0;
}

Date ArchiveDigest::createdAt() const {
    return Date(std::chrono::seconds(file_.at<Head>(0).createdAt));
}

// Their tables of record ids have one order.
bool ArchiveDigest::sharesIDsWith(const ArchiveDigest& other) const {
    const bool isShorter = file_.at<Head>(0).recordCount < other.file_.at<Head>(0).recordCount;
    const ArchiveDigest& shorter = isShorter ? *this : other;
    const ArchiveDigest& longer = isShorter ? other : *this;
    std::size_t at = 0;
    for (std::size_t i = 0; i < shorter.count_; ++i) {
        const std::uint64_t hash = shorter.placeAt(byRecordID, i).hash;
        while (at < longer.count_ && longer.placeAt(byRecordID, at).hash < hash) ++at;
        if (at == longer.count_ || longer.placeAt(byRecordID, at).hash != hash) return false;
    }
    return true;
}

std::size_t ArchiveDigest::headBytes() const {
    return sizeof(Head) + root_.size();
}

PresenceSignature ArchiveDigest::presenceSignature() const {
    return {count_, file_.at<Head>(0).presenceSum};
}

ArchiveDigest::Place ArchiveDigest::placeAt(std::size_t table, std::size_t index) const {
    return file_.at<Place>(headBytes() + (table * count_ + index) * sizeof(Place));
}

ArchiveDigest::Row ArchiveDigest::rowAt(Position position) const {
    if (position >= count_) throw DigestMisfit("digest: no such row");
    return file_.at<Row>(headBytes() + tableCount * count_ * sizeof(Place) + position * sizeof(Row));
}

std::size_t ArchiveDigest::lowerBound(std::size_t table, std::uint64_t hash, std::size_t begin,
                                      std::size_t end) const {
    std::size_t first = begin;
    for (std::size_t length = end - begin; length > 0;) {
        const std::size_t half = length / 2;
        if (placeAt(table, first + half).hash < hash) {
            first += half + 1;
            length -= half + 1;
        } else {
            length = half;
        }
    }
    return first;
}

std::vector<ArchiveDigest::Position> ArchiveDigest::withHandle(const HandleRange& range) const {
    std::vector<Position> found;
    for (std::size_t i = lowerBound(byHandle, range.first, 0, count_); i < count_; ++i) {
        const Place place = placeAt(byHandle, i);
        if (place.hash > range.last) break;
        found.push_back(place.position);
    }
    return found;
}

std::optional<ArchiveDigest::Position> ArchiveDigest::withRecordID(std::string_view id) const {
    std::optional<Position> found;
    forEachWithRecordID({{recordIDHash(id), 0}}, [&](Position position, std::size_t) {
        if (!found && entry(position).record.id == id) found = position;
    });
    return found;
}

std::vector<ArchiveDigest::WantedID> ArchiveDigest::wantedIDs(const std::vector<SharedText>& recordIDs) {
    std::vector<WantedID> wanted;
    wanted.reserve(recordIDs.size());
    for (const SharedText& id : recordIDs) wanted.push_back({recordIDHash(id), wanted.size()});
    std::ranges::sort(wanted, {}, &WantedID::hash);
    return wanted;
}

std::size_t ArchiveDigest::firstRecordID(std::size_t begin, std::uint64_t hash) const {
    std::size_t end = begin;
    for (std::size_t step = 1; end < count_ && placeAt(byRecordID, end).hash < hash; step *= 2) {
        begin = end;
        end = std::min(end + step, count_);
    }
    return lowerBound(byRecordID, hash, begin, end);
}

std::optional<ArchiveDigest::Position> ArchiveDigest::positionOfRecordID(std::size_t place,
                                                                         std::uint64_t hash) const {
    const Place found = placeAt(byRecordID, place);
    return found.hash == hash ? std::optional(found.position) : std::nullopt;
}

std::size_t ArchiveDigest::digitsNeeded(std::uint64_t handle) const {
    std::size_t digits = shortestHandleDigits;
    const std::size_t at = lowerBound(byHandle, handle, 0, count_);
    for (std::size_t i = at == 0 ? 0 : at - 1; i < std::min(at + 2, count_); ++i) {
        const std::uint64_t other = placeAt(byHandle, i).hash;
        if (other != handle) digits = std::max(digits, commonHandleDigits(handle, other) + 1);
    }
    return std::min(digits, fullHandleDigits);
}

std::optional<Date> ArchiveDigest::date(Position position) const {
    const std::int64_t date = rowAt(position).date;
    return date == noDate ? std::nullopt : std::optional(Date(std::chrono::seconds(date)));
}

ArchivedEntry ArchiveDigest::entry(Position position) const {
    const Row row = rowAt(position);
    if (row.length > longestRecordBytes) throw DigestMisfit("digest: no record is that long");
    std::string text(row.length, '\0');
    if (!copy_.is_open()) copy_.open(copyPath_, std::ios::binary);
    copy_.clear();
    if (!copy_.seekg(row.offset) || !copy_.read(text.data(), static_cast<std::streamsize>(text.size())))
        throw DigestMisfit("digest: the copy is shorter");
    try {
        ArchivedEntry entry;
        entry.record = JsonReader().read<ArchivedEmailRecord>(text);
        entry.locationRootPath = SharedText(root_);
        if (entry.record.date != date(position)) throw DigestMisfit("digest: another date");
        return entry;
    } catch (const JsonError&) {
        throw DigestMisfit("digest: no record where one should be");
    }
}

} // namespace corvane
