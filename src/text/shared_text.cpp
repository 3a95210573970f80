#include "text/shared_text.h"

#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace corvane {

SharedText::Block* SharedText::makeBlock(std::string_view text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("SharedText");
    auto* block = new (::operator new(sizeof(Block) + text.size() + 1))
        Block{.references = 1, .size = static_cast<std::uint32_t>(text.size())};
    char* target = reinterpret_cast<char*>(block + 1);
    std::memcpy(target, text.data(), text.size());
    target[text.size()] = '\0';
    return block;
}

void SharedText::destroy(Block* block) noexcept {
    block->~Block();
    ::operator delete(block);
}

} // namespace corvane
