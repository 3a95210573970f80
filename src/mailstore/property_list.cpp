#include "mailstore/property_list.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>

#include <unicode/utf16.h>

#include "platform/files/directory.h"
#include "text/charsets/charset.h"
#include "text/charsets/utf8_step.h"

namespace corvane::mailstore {

namespace {

constexpr std::int64_t largestFile = 1 << 20;

// The XML form (Apple's PropertyList-1.0.dtd).
class XMLReader {
  public:
    explicit XMLReader(std::string_view text)
      : text_(text) {}

    PropertyList read() {
        while (const auto tag = nextTag()) handle(*tag);
        return std::move(list_);
    }

  private:
    struct Tag {
        std::string_view name;
        bool isClosing = false;
        bool isEmpty = false;
    };

    std::optional<Tag> nextTag() {
        const std::size_t open = text_.find('<', position_);
        if (open == std::string_view::npos) return std::nullopt;
        const bool isComment = text_.substr(open).starts_with("<!--");
        const std::size_t close = isComment ? text_.find("-->", open) : text_.find('>', open);
        if (close == std::string_view::npos) return std::nullopt;
        std::string_view inside = text_.substr(open + 1, close - open - 1);
        position_ = close + (isComment ? 3 : 1);
        Tag tag;
        tag.isClosing = inside.starts_with('/');
        tag.isEmpty = inside.ends_with('/');
        if (tag.isClosing) inside.remove_prefix(1);
        tag.name = inside.substr(0, inside.find_first_of(" \t\r\n/"));
        return tag;
    }

    void handle(const Tag& tag) {
        if (tag.name == "dict" || tag.name == "array") {
            key_.reset();
            if (tag.isClosing) --depth_;
            if (!tag.isClosing && !tag.isEmpty) ++depth_;
        } else if (depth_ == 1 && !tag.isClosing) {
            handleValue(tag);
        }
    }

    void handleValue(const Tag& tag) {
        if (tag.name == "key") {
            key_ = content(tag);
            return;
        }
        if (!key_) return;
        if (tag.name == "string") list_.insert_or_assign(*key_, content(tag));
        if (tag.name == "true" || tag.name == "false") list_.insert_or_assign(*key_, tag.name == "true");
        key_.reset();
    }

    std::string content(const Tag& tag) {
        if (tag.isEmpty) return {};
        const std::size_t end = std::min(text_.find('<', position_), text_.size());
        const std::string_view raw = text_.substr(position_, end - position_);
        position_ = end;
        return unescaped(raw);
    }

    static std::string unescaped(std::string_view raw) {
        std::string result;
        while (true) {
            const std::size_t ampersand = raw.find('&');
            result.append(raw.substr(0, ampersand));
            if (ampersand == std::string_view::npos) return result;
            raw.remove_prefix(ampersand);
            const std::size_t end = raw.substr(0, longestEntity).find(';');
            const std::string_view entity = end == std::string_view::npos ? "&" : raw.substr(0, end + 1);
            appendEntity(result, entity);
            raw.remove_prefix(entity.size());
        }
    }

