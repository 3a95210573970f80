// The form "name <address>" in which a record holds senders and recipients, taken apart. Pure, any thread.
#pragma once

#include <optional>
#include <string_view>

namespace corvane {

// Views into the text, as written: with the quotes and blanks that it has.
struct NameAndAddress {
    std::string_view name;    // before the "<"
    std::string_view address; // between "<" and ">"
    std::string_view rest;    // behind the ">", usually empty
};

// By the last "<" and the last ">" of the text; nullopt when it lacks one, or ends in another "<".
std::optional<NameAndAddress> nameAndAddress(std::string_view text);

} // namespace corvane
