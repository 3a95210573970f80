#include "cli/console/progress_line.h"

#include <algorithm>

#include <fmt/format.h>
#include <unistd.h>

#include "records/logs/console_log.h"
#include "text/graphemes.h"
#include "text/hidden_characters.h"

namespace corvane::cli {

namespace {

constexpr int barWidth = 24;
constexpr std::size_t textClusters = 40;

std::string bar(double fraction) {
    const int filled = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * barWidth);
    return fmt::format("[{:#<{}}{:.<{}}] {:3.0f}% ", "", filled, "", barWidth - filled, fraction * 100);
}

} // namespace

ProgressLine::ProgressLine()
  : isTerminal_(::isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() {
    if (isOpen_) messageLine("");
}

// Long runs report far more often than anybody reads.
bool ProgressLine::isDue() {
    constexpr std::chrono::milliseconds betweenStates{200};
    constexpr std::chrono::seconds betweenLines{10};
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::milliseconds interval = isTerminal_ ? betweenStates : betweenLines;
    if (lastShown_ && now - *lastShown_ < interval) return false;
    lastShown_ = now;
    return true;
}

void ProgressLine::show(std::string_view text, double fraction) {
    std::string line = (fraction >= 0 ? bar(fraction) : "") + std::string(text);
    if (line == last_ || !isDue()) return;
    if (isTerminal_) {
        const std::string shown =
            fmt::format("\r\x1b[K{}{}", fraction >= 0 ? bar(fraction) : "",
                        text::withVisibleSigns(text::graphemePrefix(text, textClusters)));
        isOpen_ = ::write(STDERR_FILENO, shown.data(), shown.size()) > 0;
    } else {
        messageLine(line);
    }
    last_ = std::move(line);
}

} // namespace corvane::cli
