// Damage to the bytes of a sound SQLite database, by what an input of a fuzz target asks for.
#pragma once

#include <string>
#include <string_view>

namespace corvane::fuzz {

// An input that begins with "SQL:" is run as statements on a copy, its schema writable: what a hostile hand
// makes of a database that is sound by its form. The others are steps of damage: bytes overwritten, pages
// laid over others, the file cut or filled. Never touches another file.
std::string damagedDatabase(std::string_view sound, std::string_view input);

} // namespace corvane::fuzz
