// The application's own settings as they travel in "app-backup.json" with each archive, and in the files that
// the user exports. Such a file may come from anybody: it is bounded, and paths in it are texts until
// somebody looks. Thread-safe.
#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/files/layers/file_layer.h"
#include "records/json/json_form.h"
#include "records/values.h"

namespace corvane {

inline constexpr std::string_view configBackupFileName = "app-backup.json";
inline constexpr std::string_view configBackupExportName = "Mail 归档配置备份.corvanebackup";

struct CorvaneConfigBackup {
    std::int64_t version = 1;
    Date exportedAt{};
    std::optional<std::string> destinationPath{};
    std::vector<std::string> knownLocationRoots{};
    std::map<std::string, std::string> accountMergeRules{};
    std::vector<std::string> selectedAccountPrefixes{};

    friend bool operator==(const CorvaneConfigBackup&, const CorvaneConfigBackup&) = default;
};

template <>
struct JsonForm<CorvaneConfigBackup> {
    using R = CorvaneConfigBackup;
    static constexpr auto fields =
        std::tuple{jsonField("version", &R::version),
                   jsonField("exportedAt", &R::exportedAt),
                   jsonField("destinationPath", &R::destinationPath),
                   jsonField("knownLocationRoots", &R::knownLocationRoots),
                   jsonField("accountMergeRules", &R::accountMergeRules),
                   jsonField("selectedAccountPrefixes", &R::selectedAccountPrefixes)};
};

// Indented, keys sorted.
std::string encodeConfigBackup(const CorvaneConfigBackup& backup);

// Reads a whole file; the reason, for the user, why it can't be read or is no backup of this version.
std::expected<CorvaneConfigBackup, std::string> readConfigBackup(platform::FileLayer& files,
                                                                 const std::string& path);

// What a backup holds, in lines for the user.
std::string configBackupSummary(const CorvaneConfigBackup& backup);

} // namespace corvane
