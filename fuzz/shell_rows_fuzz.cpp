// The sqlite3 shell's rows: any bytes at all, and rows as the shell writes them, which have to come back as
// they were, wherever the file is cut into pieces and while it still grows.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <simdjson.h>
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz_kit.h"
#include "mailstore/index/indexed_messages.h"
#include "mailstore/sqlite/json_rows.h"
#include "text/charsets/charset.h"

using namespace corvane;
using fuzz::require;

namespace {

constexpr std::size_t bytesOfPiece = 256 << 10;

// A file costs as much as many pieces in memory.
constexpr std::size_t inputsForOneFile = 64;
constexpr std::size_t inputsForOneLongFile = 4 * inputsForOneFile;

// A file without a name, by the path of its descriptor.
class MemoryFile {
  public:
    [[nodiscard]] const std::string& path() const { return path_; }

    void write(std::string_view bytes) const {
        require(::ftruncate(descriptor_, 0) == 0);
        require(::pwrite(descriptor_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    }

  private:
    int descriptor_ = ::memfd_create("rows", 0);
    std::string path_ = fmt::format("/proc/self/fd/{}", descriptor_);
};

const MemoryFile& memoryFile() {
    static const MemoryFile file;
    return file;
}

void checkCandidate(mailstore::JsonRow& row) {
    const auto candidate = mailstore::candidateOf(row);
    if (!candidate) return;
    TextInterner texts;
    auto record = mailstore::recordFromCandidate(*candidate, FileURL("/1.emlx"), {}, texts);
    mailstore::mailboxLabels(candidate->mailboxURL, {}).applyTo(record);
    for (const std::string_view text : {record.subject.view(), record.sender.view(), record.mailbox.view()})
        require(text::isValidUtf8(text));
    require(!record.subject.empty() && !record.sender.empty()); // a folder may be called ".mbox"
    for (const std::string& name : candidate->attachmentNames) require(text::isValidUtf8(name));
}

mailstore::JsonRowPiece pieceOf(std::string_view bytes) {
    mailstore::JsonRowPiece piece{.bytes = std::string(bytes), .length = bytes.size()};
    piece.bytes.resize(bytes.size() + simdjson::SIMDJSON_PADDING);
    return piece;
}

void checkAnyBytes(std::string_view bytes) {
    mailstore::JsonRowParser parser;
    parser.parse(pieceOf(bytes), checkCandidate);
    parser.parse(pieceOf(bytes), [](mailstore::JsonRow& row) {
        // Not in the order of the query.
        row.integer("msgSize");
        row.text("url");
        row.integer("rowid");
    });
}

// As the shell writes a text; bytes that are no UTF-8 stay.
std::string jsonText(std::string_view text) {
    std::string json = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') json += '\\';
        if (byte >= 0x20)
            json += character;
        else
            json += fmt::format("\\u{:04x}", byte);
    }
    return json += '"';
}

struct WrittenRow {
    std::int64_t id;
    std::string text;

    bool operator==(const WrittenRow&) const = default;
};

std::string asShellWrites(const std::vector<WrittenRow>& rows) {
    std::string json = "[";
    for (const WrittenRow& row : rows)
        json += fmt::format("{}{{\"rowid\":{},\"none\":null,\"subject\":{}}}", json.size() > 1 ? ",\n" : "",
                            row.id, jsonText(row.text));
    return json + "]\n";
}

void addRows(std::vector<WrittenRow>& rows, const mailstore::JsonRowPiece& piece) {
    mailstore::JsonRowParser parser;
    require(parser.parse(piece, [&](mailstore::JsonRow& row) {
        rows.push_back({row.integer("rowid").value(), std::string(row.text("subject").value())});
    }));
}

std::vector<WrittenRow> readThroughFile(std::string_view json) {
    std::vector<WrittenRow> rows;
    memoryFile().write(json);
    mailstore::JsonRowFile file(memoryFile().path());
    while (const auto piece = file.next()) addRows(rows, *piece);
    require(!file.hasFailed());
    return rows;
}

// Lines of the input are the texts of rows. A long row in front of them moves the end of the first piece of a
// file into them.
void checkWrittenRows(std::string_view input) {
    const std::size_t shape = std::hash<std::string_view>()(input);
    std::vector<WrittenRow> rows;
    if (shape % inputsForOneLongFile == 0) {
        const std::size_t behind = std::min(input.size() + shape / inputsForOneLongFile % 256, bytesOfPiece);
        rows.push_back({0, std::string(bytesOfPiece - behind, 'x')});
    }
    fuzz::InputReader reader(input);
    while (!reader.isAtEnd()) rows.push_back({std::ssize(rows), std::string(reader.field('\n'))});
    if (rows.empty()) return;
    const std::string json = asShellWrites(rows);
    std::vector<WrittenRow> read;
    if (shape % inputsForOneFile == 0)
        read = readThroughFile(json);
    else
        addRows(read, pieceOf(json));
    for (WrittenRow& row : rows) row.text = text::repairedUtf8(row.text);
    require(read == rows);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::textOf(data, size);
    checkAnyBytes(input);
    checkWrittenRows(input);
    return 0;
}
