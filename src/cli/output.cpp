#include "cli/output.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <string>

#include <unistd.h>

#include "records/error_reasons.h"
#include "text/graphemes.h"
#include "text/hidden_characters.h"

namespace corvane::cli {

namespace {

void writeWhole(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) throw std::runtime_error("无法写到标准输出：" + systemErrorReason(errno));
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace

void JsonDocument::object(const std::function<void()>& members) {
    writer_.StartObject();
    members();
    writer_.EndObject();
}

void JsonDocument::array(const std::function<void()>& elements) {
    writer_.StartArray();
    elements();
    writer_.EndArray();
}

void JsonDocument::key(std::string_view name) {
    writer_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
}

void JsonDocument::print() const {
    writeWhole(text::withHiddenEscaped({buffer_.GetString(), buffer_.GetSize()}) + '\n');
}

void printText(std::string_view text) {
    writeWhole(text::withVisibleSigns(text) + '\n');
}

void printLines(std::string_view text) {
    writeWhole(text::linesWithVisibleSigns(text) + '\n');
}

void TextTable::row(std::vector<std::string> cells) {
    for (std::string& cell : cells) cell = text::withVisibleSigns(cell);
    rows_.push_back(std::move(cells));
}

void TextTable::print() const {
    std::vector<std::size_t> widths(columns_.size(), 0);
    for (const auto& cells : rows_) {
        for (std::size_t column = 0; column < cells.size(); ++column) {
            widths[column] = std::max(widths[column], text::displayWidth(cells[column]));
        }
    }
    std::string whole;
    for (const auto& cells : rows_) {
        for (std::size_t column = 0; column < cells.size(); ++column) {
            const std::string padding(widths[column] - text::displayWidth(cells[column]), ' ');
            const bool isLast = column + 1 == cells.size();
            if (columns_[column] == Align::right)
                whole += padding + cells[column];
            else
                whole += cells[column] + (isLast ? "" : padding);
            whole += isLast ? "\n" : "  ";
        }
    }
    writeWhole(whole);
}

} // namespace corvane::cli
