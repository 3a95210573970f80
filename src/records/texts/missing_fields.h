// What stands in a record in the place of a field that its mail lacks.
#pragma once

#include <string_view>

namespace corvane {

inline constexpr std::string_view missingSubject = "无主题";
inline constexpr std::string_view missingSender = "发件人未知";

// The subject in the name of an archived file.
inline constexpr std::string_view missingSubjectInName = "（无主题）";

// Whether a subject is none to compare mail by.
inline bool isMissingSubject(std::string_view subject) {
    return subject == missingSubject || subject == missingSubjectInName;
}

} // namespace corvane
