// What accounts are called for people, beside their addresses.
#pragma once

#include <string_view>

namespace corvane {

// Stands behind the name of an account that exists on this machine alone.
inline constexpr std::string_view localStoreTitle = "（Mail 本机归档文件夹）";

} // namespace corvane
