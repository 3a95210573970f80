// Reads records from JSON text by their tables, with simdjson's on-demand parser. All failures become
// JsonError here. One reader may serve many texts, one at a time; it isn't thread-safe.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <simdjson.h>

#include "records/file_url.h"
#include "records/json/json_form.h"
#include "records/timestamps.h"
#include "records/values.h"
#include "text/shared_text.h"

namespace corvane {

class JsonReader {
  public:
    template <class Record>
    Record read(std::string_view json) {
        simdjson::ondemand::document document = begin({}, json, {});
        return readRoot<Record>(document);
    }

    // The same for a large text, without a second copy of it.
    template <class Record>
    Record readTaking(std::string json) {
        buffer_ = std::move(json);
        simdjson::ondemand::document document = beginBuffer();
        return readRoot<Record>(document);
    }

    // The elements of an array whose text comes without its brackets.
    template <class T>
    std::vector<T> readElements(std::string_view elements, TextSharing sharing = TextSharing::own) {
        simdjson::ondemand::document document = begin("[", elements, "]");
        return readRoot<std::vector<T>>(document, sharing);
    }

  private:
    using Value = simdjson::ondemand::value;

    simdjson::ondemand::document begin(std::string_view before, std::string_view json,
                                       std::string_view after);
    simdjson::ondemand::document beginBuffer();
    static Value rootValue(simdjson::ondemand::document& document);
    static void requireEnd(simdjson::ondemand::document& document);
    [[noreturn]] static void fail(std::string_view what);
    static void require(simdjson::error_code error);

    static std::string_view textOf(Value& value);
    static std::int64_t integerOf(Value& value);
    static bool booleanOf(Value& value);
    SharedText sharedTextOf(Value& value, TextSharing sharing);
    static Date dateOf(Value& value);
    static FileURL urlOf(Value& value);
    static Uuid uuidOf(Value& value);

    template <class T>
    T readRoot(simdjson::ondemand::document& document, TextSharing sharing = TextSharing::own) {
        Value root = rootValue(document);
        T value = readValue<T>(root, sharing);
        requireEnd(document);
        return value;
    }

    template <class T>
    T readValue(Value& value, TextSharing sharing);
    template <class List>
    List readList(Value& value, TextSharing sharing);
    template <class Map>
    Map readTextMap(Value& value, TextSharing sharing);
    template <class Enum>
    static Enum readEnum(Value& value);
    template <class Record>
    Record readObject(Value& value);
    template <class Record>
    bool readField(Record& record, std::string_view key, std::size_t& hint, std::uint64_t& seen,
                   Value& value);
    template <class Record, std::size_t... Index>
    static void requireFields(std::uint64_t seen, std::index_sequence<Index...> indices);

