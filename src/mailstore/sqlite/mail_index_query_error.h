// Why a read of Mail's index failed, for those reads whose failure the user must hear of.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace corvane {

class MailIndexQueryError : public std::runtime_error {
  public:
    enum class Kind {
        launchFailed,    // with the system's reason
        queryFailed,     // with the shell's words, which may be empty
        unavailable,     // the index or the shell isn't there
        timedOut,        // Mail holds the index locked
        unreadableOutput // the shell's answer isn't what was asked for
    };

    explicit MailIndexQueryError(Kind kind, std::string detail = {});

    [[nodiscard]] Kind kind() const noexcept { return kind_; }

    // The text for the user; `unavailable` has none.
    [[nodiscard]] std::optional<std::string> errorDescription() const;

    friend bool operator==(const MailIndexQueryError& a, const MailIndexQueryError& b) {
        return a.kind_ == b.kind_ && a.detail_ == b.detail_;
    }

  private:
    Kind kind_;
    std::string detail_;
};

} // namespace corvane
