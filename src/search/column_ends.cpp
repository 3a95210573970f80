#include "search/column_ends.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

#include "platform/files/file_look.h"
#include "platform/files/layers/file_layer.h"
#include "text/charsets/ascii.h"
#include "text/charsets/charset.h"
#include "text/charsets/utf8_step.h"

namespace corvane::search {

namespace {

using platform::SqliteStatement;

constexpr std::uint32_t noPair = 0;  // fewer than two characters
constexpr std::uint32_t anyPair = 1; // ill-formed: what SQLite reads there isn't worth knowing

// The last two characters, or all of a shorter text. LIKE reads a text up to its first U+0000.
std::string_view lastTwoCharacters(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    std::size_t begin = text.size();
    for (int characters = 0; begin > 0 && characters < 2;) {
        if (!text::continuesCharacter(text[--begin])) ++characters;
    }
    return text.substr(begin);
}

// A pair that LIKE takes for another one has the same key.
std::uint32_t keyOf(std::string_view pair) {
    std::uint64_t bytes = 0; // all of them: two characters take at most eight
    for (const char byte : pair) bytes = bytes << 8 | static_cast<unsigned char>(text::asciiLower(byte));
    bytes *= 0x9E3779B97F4A7C15;
    return std::max(static_cast<std::uint32_t>(bytes >> 32), anyPair + 1);
}

std::uint32_t endOf(std::string_view text) {
    const std::string_view end = lastTwoCharacters(text);
    if (!text::isValidUtf8(end) || holdsNoncharacter(end)) return anyPair;
    const auto characters =
        std::ranges::count_if(end, [](char byte) { return !text::continuesCharacter(byte); });
    return characters < 2 ? noPair : keyOf(end);
}

// The states of a database's files, by which nothing was committed since.
struct DatabaseStamp {
    std::array<std::int64_t, 3> database{}; // size, time, inode
    std::array<std::int64_t, 3> log{};      // of the log of writes; zeros for an empty one

    friend bool operator==(const DatabaseStamp&, const DatabaseStamp&) = default;
};

struct KeptHead {
    std::array<char, 8> magic{};
    DatabaseStamp stamp;
    std::uint64_t count = 0; // of the ends behind the head, ordered
};

struct KeptEnd {
    std::uint32_t key = 0;
    std::uint32_t row = 0;

    friend auto operator<=>(const KeptEnd&, const KeptEnd&) = default;
};

constexpr std::array<char, 8> keptMagic = {'c', 'r', 'v', 'e', 'n', 'd', 's', '1'};

std::array<std::int64_t, 3> stateOf(const std::string& path) {
    const platform::FileLook look = platform::lookAtFile(path);
    if (look.sizeBytes == 0) return {};
    return {look.sizeBytes, look.modifiedNanoseconds, static_cast<std::int64_t>(look.inode)};
}

DatabaseStamp stampOf(const std::string& path) {
    return {stateOf(path), stateOf(path + "-wal")};
}

bool isYoung(const DatabaseStamp& stamp) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto latest = std::max(stamp.database[1], stamp.log[1]);
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() <
           latest + platform::youngNanoseconds;
}

// Gone with the database: its name begins with that one's.
std::string keptPath(const std::string& databasePath) {
    return databasePath + "-ends";
}

std::string mainFile(sqlite3* database) {
    const char* const path = sqlite3_db_filename(database, "main");
    return path == nullptr ? "" : path;
}

// Calls visit(row) for each row that has the key.
template <class Visit>
void forEachKept(const DerivedFile& kept, std::uint32_t key, const Visit& visit) {
    const auto count = kept.at<KeptHead>(0).count;
    const auto endAt = [&](std::uint64_t i) {
        return kept.at<KeptEnd>(sizeof(KeptHead) + i * sizeof(KeptEnd));
    };
    std::uint64_t first = 0;
    for (std::uint64_t length = count; length > 0;) {
        const std::uint64_t half = length / 2;
        const bool isBelow = endAt(first + half).key < key;
        if (isBelow) first += half + 1;
        length = isBelow ? length - half - 1 : half;
    }
    for (; first < count && endAt(first).key == key; ++first) visit(endAt(first).row);
}

} // namespace