    simdjson::ondemand::parser parser_;
    std::string buffer_;
    TextInterner repeated_;
};

namespace json_detail {

template <class T>
struct IsOptional : std::false_type {};

template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <class T>
struct IsVector : std::false_type {};

template <class T>
struct IsVector<std::vector<T>> : std::true_type {};

template <class T>
struct IsTextMap : std::false_type {};

template <class T>
struct IsTextMap<std::map<std::string, T>> : std::true_type {};

} // namespace json_detail

template <class List>
List JsonReader::readList(Value& value, TextSharing sharing) {
    List list;
    simdjson::ondemand::array array;
    require(value.get_array().get(array));
    for (auto element : array) {
        Value item;
        require(element.get(item));
        list.push_back(readValue<typename List::value_type>(item, sharing));
    }
    return list;
}

template <class Map>
Map JsonReader::readTextMap(Value& value, TextSharing sharing) {
    Map map;
    simdjson::ondemand::object object;
    require(value.get_object().get(object));
    for (auto field : object) {
        std::string_view key;
        require(field.unescaped_key().get(key));
        std::string name(key);
        Value item = field.value();
        map.insert_or_assign(std::move(name), readValue<typename Map::mapped_type>(item, sharing));
    }
    return map;
}

template <class Enum>
Enum JsonReader::readEnum(Value& value) {
    const std::string_view name = textOf(value);
    for (const auto& [entry, text] : JsonEnumForm<Enum>::names) {
        if (text == name) return entry;
    }
    fail("unknown value of an enumeration");
}

template <class T>
T JsonReader::readValue(Value& value, TextSharing sharing) {
    if constexpr (json_detail::IsOptional<T>::value) {
        bool isNull = false;
        require(value.is_null().get(isNull));
        if (isNull) return std::nullopt;
        return readValue<typename T::value_type>(value, sharing);
    } else if constexpr (json_detail::IsVector<T>::value) {
        return readList<T>(value, sharing);
    } else if constexpr (json_detail::IsTextMap<T>::value) {
        return readTextMap<T>(value, sharing);
    } else if constexpr (HasJsonForm<T>) {
        return readObject<T>(value);
    } else if constexpr (HasJsonEnumForm<T>) {
        return readEnum<T>(value);
    } else if constexpr (std::is_same_v<T, SharedText>) {
        return sharedTextOf(value, sharing);
    } else if constexpr (std::is_same_v<T, std::string>) {
        return std::string(textOf(value));
    } else if constexpr (std::is_same_v<T, bool>) {
        return booleanOf(value);
    } else if constexpr (std::is_same_v<T, std::int64_t>) {
        return integerOf(value);
    } else if constexpr (std::is_same_v<T, Date>) {
        return dateOf(value);
    } else if constexpr (std::is_same_v<T, FileURL>) {
        return urlOf(value);
    } else {
        static_assert(std::is_same_v<T, Uuid>);
        return uuidOf(value);
    }
}

// Keys come in the order of the table nearly always, so each is first compared with the one that is due.
template <class Record>
bool JsonReader::readField(Record& record, std::string_view key, std::size_t& hint, std::uint64_t& seen,
                           Value& value) {
    constexpr std::size_t count = std::tuple_size_v<decltype(JsonForm<Record>::fields)>;
    const auto tryField = [&]<std::size_t Index>(std::integral_constant<std::size_t, Index>) {
        constexpr auto& field = std::get<Index>(JsonForm<Record>::fields);
        if (key != field.name) return false;
        using Member = std::remove_reference_t<decltype(record.*(field.member))>;
        record.*(field.member) = readValue<Member>(value, field.sharing);
        seen |= std::uint64_t{1} << Index;
        hint = Index + 1;
        return true;
    };
    return [&]<std::size_t... Index>(std::index_sequence<Index...>) {
        return ((Index >= hint && tryField(std::integral_constant<std::size_t, Index>())) || ...) ||
               ((Index < hint && tryField(std::integral_constant<std::size_t, Index>())) || ...);
    }(std::make_index_sequence<count>());
}

template <class Record, std::size_t... Index>
void JsonReader::requireFields(std::uint64_t seen, std::index_sequence<Index...> /*indices*/) {
    const auto check = [&](const auto& field, std::size_t index) {
        using Member = std::remove_reference_t<decltype(std::declval<Record&>().*(field.member))>;
        if constexpr (!json_detail::IsOptional<Member>::value) {
            if ((seen >> index & 1) == 0) fail(field.name);
        }
    };
    (check(std::get<Index>(JsonForm<Record>::fields), Index), ...);
}

template <class Record>
Record JsonReader::readObject(Value& value) {
    constexpr std::size_t count = std::tuple_size_v<decltype(JsonForm<Record>::fields)>;
    static_assert(count <= 64);
    simdjson::ondemand::object object;
    require(value.get_object().get(object));
    Record record;
    std::size_t hint = 0;
    std::uint64_t seen = 0;
    for (auto field : object) {
        std::string_view key;
        require(field.unescaped_key().get(key));
        Value member = field.value();
        readField(record, key, hint, seen, member);
    }
    requireFields<Record>(seen, std::make_index_sequence<count>());
    if constexpr (requires { JsonForm<Record>::finish(record); }) JsonForm<Record>::finish(record);
    return record;
}

} // namespace corvane
