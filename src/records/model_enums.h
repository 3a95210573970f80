// The small enumerations of the model, with their raw values and titles.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

enum class MailSortMode { newest, messageSize };
enum class MigratedFilter { all, notMigrated, onlyMigrated };

// The value is the smallest size in bytes.
enum class TransferSizePreset : std::int64_t {
    any = 0,
    tenMB = 10'000'000,
    fiftyMB = 50'000'000,
    hundredMB = 100'000'000,
};

inline constexpr std::array allSortModes = {MailSortMode::newest, MailSortMode::messageSize};
inline constexpr std::array allMigratedFilters = {MigratedFilter::all, MigratedFilter::notMigrated,
                                                  MigratedFilter::onlyMigrated};
inline constexpr std::array allSizePresets = {TransferSizePreset::any, TransferSizePreset::tenMB,
                                              TransferSizePreset::fiftyMB, TransferSizePreset::hundredMB};

constexpr std::string_view rawValue(MailSortMode mode) {
    return mode == MailSortMode::newest ? "newest" : "messageSize";
}

constexpr std::string_view title(MailSortMode mode) {
    return mode == MailSortMode::newest ? "最新" : "邮件体积";
}

constexpr std::string_view rawValue(MigratedFilter filter) {
    constexpr std::array<std::string_view, 3> values = {"all", "notMigrated", "onlyMigrated"};
    return values[static_cast<std::size_t>(filter)];
}

constexpr std::string_view title(MigratedFilter filter) {
    constexpr std::array<std::string_view, 3> values = {"全部", "未归档", "已归档"};
    return values[static_cast<std::size_t>(filter)];
}

constexpr std::int64_t minimumBytes(TransferSizePreset preset) {
    return static_cast<std::int64_t>(preset);
}

// State of the scan; `text` is the line of progress or the failure's message for the user.
struct MailScanState {
    enum class Kind { idle, scanning, finished, failed };

    Kind kind = Kind::idle;
    std::string text;

    static MailScanState idle() { return {}; }

    static MailScanState scanning(std::string line) { return {Kind::scanning, std::move(line)}; }

    static MailScanState finished() { return {Kind::finished, {}}; }

    static MailScanState failed(std::string message) { return {Kind::failed, std::move(message)}; }

    [[nodiscard]] bool isScanning() const { return kind == Kind::scanning; }

    friend bool operator==(const MailScanState&, const MailScanState&) = default;
};

} // namespace corvane
