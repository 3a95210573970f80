#include "database_damage.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "fuzz_kit.h"
#include "platform/sqlite.h"

namespace corvane::fuzz {

namespace {

using platform::SqliteConnection;

constexpr std::string_view statementsMark = "SQL:";
constexpr int mostSteps = 20'000;
constexpr std::size_t writeVersion = 18; // https://sqlite.org/fileformat.html
constexpr std::size_t readVersion = 19;

int stopAtOnce(void* /*unused*/) {
    return 1;
}

// Nothing that reaches another file, or the memory of all connections.
int authorize(void* /*unused*/, int action, const char* name, const char* /*value*/, const char* /*database*/,
              const char* /*trigger*/) {
    if (action == SQLITE_ATTACH || action == SQLITE_DETACH) return SQLITE_DENY;
    if (action != SQLITE_PRAGMA) return SQLITE_OK;
    const bool isAllowed = std::strcmp(name, "writable_schema") == 0 || std::strcmp(name, "encoding") == 0 ||
                           std::strcmp(name, "user_version") == 0 || std::strcmp(name, "auto_vacuum") == 0;
    return isAllowed ? SQLITE_OK : SQLITE_DENY;
}

SqliteConnection inMemory(std::string_view bytes) {
    sqlite3* handle = nullptr;
    require(sqlite3_open(":memory:", &handle) == SQLITE_OK);
    SqliteConnection database(handle);
    auto* copy = static_cast<unsigned char*>(sqlite3_malloc64(bytes.size()));
    std::memcpy(copy, bytes.data(), bytes.size());
    copy[writeVersion] = copy[readVersion] = 1; // one in memory can't have a log
    const auto size = static_cast<sqlite3_int64>(bytes.size());
    require(sqlite3_deserialize(handle, "main", copy, size, size,
                                SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE) == SQLITE_OK);
    return database;
}

void limit(sqlite3* database) {
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, 1 << 20);
    sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_progress_handler(database, mostSteps, stopAtOnce, nullptr);
    sqlite3_set_authorizer(database, authorize, nullptr);
}

std::string afterStatements(std::string_view sound, std::string_view statements) {
    const auto database = inMemory(sound);
    limit(database.get());
    sqlite3_exec(database.get(), "PRAGMA writable_schema=ON;", nullptr, nullptr, nullptr);
    sqlite3_exec(database.get(), std::string(statements).c_str(), nullptr, nullptr, nullptr);
    sqlite3_int64 size = 0;
    unsigned char* bytes = sqlite3_serialize(database.get(), "main", &size, 0);
    if (bytes == nullptr) return std::string(sound);
    std::string result(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
    sqlite3_free(bytes);
    return result;
}

void overwrite(std::string& file, std::size_t at, std::string_view bytes) {
    at %= file.size();
    file.replace(at, std::min(bytes.size(), file.size() - at), bytes.substr(0, file.size() - at));
}

void layPageOver(std::string& file, std::size_t from, std::size_t to) {
    constexpr std::size_t pageSize = 4096;
    const std::size_t pages = std::max<std::size_t>(file.size() / pageSize, 1);
    const std::string page = file.substr(from % pages * pageSize, pageSize);
    overwrite(file, to % pages * pageSize, page);
}

void damage(std::string& file, InputReader& steps) {
    const std::size_t kind = steps.byte();
    switch (kind % 8) {
    case 0:
        return file.resize(steps.number(3) % file.size() + 1);
    case 1: {
        const std::size_t from = steps.byte();
        return layPageOver(file, from, steps.byte());
    }
    case 2: {
        const std::size_t at = steps.number(3);
        const auto byte = static_cast<char>(steps.byte());
        return overwrite(file, at, std::string(steps.byte() * 16, byte));
    }
    case 3:
        return overwrite(file, steps.byte() % 100, steps.text(kind / 16 + 1)); // the header of the file
    case 4: {
        const std::size_t page = steps.byte() * 4096;
        return overwrite(file, page + steps.byte() % 64, steps.text(kind / 16 + 1)); // the header of a page
    }
    default: {
        const std::size_t at = steps.number(3);
        return overwrite(file, at, steps.text(kind / 16 + 1));
    }
    }
}

} // namespace

std::string damagedDatabase(std::string_view sound, std::string_view input) {
    if (input.starts_with(statementsMark)) return afterStatements(sound, input.substr(statementsMark.size()));
    std::string file(sound);
    InputReader steps(input);
    while (!steps.isAtEnd()) damage(file, steps);
    return file;
}

} // namespace corvane::fuzz
