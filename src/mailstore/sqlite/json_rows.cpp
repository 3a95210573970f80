#include "mailstore/sqlite/json_rows.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <utility>

#include <fcntl.h>
#include <simdjson.h>
#include <unistd.h>

#include "text/charsets/charset.h"

namespace corvane::mailstore {

namespace {

namespace ondemand = simdjson::ondemand;

constexpr std::size_t chunkSize = 256 << 10;
// No row of mail comes near.
constexpr std::size_t longestPiece = std::size_t(64) << 20;

class ObjectRow final : public JsonRow {
  public:
    explicit ObjectRow(ondemand::object object)
      : object_(object) {}

    std::optional<std::string_view> text(std::string_view column) override {
        std::string_view text;
        ondemand::value value;
        if (!find(column, value) || value.get_string().get(text) != simdjson::SUCCESS) return std::nullopt;
        return text;
    }

    std::optional<JsonNumber> number(std::string_view column) override {
        ondemand::value value;
        JsonNumber number;
        if (!find(column, value)) return std::nullopt;
        if (value.get_int64().get(number.whole) == simdjson::SUCCESS) return number;
        // Not get_number(): simdjson 3.0.1 gives 0 there for a real of more than 19 digits, as the shell
        // writes them.
        constexpr double limit = 9223372036854775808.0;
        double real = 0;
        if (value.get_double().get(real) != simdjson::SUCCESS || !(std::abs(real) < limit))
            return std::nullopt;
        number.whole = static_cast<std::int64_t>(real);
        number.fraction = real - static_cast<double>(number.whole);
        return number;
    }

    [[nodiscard]] bool isDamaged() const { return isDamaged_; }

  private:
    // The parser must not be asked again after an error of form.
    bool find(std::string_view column, ondemand::value& value) {
        if (isDamaged_) return false;
        const auto error = object_.find_field_unordered(column).get(value);
        if (error != simdjson::SUCCESS && error != simdjson::NO_SUCH_FIELD) isDamaged_ = true;
        return error == simdjson::SUCCESS;
    }

    ondemand::object object_;
    bool isDamaged_ = false;
};

} // namespace

JsonRowFile::JsonRowFile(const std::string& path)
  : file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC))
  , hasFailed_(!file_) {}

// The shell puts every row on a line, and no string holds a raw line feed, so "}," at the end of a line with
// "{" behind it lies between two rows. A whole array on one line becomes one piece.
std::optional<JsonRowPiece> JsonRowFile::next() {
    while (!hasFailed_ && readChunk()) {
        if (auto piece = cutWholeRows()) return piece;
        hasFailed_ = size_ > longestPiece;
    }
    if (hasFailed_ || size_ == 0) return std::nullopt;
    return take(size_);
}

// False when there is less than a chunk.
bool JsonRowFile::readChunk() {
    const std::size_t wanted = searched_ + chunkSize;
    buffer_.resize(wanted + simdjson::SIMDJSON_PADDING);
    while (size_ < wanted) {
        const ssize_t got = ::read(file_.get(), buffer_.data() + size_, wanted - size_);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) hasFailed_ = true;
        if (got <= 0) return false;
        size_ += static_cast<std::size_t>(got);
    }
    return true;
}

std::optional<JsonRowPiece> JsonRowFile::cutWholeRows() {
    constexpr std::string_view joint = "},\n{";
    const std::size_t from = searched_ - std::min(searched_, joint.size() - 1);
    const std::size_t found = std::string_view(buffer_.data() + from, size_ - from).rfind(joint);
    searched_ = size_;
    if (found == std::string_view::npos) return std::nullopt;
    buffer_[from + found + 1] = ']';
    auto piece = take(from + found + 2);
    buffer_[0] = '[';
    return piece;
}

JsonRowPiece JsonRowFile::take(std::size_t length) {
    std::string rest;
    rest.reserve(size_ - length + chunkSize + simdjson::SIMDJSON_PADDING);
    rest.assign(buffer_, length, size_ - length);
    buffer_.resize(length + simdjson::SIMDJSON_PADDING);
    JsonRowPiece piece{.bytes = std::exchange(buffer_, std::move(rest)), .length = length};
    size_ = searched_ = buffer_.size();
    return piece;
}

struct JsonRowParser::State {
    ondemand::parser parser;
    std::string repaired;
};

JsonRowParser::JsonRowParser()
  : state_(std::make_unique<State>()) {}

JsonRowParser::~JsonRowParser() = default;

bool JsonRowParser::parse(const JsonRowPiece& piece, const JsonRowVisitor& visit) {
    ondemand::document document;
    auto error = state_->parser.iterate(piece.bytes.data(), piece.length, piece.bytes.size()).get(document);
    if (error == simdjson::UTF8_ERROR) {
        std::string& repaired = state_->repaired;
        repaired = text::repairedUtf8(std::string_view(piece.bytes).substr(0, piece.length));
        const std::size_t length = repaired.size();
        repaired.resize(length + simdjson::SIMDJSON_PADDING);
        error = state_->parser.iterate(repaired.data(), length, repaired.size()).get(document);
    }
    ondemand::array rows;
    if (error != simdjson::SUCCESS || document.get_array().get(rows) != simdjson::SUCCESS) return false;
    for (auto element : rows) {
        ondemand::object object;
        if (element.get_object().get(object) != simdjson::SUCCESS) return false;
        ObjectRow row(object);
        visit(row);
        if (row.isDamaged()) return false;
    }
    // There is a location only while tokens are left.
    const char* location = nullptr;
    return document.current_location().get(location) != simdjson::SUCCESS;
}

bool readJsonRows(const std::string& path, const JsonRowVisitor& visit) {
    JsonRowFile file(path);
    JsonRowParser parser;
    while (auto piece = file.next()) {
        if (!parser.parse(*piece, visit)) return false;
    }
    return !file.hasFailed();
}

} // namespace corvane::mailstore
