#include "records/json/json_reader.h"

#include <fmt/format.h>

namespace corvane {

simdjson::ondemand::document JsonReader::begin(std::string_view before, std::string_view json,
                                               std::string_view after) {
    buffer_.clear();
    buffer_.reserve(before.size() + json.size() + after.size() + simdjson::SIMDJSON_PADDING);
    buffer_.append(before).append(json).append(after);
    return beginBuffer();
}

simdjson::ondemand::document JsonReader::beginBuffer() {
    buffer_.reserve(buffer_.size() + simdjson::SIMDJSON_PADDING);
    simdjson::ondemand::document document;
    require(parser_.iterate(simdjson::padded_string_view(buffer_.data(), buffer_.size(), buffer_.capacity()))
                .get(document));
    return document;
}

JsonReader::Value JsonReader::rootValue(simdjson::ondemand::document& document) {
    Value value;
    require(document.get_value().get(value));
    return value;
}

void JsonReader::requireEnd(simdjson::ondemand::document& document) {
    // There is a location only while tokens are left.
    const char* location = nullptr;
    if (document.current_location().get(location) == simdjson::SUCCESS) fail("content behind the end");
}

void JsonReader::fail(std::string_view what) {
    throw JsonError(fmt::format("JSON: {}", what));
}

void JsonReader::require(simdjson::error_code error) {
    if (error != simdjson::SUCCESS) fail(simdjson::error_message(error));
}

std::string_view JsonReader::textOf(Value& value) {
    std::string_view text;
    require(value.get_string().get(text));
    return text;
}

std::int64_t JsonReader::integerOf(Value& value) {
    std::int64_t number = 0;
    require(value.get_int64().get(number));
    return number;
}

bool JsonReader::booleanOf(Value& value) {
    bool truth = false;
    require(value.get_bool().get(truth));
    return truth;
}

SharedText JsonReader::sharedTextOf(Value& value, TextSharing sharing) {
    const std::string_view text = textOf(value);
    return sharing == TextSharing::repeated ? repeated_(text) : SharedText(text);
}

Date JsonReader::dateOf(Value& value) {
    const auto date = parseTimestamp(textOf(value));
    if (!date) fail("not a date");
    return *date;
}

FileURL JsonReader::urlOf(Value& value) {
    auto url = FileURL::fromAbsoluteString(textOf(value));
    if (!url) fail("not a file URL");
    return std::move(*url);
}

Uuid JsonReader::uuidOf(Value& value) {
    const auto uuid = Uuid::parse(textOf(value));
    if (!uuid) fail("not a UUID");
    return *uuid;
}

} // namespace corvane
