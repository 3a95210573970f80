#include "cli/console/output.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <string>

#include <unistd.h>

#include "records/texts/error_reasons.h"
#include "text/charsets/utf8_step.h"
#include "text/hidden_characters.h"

namespace corvane::cli {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;

void writeWhole(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EPIPE) return;
        if (written <= 0) throw std::runtime_error("无法写到标准输出：" + systemErrorReason(errno));
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace

void JsonDocument::object(const std::function<void()>& members) {
    writer_.StartObject();
    members();
    writer_.EndObject();
    if (buffer_.GetSize() >= pieceBytes) writeGathered();
}

void JsonDocument::array(const std::function<void()>& elements) {
    writer_.StartArray();
    elements();
    writer_.EndArray();
}

void JsonDocument::key(std::string_view name) {
    writer_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
}

void JsonDocument::writeGathered() {
    std::string_view rest(buffer_.GetString(), buffer_.GetSize());
    while (!rest.empty()) {
        std::size_t count = std::min(rest.size(), pieceBytes);
        while (count < rest.size() && text::continuesCharacter(rest[count])) ++count;
        writeWhole(text::withHiddenEscaped(rest.substr(0, count)));
        rest.remove_prefix(count);
    }
    buffer_.Clear();
}

void JsonDocument::print() {
    writeGathered();
    writeWhole("\n");
}

void printText(std::string_view text) {
    writeWhole(text::withVisibleSigns(text) + '\n');
}

void printLines(std::string_view text) {
    writeWhole(text::linesWithVisibleSigns(text) + '\n');
}

void printRaw(std::string_view bytes) {
    writeWhole(bytes);
}

} // namespace corvane::cli
