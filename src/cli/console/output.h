// What a command answers: one JSON document on standard output, or readable text. Everything else of the
// program goes to standard error. A reader that has gone away, such as `head`, is no failure: what it would
// have got is dropped, and the command ends as it would have.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "records/json/json_writer.h"
#include "records/json/record_forms.h"

namespace corvane::cli {

// Builds one JSON document; values of records take their JSON forms. A long one is written while it is built,
// so what can fail comes before.
class JsonDocument {
  public:
    using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

    JsonDocument()
      : writer_(buffer_) {}

    void object(const std::function<void()>& members);
    void array(const std::function<void()>& elements);
    void key(std::string_view name);

    template <class T>
    void value(const T& content) {
        json_detail::writeValue<KeyOrder::table>(writer_, content);
    }

    template <class T>
    void member(std::string_view name, const T& content) {
        key(name);
        value(content);
    }

    // An array with an object for each element; `write` writes its members.
    template <class List, class Write>
    void objects(const List& list, Write write) {
        array([&] {
            for (const auto& element : list) object([&] { write(element); });
        });
    }

    template <class List, class Write>
    void objects(std::string_view name, const List& list, Write write) {
        key(name);
        objects(list, write);
    }

    void null() { writer_.Null(); }

    // The members of a record, inside an object that gets further ones.
    template <class Record>
    void membersOf(const Record& record) {
        json_detail::writeFields<KeyOrder::table>(writer_, record);
    }

    // Ends the document with a line feed. Controls and marks of direction are written as "\u202E". As all
    // printing here throws std::runtime_error, for the user, when it can't.
    void print();

  private:
    void writeGathered();

    rapidjson::StringBuffer buffer_;
    Writer writer_;
};

// One line for people: what could end it or act on the terminal is shown by signs.
void printText(std::string_view text);

// The same for a text that has lines of its own, such as the body of a mail.
void printLines(std::string_view text);

// Bytes that are given as they are.
void printRaw(std::string_view bytes);

} // namespace corvane::cli
