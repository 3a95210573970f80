// Which attachments of a mail are shown to people. Pure, any thread.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "text/shared_text.h"

namespace corvane {

// False for an empty name, and for that of a picture within the text which its program has named, such as
// "image001.png".
bool isDisplayableName(std::string_view name);

struct DisplayableName {
    SharedText name;
    std::size_t occurrence = 0; // of those of the same name before it
};

// In the order of the list.
std::vector<DisplayableName> displayableNames(const std::vector<SharedText>& attachmentNames);

} // namespace corvane
