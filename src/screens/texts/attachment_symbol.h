// The symbol that stands for an attachment, by the extension of its name. Pure.
#pragma once

#include <string_view>

namespace corvane {

// The system's name of the symbol; "doc" for what isn't known.
std::string_view attachmentSymbol(std::string_view fileName);

} // namespace corvane
