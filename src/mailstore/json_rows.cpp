#include "mailstore/json_rows.h"

#include <cmath>
#include <fstream>

#include <simdjson.h>

#include "text/charset.h"

namespace corvane::mailstore {

namespace {

namespace ondemand = simdjson::ondemand;

constexpr std::size_t chunkSize = 1 << 20;

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

    std::optional<std::int64_t> integer(std::string_view column) override {
        ondemand::value value;
        std::int64_t whole = 0;
        if (!find(column, value)) return std::nullopt;
        if (value.get_int64().get(whole) == simdjson::SUCCESS) return whole;
        // Not get_number(): simdjson 3.0.1 gives 0 there for a real of more than 19 digits, as the shell
        // writes them.
        constexpr double limit = 9223372036854775808.0;
        double real = 0;
        if (value.get_double().get(real) != simdjson::SUCCESS || !(std::abs(real) < limit))
            return std::nullopt;
        return static_cast<std::int64_t>(real);
    }

    [[nodiscard]] bool isDamaged() const { return isDamaged_; }

  private:
    bool find(std::string_view column, ondemand::value& value) {
        const auto error = object_.find_field_unordered(column).get(value);
        if (error != simdjson::SUCCESS && error != simdjson::NO_SUCH_FIELD) isDamaged_ = true;
        return error == simdjson::SUCCESS;
    }

    ondemand::object object_;
    bool isDamaged_ = false;
};

// Feeds the rows to simdjson in pieces, each made an array of its own. The shell puts every row on a line,
// and no string holds a raw line feed, so "}," at the end of a line with "{" behind it lies between two rows.
// A whole array on one line becomes one piece.
class RowStream {
  public:
    RowStream(const std::string& path, const JsonRowVisitor& visit)
      : file_(path, std::ios::binary)
      , visit_(visit) {}

    bool run() {
        if (!file_) return false;
        while (readMore()) {
            if (!parseWholeRows()) return false;
        }
        if (file_.bad()) return false;
        return size_ == 0 || parse(size_);
    }

  private:
    // False at the end of the file.
    bool readMore() {
        const std::size_t room = std::max(chunkSize, size_);
        buffer_.resize(size_ + room + simdjson::SIMDJSON_PADDING);
        file_.read(buffer_.data() + size_, static_cast<std::streamsize>(room));
        size_ += static_cast<std::size_t>(file_.gcount());
        return static_cast<std::size_t>(file_.gcount()) == room;
    }

    bool parseWholeRows() {
        const std::size_t boundary = std::string_view(buffer_.data(), size_).rfind("},\n{");
        if (boundary == std::string_view::npos) return true;
        buffer_[boundary + 1] = ']';
        const std::size_t rest = boundary + 2;
        buffer_[rest] = '[';
        if (!parse(rest)) return false;
        buffer_.erase(0, rest);
        size_ -= rest;
        return true;
    }

    bool parse(std::size_t length) {
        ondemand::document document;
        auto error = parser_.iterate(buffer_.data(), length, buffer_.size()).get(document);
        if (error == simdjson::UTF8_ERROR) {
            repaired_ = text::repairedUtf8(std::string_view(buffer_.data(), length));
            const std::size_t repairedLength = repaired_.size();
            repaired_.resize(repairedLength + simdjson::SIMDJSON_PADDING);
            error = parser_.iterate(repaired_.data(), repairedLength, repaired_.size()).get(document);
        }
        return error == simdjson::SUCCESS && visitRows(document);
    }

    bool visitRows(ondemand::document& document) {
        ondemand::array rows;
        if (document.get_array().get(rows) != simdjson::SUCCESS) return false;
        for (auto element : rows) {
            ondemand::object object;
            if (element.get_object().get(object) != simdjson::SUCCESS) return false;
            ObjectRow row(object);
            visit_(row);
            if (row.isDamaged()) return false;
        }
        // There is a location only while tokens are left.
        const char* location = nullptr;
        return document.current_location().get(location) != simdjson::SUCCESS;
    }

    std::ifstream file_;
    const JsonRowVisitor& visit_;
    std::string buffer_;
    std::size_t size_ = 0; // of the bytes in the buffer that were read
    std::string repaired_;
    ondemand::parser parser_;
};

} // namespace

bool readJsonRows(const std::string& path, const JsonRowVisitor& visit) {
    return RowStream(path, visit).run();
}

} // namespace corvane::mailstore
