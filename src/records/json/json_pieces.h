// Records that hold long lists, written and read in pieces: a text of hundreds of megabytes is never whole in
// memory, and its pieces are worked on by several threads. The text is the one that encodeJson() makes.
#pragma once

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/files/directory.h"
#include "platform/files/mapped_file.h"
#include "platform/files/writing/durable_file.h"
#include "platform/threads/parallel.h"
#include "records/json/json_outline.h"
#include "records/json/json_reader.h"
#include "records/json/json_writer.h"
#include "text/idle_pool.h"

namespace corvane {

namespace json_detail {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;
constexpr std::size_t elementsPerPiece = 2048;
constexpr std::size_t piecesInFlight = 6;

template <class T>
void writeListInPieces(const std::vector<T>& list, const platform::ByteSink& sink) {
    std::size_t start = 0;
    const auto takeRange = [&]() -> std::optional<std::size_t> {
        if (start >= list.size()) return std::nullopt;
        return std::exchange(start, start + elementsPerPiece);
    };
    const auto writeRange = [&](std::size_t first) {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        const std::size_t last = std::min(first + elementsPerPiece, list.size());
        for (std::size_t index = first; index < last; ++index) {
            if (index > 0) buffer.Put(',');
            writer.Reset(buffer);
            writeValue<KeyOrder::table>(writer, list[index]);
        }
        return buffer;
    };
    sink("[");
    platform::orderedPipeline(
        piecesInFlight, takeRange, writeRange,
        [&](const rapidjson::StringBuffer& buffer) { sink({buffer.GetString(), buffer.GetSize()}); });
    sink("]");
}

template <class T>
void readListInPieces(std::string_view array, TextSharing sharing, std::vector<T>& whole) {
    whole.clear();
    JsonArrayPieces pieces(array, pieceBytes);
    text::IdlePool<JsonReader> readers;
    platform::orderedPipeline(
        piecesInFlight, [&] { return pieces.next(); },
        [&](std::string_view piece) {
            return readers.take([] { return std::make_unique<JsonReader>(); })
                ->template readElements<T>(piece, sharing);
        },
        [&](std::vector<T> piece) { std::move(piece.begin(), piece.end(), std::back_inserter(whole)); });
}

template <class T>
void readListInPieces(std::string_view array, TextSharing sharing, std::optional<std::vector<T>>& whole) {
    readListInPieces(array, sharing, whole.emplace());
}

// Of a member, of what an optional one holds, of what a pointer leads to.
template <class Member>
constexpr bool isList = IsVector<std::remove_const_t<Member>>::value;

template <class Member>
    requires requires(const Member& member) { *member; }
constexpr bool isList<Member> = isList<std::remove_cvref_t<decltype(*std::declval<const Member&>())>>;

// Calls visit(field) for the fields of a record that are lists.
template <class Record, class Visit>
void forEachListField(const Visit& visit) {
    const auto visitList = [&]<class Member>(const JsonField<Record, Member>& field) {
        if constexpr (isList<Member>) visit(field);
    };
    std::apply([&](const auto&... field) { (visitList(field), ...); }, JsonForm<Record>::fields);
}

} // namespace json_detail

// Hands the JSON text of a record to the sink, in order.
template <class Record>
void encodeJsonInPieces(const Record& record, const platform::ByteSink& sink) {
    char separator = '{';
    const auto writeField = [&](const auto& field) {
        json_detail::ifPresent(record.*(field.member), [&](const auto& value) {
            sink(std::exchange(separator, ',') + encodeJson(field.name) + ':');
            if constexpr (json_detail::isList<std::remove_cvref_t<decltype(value)>>)
                json_detail::writeListInPieces(value, sink);
            else
                sink(encodeJson(value));
        });
    };
    std::apply([&](const auto&... field) { (writeField(field), ...); }, JsonForm<Record>::fields);
    sink("}");
}

// As strict as JsonReader, with the same result. Throws JsonError.
template <class Record>
Record decodeJsonInPieces(std::string_view json) {
    Record lists;
    std::string rest = "{"; // for the reader: everything else, and empty lists
    JsonObjectOutline outline(json);
    while (const auto member = outline.next()) {
        std::string_view value = member->value;
        json_detail::forEachListField<Record>([&](const auto& field) {
            if (member->key != field.name || member->value == "null") return;
            json_detail::readListInPieces(member->value, field.sharing, lists.*(field.member));
            value = "[]";
        });
        rest.append(rest.size() > 1 ? ",\"" : "\"").append(member->key).append("\":").append(value);
    }
    auto record = JsonReader().read<Record>(rest += '}');
    // A list that isn't empty here had a key with escapes, which the outline doesn't resolve.
    json_detail::forEachListField<Record>([&](const auto& field) {
        json_detail::ifPresent(record.*(field.member), [&](const auto& list) {
            if (list.empty()) record.*(field.member) = std::move(lists.*(field.member));
        });
    });
    return record;
}

// Absent when the file doesn't exist. Throws std::system_error when it can't be read, JsonError when it
// doesn't decode.
template <class Record>
std::optional<Record> readRecordFileInPieces(const std::string& path) {
    if (!platform::fileExists(path)) return std::nullopt;
    const platform::MappedFile file(path);
    return decodeJsonInPieces<Record>(file.text());
}

} // namespace corvane
