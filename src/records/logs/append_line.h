// Appending one line to a log file, and emptying it.
#pragma once

#include <string>
#include <string_view>
#include <system_error>

#include "records/stores/app_support.h"

namespace corvane {

enum class MissingFile { create, fail };

// False when the file can't be opened or written.
bool appendLine(const std::string& path, std::string_view line, MissingFile missing);

// Afterwards the file in the support folder is there and empty, unless there is an error.
std::error_code emptyLogFile(const CorvaneAppSupport& support, std::string_view name);

} // namespace corvane
