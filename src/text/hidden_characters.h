// Characters that nobody sees and that act on what is around them: controls, which a terminal obeys, and
// marks that turn the direction of reading, by which "exe.pdf" can be shown for "fdp.exe". What a mail says
// may hold any of them; a name on the disk and a line on a terminal never do. Thread-safe; ill-formed UTF-8
// becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace corvane::text {

// U+0000 to U+001F, U+007F to U+009F, U+061C, U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069.
constexpr bool isHiddenCharacter(char32_t scalar) noexcept {
    return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0) || scalar == 0x061C || scalar == 0x200E ||
           scalar == 0x200F || (scalar >= 0x202A && scalar <= 0x202E) ||
           (scalar >= 0x2066 && scalar <= 0x2069);
}

// The text without them, for names of files and folders.
std::string withoutHiddenCharacters(std::string_view text);

// One line for a terminal: "␛" for ESC, "␊" for a line feed, "<U+202E>" where Unicode has no picture.
std::string withVisibleSigns(std::string_view text);

// The same for a text of several lines: line ends stay line feeds, tabs become four blanks.
std::string linesWithVisibleSigns(std::string_view text);

// A JSON document whose strings have them as "\u202E". White space between its values stays.
std::string withHiddenEscaped(std::string_view json);

} // namespace corvane::text
