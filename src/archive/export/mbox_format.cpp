#include "archive/export/mbox_format.h"

#include <algorithm>
#include <array>
#include <chrono>

#include <fmt/format.h>

#include "records/name_and_address.h"
#include "text/trim.h"

namespace corvane::archive {

namespace {

constexpr std::string_view marker = "From ";
constexpr std::string_view unknownSender = "MAILER-DAEMON";
constexpr std::size_t longestAddress = 320;

constexpr auto weekdays = std::to_array<std::string_view>({"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"});
constexpr auto months = std::to_array<std::string_view>(
    {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"});

bool isPlain(char byte) {
    return byte > ' ' && byte < '\x7f';
}

std::string_view envelopeSender(std::string_view sender) {
    const auto parts = nameAndAddress(sender);
    const std::string_view address = text::trimWhitespaceAndNewlines(parts ? parts->address : sender);
    const bool isAddress = address.find('@') != std::string_view::npos && address.size() <= longestAddress &&
                           std::ranges::all_of(address, isPlain);
    return isAddress ? address : unknownSender;
}

// The form of asctime(3), in English wherever the program runs.
std::string asctimeText(Date date) {
    using namespace std::chrono;
    const auto day = floor<days>(date);
    const year_month_day calendar(day);
    const int year = static_cast<int>(calendar.year());
    if (year < 1900 || year > 9999) return asctimeText(Date());
    const hh_mm_ss time(date - day);
    return fmt::format("{} {} {:2} {:02}:{:02}:{:02} {}", weekdays.at(weekday(day).c_encoding()),
                       months.at(static_cast<unsigned>(calendar.month()) - 1),
                       static_cast<unsigned>(calendar.day()), time.hours().count(), time.minutes().count(),
                       time.seconds().count(), year);
}

} // namespace

std::string mboxFromLine(const ArchivedEmailRecord& record) {
    return fmt::format("{}{} {}\n", marker, envelopeSender(record.sender),
                       asctimeText(record.date.value_or(record.archivedAt)));
}

void MboxQuoting::add(std::string_view piece) {
    if (piece.empty()) return;
    hasLineEnd_ = piece.ends_with('\n');
    while (!piece.empty()) isAtStart_ ? addToStart(piece) : addToLine(piece);
}

void MboxQuoting::addToLine(std::string_view& rest) {
    const std::size_t lineFeed = rest.find('\n');
    isAtStart_ = lineFeed != std::string_view::npos;
    const std::string_view line = rest.substr(0, isAtStart_ ? lineFeed + 1 : rest.size());
    output_(line);
    rest.remove_prefix(line.size());
}

// One ">" more among others is the same wherever it stands: only "From " has to be held back.
void MboxQuoting::addToStart(std::string_view& rest) {
    const char byte = rest.front();
    if (matched_ == 0 && byte == '>') {
        output_(rest.substr(0, 1));
        rest.remove_prefix(1);
        return;
    }
    if (byte == marker[matched_]) {
        rest.remove_prefix(1);
        if (++matched_ < marker.size()) return;
        output_(">");
    }
    output_(marker.substr(0, matched_));
    matched_ = 0;
    isAtStart_ = false;
}

void MboxQuoting::end() {
    output_(marker.substr(0, matched_));
    output_(hasLineEnd_ ? "\n" : "\n\n");
    matched_ = 0;
    isAtStart_ = true;
    hasLineEnd_ = true;
}

} // namespace corvane::archive
