// Why the mail worker returned no result.
#pragma once

#include <stdexcept>
#include <string>

namespace corvane {

// The detail of an invalidResponse that is longer than a worker may answer.
inline constexpr const char* answerTooLong = "worker 返回的数据超过上限";

class WorkerError : public std::runtime_error {
  public:
    enum class Kind { launchFailed, invalidResponse, workerFailed, workerNotFound, pythonNotFound };

    // `detail` stands behind the text of the first three kinds; the others have none.
    explicit WorkerError(Kind kind, std::string detail = {});

    [[nodiscard]] Kind kind() const noexcept { return kind_; }

    [[nodiscard]] const std::string& detail() const noexcept { return detail_; }

    // The text for the user; the same as what().
    [[nodiscard]] std::string errorDescription() const;

    friend bool operator==(const WorkerError& a, const WorkerError& b) {
        return a.kind_ == b.kind_ && a.detail_ == b.detail_;
    }

  private:
    Kind kind_;
    std::string detail_;
};

} // namespace corvane
