// The two forms of property lists that lie in the folders of a store.
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "fuzz_kit.h"
#include "mailstore/property_list.h"
#include "text/charsets/charset.h"

using namespace corvane;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzz::textOf(data, size);
    const bool isBinary = bytes.starts_with("bplist00");
    for (const auto& [key, value] : mailstore::parsePropertyList(bytes)) {
        const auto* text = std::get_if<std::string>(&value);
        // The XML form keeps the bytes that it finds.
        require(!isBinary || text::isValidUtf8(key));
        require(!isBinary || text == nullptr || text::isValidUtf8(*text));
    }
    return 0;
}
