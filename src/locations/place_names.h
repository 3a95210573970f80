// What archives and destinations are called, wherever they are named: lists, sentences, commands. By the text
// of the path and the mount table; touches no disk. Thread-safe.
#pragma once

#include <string>
#include <string_view>

#include "platform/platform.h"
#include "records/archived/archive_records.h"

namespace corvane {

// An archive, by the disk or the provider and the folder: "U 盘 · A", "坚果云 · 邮件归档".
std::string locationDisplayName(const platform::Platform& platform, const std::string& rootPath);

// The archive as it is listed; of one that isn't (null) the name of its folder.
std::string listedLocationName(const ArchiveLocation* listed, std::string_view rootPath);

// Where a single mail of the archive lies: with the provider, else as the archive is listed.
std::string mailLocationName(const ArchiveLocation* listed, std::string_view rootPath);

// The folder of the next run: iCloud and removable disks by themselves, all others by the folder.
std::string destinationDisplayName(const platform::Platform& platform, const std::string& path);

} // namespace corvane
