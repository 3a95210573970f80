// Writes records as JSON by their tables, with RapidJSON's writers. Texts that aren't valid UTF-8 are
// repaired on the way, so that what is written can always be read back. Stateless and thread-safe.
#pragma once

#if defined(RAPIDJSON_SSE2) || defined(RAPIDJSON_SSE42)
#error "RapidJSON 1.1 leaves the controls U+001A to U+001F unescaped in its SSE writers"
#endif

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "records/file_url.h"
#include "records/json/json_form.h"
#include "records/timestamps.h"
#include "records/values.h"
#include "text/charsets/charset.h"
#include "text/shared_text.h"

namespace corvane {

enum class KeyOrder { table, sorted };

namespace json_detail {

// The positions of a table's fields in the order in which they are written.
template <class Record>
std::array<std::size_t, std::tuple_size_v<decltype(JsonForm<Record>::fields)>> fieldOrder(KeyOrder order) {
    constexpr std::size_t count = std::tuple_size_v<decltype(JsonForm<Record>::fields)>;
    const auto names = std::apply(
        [](const auto&... field) { return std::array<std::string_view, sizeof...(field)>{field.name...}; },
        JsonForm<Record>::fields);
    std::array<std::size_t, count> positions{};
    for (std::size_t index = 0; index < count; ++index) positions[index] = index;
    if (order == KeyOrder::sorted) {
        std::sort(positions.begin(), positions.end(),
                  [&](std::size_t a, std::size_t b) { return names[a] < names[b]; });
    }
    return positions;
}

template <class Writer>
void writeText(Writer& writer, std::string_view text) {
    if (text::isValidUtf8(text)) {
        writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    } else {
        const std::string repaired = text::repairedUtf8(text);
        writer.String(repaired.data(), static_cast<rapidjson::SizeType>(repaired.size()));
    }
}

template <KeyOrder order, class Writer, class Record>
void writeObject(Writer& writer, const Record& record);

template <KeyOrder order, class Writer, class T>
void writeValue(Writer& writer, const T& value) {
    if constexpr (HasJsonForm<T>) {
        writeObject<order>(writer, value);
    } else if constexpr (HasJsonEnumForm<T>) {
        for (const auto& [entry, text] : JsonEnumForm<T>::names) {
            if (entry == value) writeText(writer, text);
        }
    } else if constexpr (std::is_same_v<T, bool>) {
        writer.Bool(value);
    } else if constexpr (std::is_integral_v<T>) {
        writer.Int64(static_cast<std::int64_t>(value));
    } else if constexpr (std::is_floating_point_v<T>) {
        writer.Double(value);
    } else if constexpr (std::is_same_v<T, Date>) {
        writeText(writer, formatTimestamp(value));
    } else if constexpr (std::is_same_v<T, FileURL>) {
        writeText(writer, value.absoluteString());
    } else if constexpr (std::is_same_v<T, Uuid>) {
        writeText(writer, value.text());
    } else if constexpr (std::is_convertible_v<const T&, std::string_view>) {
        writeText(writer, std::string_view(value));
    } else if constexpr (requires { typename T::mapped_type; }) {
        writer.StartObject();
        for (const auto& [key, item] : value) {
            const std::string name = text::repairedUtf8(key);
            writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
            writeValue<order>(writer, item);
        }
        writer.EndObject();
    } else {
        writer.StartArray();
        for (const auto& item : value) writeValue<order>(writer, item);
        writer.EndArray();
    }
}

// Calls use(value) unless the member is an empty optional or a null pointer.
template <class Member, class Use>
void ifPresent(const Member& member, const Use& use) {
    if constexpr (requires { *member; }) {
        if (member) use(*member);
    } else {
        use(member);
    }
}

template <KeyOrder order, class Writer, class Record, class Member>
void writeField(Writer& writer, const Record& record, const JsonField<Record, Member>& field) {
    ifPresent(record.*(field.member), [&](const auto& value) {
        writer.Key(field.name.data(), static_cast<rapidjson::SizeType>(field.name.size()));
        writeValue<order>(writer, value);
    });
}

// The fields of the object without its braces, for objects that get further keys.
template <KeyOrder order, class Writer, class Record>
void writeFields(Writer& writer, const Record& record) {
    constexpr auto& fields = JsonForm<Record>::fields;
    if constexpr (order == KeyOrder::table) {
        std::apply([&](const auto&... field) { (writeField<order>(writer, record, field), ...); }, fields);
    } else {
        static const auto positions = fieldOrder<Record>(order);
        for (const std::size_t position : positions) {
            [&]<std::size_t... Index>(std::index_sequence<Index...>) {
                ((Index == position ? writeField<order>(writer, record, std::get<Index>(fields)) : void()),
                 ...);
            }(std::make_index_sequence<std::tuple_size_v<std::remove_cvref_t<decltype(fields)>>>());
        }
    }
}

template <KeyOrder order, class Writer, class Record>
void writeObject(Writer& writer, const Record& record) {
    writer.StartObject();
    writeFields<order>(writer, record);
    writer.EndObject();
}

} // namespace json_detail

// Compact, keys in the order of the tables: the form of the cache files.
template <class T>
std::string encodeJson(const T& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    json_detail::writeValue<KeyOrder::table>(writer, value);
    return {buffer.GetString(), buffer.GetSize()};
}

// Indented by two blanks, keys sorted, slashes as they are: the form of files that people may look into.
template <class T>
std::string encodePrettyJson(const T& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    json_detail::writeValue<KeyOrder::sorted>(writer, value);
    return {buffer.GetString(), buffer.GetSize()};
}

} // namespace corvane
