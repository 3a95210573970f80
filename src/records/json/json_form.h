// The JSON form of a record is one table of names and members. It drives reading and writing:
//
//     template <> struct JsonForm<YearStat> {
//         static constexpr auto fields = std::tuple{jsonField("year", &YearStat::year), ...};
//     };
//
// Reading is strict: every field that isn't std::optional must be present with the right type; null reads as
// absent; an unknown key is ignored; of a repeated key the last one counts. An empty optional or a null
// pointer is left out when writing. The order of the table is the order of the keys, unless the writer is
// told to sort them.
#pragma once

#include <stdexcept>
#include <string_view>
#include <tuple>

namespace corvane {

// A JSON text that doesn't hold what it should; the message says where.
class JsonError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

enum class TextSharing { own, repeated };

template <class Record, class Member>
struct JsonField {
    std::string_view name;
    Member Record::* member;
    // `repeated` marks texts that recur in most records: a reader gives equal ones the same characters.
    TextSharing sharing = TextSharing::own;
};

template <class Record, class Member>
constexpr JsonField<Record, Member> jsonField(std::string_view name, Member Record::* member,
                                              TextSharing sharing = TextSharing::own) {
    return {name, member, sharing};
}

template <class Record>
struct JsonForm;

// True for records with a table.
template <class Record>
concept HasJsonForm = requires { JsonForm<Record>::fields; };

// Names of an enumeration that is written as a bare text.
template <class Enum>
struct JsonEnumForm;

template <class Enum>
concept HasJsonEnumForm = requires { JsonEnumForm<Enum>::names; };

} // namespace corvane
