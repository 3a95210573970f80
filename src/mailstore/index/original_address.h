// The address by which Apple Mail opens one of its messages. Text only.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane::mailstore {

// "message://%3C...%3E" for a Message-ID as Mail holds it, with or without brackets; nullopt for an empty
// one.
std::optional<std::string> originalAddress(std::string_view messageIDHeader);

} // namespace corvane::mailstore
