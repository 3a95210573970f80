// The two forms of property lists that lie in the folders of a store.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>

#include "mailstore/property_list.h"
#include "text/charset.h"

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const bool isBinary = bytes.starts_with("bplist00");
    for (const auto& [key, value] : mailstore::parsePropertyList(bytes)) {
        const auto* text = std::get_if<std::string>(&value);
        // The XML form keeps the bytes that it finds.
        if (isBinary && !text::isValidUtf8(key)) std::abort();
        if (isBinary && text != nullptr && !text::isValidUtf8(*text)) std::abort();
    }
    return 0;
}