    static void appendEntity(std::string& result, std::string_view entity) {
        static const std::map<std::string_view, char> named = {
            {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
        if (const auto known = named.find(entity); known != named.end()) {
            result += known->second;
            return;
        }
        const bool isHexadecimal = entity.starts_with("&#x");
        const char* first = entity.data() + (isHexadecimal ? 3 : 2);
        const char* last = entity.data() + entity.size() - 1;
        std::uint32_t scalar = 0;
        if (!entity.starts_with("&#") || first >= last ||
            std::from_chars(first, last, scalar, isHexadecimal ? 16 : 10).ptr != last)
            result.append(entity);
        else
            text::appendScalar(result, static_cast<UChar32>(scalar));
    }

    static constexpr std::size_t longestEntity = 12;

    std::string_view text_;
    std::size_t position_ = 0;
    int depth_ = 0;
    std::optional<std::string> key_;
    PropertyList list_;
};

// The binary form "bplist00" (CFBinaryPList.c of Apple's open CoreFoundation): a trailer of 32 bytes names
// the offset table, which names the objects.
class BinaryReader {
  public:
    explicit BinaryReader(std::string_view bytes)
      : bytes_(bytes) {}

    PropertyList read() {
        if (bytes_.size() < magicSize + trailerSize) return {};
        const std::size_t trailer = bytes_.size() - trailerSize;
        offsetSize_ = byteAt(trailer + 6);
        referenceSize_ = byteAt(trailer + 7);
        const auto top = number(trailer + 16, 8);
        const auto table = number(trailer + 24, 8);
        if (!top || !table) return {};
        table_ = *table;
        return dictionary(*top);
    }

  private:
    struct Object {
        unsigned kind = 0;       // high half of the marker
        std::uint64_t count = 0; // low half, or the number behind it
        std::uint64_t start = 0; // of the content
    };

    [[nodiscard]] unsigned byteAt(std::size_t position) const {
        return static_cast<unsigned char>(bytes_[position]);
    }

    // Big-endian.
    [[nodiscard]] std::optional<std::uint64_t> number(std::uint64_t position, std::uint64_t size) const {
        if (size == 0 || size > 8 || position > bytes_.size() || bytes_.size() - position < size)
            return std::nullopt;
        std::uint64_t value = 0;
        for (std::uint64_t i = 0; i < size; ++i) value = value << 8 | byteAt(position + i);
        return value;
    }

    [[nodiscard]] std::optional<Object> object(std::uint64_t index) const {
        if (index > bytes_.size()) return std::nullopt;
        const auto position = number(table_ + index * offsetSize_, offsetSize_);
        const auto marker = position ? number(*position, 1) : std::nullopt;
        if (!marker) return std::nullopt;
        Object found{
            .kind = static_cast<unsigned>(*marker >> 4), .count = *marker & 15, .start = *position + 1};
        if (found.count != 15 || found.kind == 0) return found;
        const auto sizeMarker = number(found.start, 1);
        if (!sizeMarker || *sizeMarker >> 4 != 1) return std::nullopt;
        const std::uint64_t countSize = std::uint64_t{1} << (*sizeMarker & 15);
        const auto count = number(found.start + 1, countSize);
        if (!count || *count > bytes_.size()) return std::nullopt;
        return Object{.kind = found.kind, .count = *count, .start = found.start + 1 + countSize};
    }

    [[nodiscard]] PropertyList dictionary(std::uint64_t index) const {
        PropertyList list;
        const auto container = object(index);
        if (!container || container->kind != dictionaryKind) return list;
        for (std::uint64_t i = 0; i < container->count; ++i) {
            const auto keyReference = number(container->start + i * referenceSize_, referenceSize_);
            const auto valueReference =
                number(container->start + (container->count + i) * referenceSize_, referenceSize_);
            if (!keyReference || !valueReference) return list;
            auto key = textOf(object(*keyReference));
            const auto value = object(*valueReference);
            if (!key || !value) continue;
            if (auto text = textOf(value))
                list.insert_or_assign(std::move(*key), std::move(*text));
            else if (value->kind == 0 && (value->count == 8 || value->count == 9))
                list.insert_or_assign(std::move(*key), value->count == 9);
        }
        return list;
    }

    // A text is copied only as often as it is referred to within a bounded file, but each time whole: keys
    // and flags are short, so a longer text isn't one of them.
    [[nodiscard]] std::optional<std::string> textOf(const std::optional<Object>& object) const {
        if (!object || object->count > longestText) return std::nullopt;
        const std::uint64_t unitSize = object->kind == wideTextKind ? 2 : 1;
        if (object->kind != textKind && object->kind != wideTextKind) return std::nullopt;
        if (object->start > bytes_.size() || bytes_.size() - object->start < object->count * unitSize)
            return std::nullopt;
        if (unitSize == 1) return text::repairedUtf8(bytes_.substr(object->start, object->count));
        return fromUTF16(bytes_.substr(object->start, object->count * 2));
    }

    static std::string fromUTF16(std::string_view bigEndian) {
        std::u16string units;
        for (std::size_t i = 0; i + 1 < bigEndian.size(); i += 2)
            units += static_cast<char16_t>(static_cast<unsigned char>(bigEndian[i]) << 8 |
                                           static_cast<unsigned char>(bigEndian[i + 1]));
        std::string result;
        for (std::size_t i = 0; i < units.size();) {
            UChar32 scalar = 0;
            U16_NEXT(units.data(), i, units.size(), scalar);
            text::appendScalar(result, scalar);
        }
        return result;
    }

    static constexpr std::size_t magicSize = 8;
    static constexpr std::size_t trailerSize = 32;
    static constexpr unsigned textKind = 5;
    static constexpr unsigned wideTextKind = 6;
    static constexpr unsigned dictionaryKind = 13;
    static constexpr std::uint64_t longestText = 4096;

    std::string_view bytes_;
    std::uint64_t offsetSize_ = 0;
    std::uint64_t referenceSize_ = 0;
    std::uint64_t table_ = 0;
};

} // namespace

PropertyList parsePropertyList(std::string_view bytes) {
    if (bytes.starts_with("bplist00")) return BinaryReader(bytes).read();
    return XMLReader(bytes).read();
}

PropertyList readPropertyList(const std::string& path) {
    const auto bytes = platform::readFile(path, largestFile);
    return bytes ? parsePropertyList(*bytes) : PropertyList();
}

} // namespace corvane::mailstore
