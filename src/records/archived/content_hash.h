// The form in which an archive's index names the content of a file: "sha256:" and 64 hexadecimal digits.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/files/sha256.h"

namespace corvane {

// With digits in lower case.
std::string contentHashText(const platform::Sha256Digest& digest);

// Absent for every other form, that of an algorithm we don't know included. Takes both cases.
std::optional<platform::Sha256Digest> parseContentHash(std::string_view text);

// The 64 digits alone, as sha256sum prints them.
std::string hexDigits(const platform::Sha256Digest& digest);

} // namespace corvane
