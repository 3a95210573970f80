// Why a message couldn't be archived, with the text for the user.
#pragma once

#include <stdexcept>

namespace corvane {

class ArchiveError : public std::runtime_error {
  public:
    enum class Kind { emlxParseFailed, writeVerificationFailed, writeFailed, writeTimedOut };

    explicit ArchiveError(Kind kind);

    [[nodiscard]] Kind kind() const noexcept { return kind_; }

  private:
    Kind kind_;
};

} // namespace corvane