bool holdsNoncharacter(std::string_view text) {
    return text.find("\xEF\xBF\xBE") != std::string_view::npos ||
           text.find("\xEF\xBF\xBF") != std::string_view::npos;
}

ColumnEnds::Version ColumnEnds::currentVersion(sqlite3* database) {
    SqliteStatement others(database, "PRAGMA data_version;");
    return others.step() ? Version{others.integer(0), sqlite3_total_changes(database)} : Version();
}

bool ColumnEnds::refresh(sqlite3* database) {
    const Version current = currentVersion(database);
    if (current == Version()) return false;
    if (current == version_) return true;
    version_ = Version();
    // What a transaction has written is in no file yet.
    const std::string path = sqlite3_get_autocommit(database) == 0 ? "" : mainFile(database);
    if (restore(path)) {
        version_ = current;
        return true;
    }
    const DatabaseStamp before = stampOf(path);
    if (gather(database)) version_ = current;
    const bool isToBeKept = version_ == current && !path.empty() && !isYoung(before);
    if (isToBeKept && stampOf(path) == before) keep(path);
    return version_ == current;
}

bool ColumnEnds::restore(const std::string& databasePath) {
    kept_.reset();
    if (databasePath.empty()) return false;
    auto kept = DerivedFile::open(keptPath(databasePath));
    if (!kept || kept->size() < sizeof(KeptHead)) return false;
    const auto head = kept->at<KeptHead>(0);
    const std::size_t rest = kept->size() - sizeof(KeptHead);
    const bool hasForm =
        head.magic == keptMagic && rest % sizeof(KeptEnd) == 0 && rest / sizeof(KeptEnd) == head.count;
    if (!hasForm || head.stamp != stampOf(databasePath)) return false;
    rows_ = {};
    kept_ = std::move(kept);
    return true;
}

// Nothing is lost where it can't be: the next one gathers again.
void ColumnEnds::keep(const std::string& databasePath) const {
    std::vector<KeptEnd> ends;
    for (const Row& row : rows_) {
        if (row.id < 0 || row.id > std::numeric_limits<std::uint32_t>::max()) return;
        for (const std::uint32_t end : row.ends) {
            if (end != noPair) ends.push_back({end, static_cast<std::uint32_t>(row.id)});
        }
    }
    std::ranges::sort(ends);
    const KeptHead head{keptMagic, stampOf(databasePath), ends.size()};
    std::string content(reinterpret_cast<const char*>(&head), sizeof head);
    content.append(reinterpret_cast<const char*>(ends.data()), ends.size() * sizeof(KeptEnd));
    DerivedFile::write(platform::posixFileLayer(), keptPath(databasePath), content);
}

// The texts out of the table in which FTS5 keeps them, which is quicker than by way of FTS5.
bool ColumnEnds::gather(sqlite3* database) {
    rows_.clear();
    SqliteStatement texts(database, "SELECT id, c1, c2, c3, c4, c5 FROM email_fts_content;");
    while (texts.step()) {
        Row row{texts.integer(0), {}};
        for (std::size_t column = 0; column < columnCount; ++column)
            row.ends[column] = endOf(texts.text(static_cast<int>(column) + 1).value_or(""));
        rows_.push_back(row);
    }
    return texts.status() == SQLITE_DONE;
}

void ColumnEnds::addRowsEndingWith(std::string_view pair, std::vector<std::int64_t>& rows) const {
    const std::uint32_t key = keyOf(pair);
    if (kept_) {
        for (const std::uint32_t wanted : {key, anyPair})
            forEachKept(*kept_, wanted, [&](std::uint32_t row) { rows.push_back(row); });
        return;
    }
    for (const Row& row : rows_) {
        const auto mayHold = [&](std::uint32_t end) { return end == key || end == anyPair; };
        if (std::ranges::any_of(row.ends, mayHold)) rows.push_back(row.id);
    }
}

} // namespace corvane::search
