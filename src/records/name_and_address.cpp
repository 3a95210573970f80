#include "records/name_and_address.h"

#include <cstddef>

namespace corvane {

std::optional<NameAndAddress> nameAndAddress(std::string_view text) {
    const std::size_t open = text.rfind('<');
    const std::size_t close = text.rfind('>');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
        return std::nullopt;
    return NameAndAddress{.name = text.substr(0, open),
                          .address = text.substr(open + 1, close - open - 1),
                          .rest = text.substr(close + 1)};
}

} // namespace corvane
