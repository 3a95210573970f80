// Appending one line to a log file.
#pragma once

#include <string>
#include <string_view>

namespace corvane {

enum class MissingFile { create, fail };

// False when the file can't be opened or written.
bool appendLine(const std::string& path, std::string_view line, MissingFile missing);

} // namespace corvane
