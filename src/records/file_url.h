// A file by its absolute path; the URL text is made only for JSON and for showing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "text/shared_text.h"

namespace corvane {

class FileURL {
  public:
    FileURL() = default;

    explicit FileURL(SharedText path)
      : path_(std::move(path)) {}

    // The decoded file-system path. Two URLs are equal when these are.
    [[nodiscard]] const SharedText& path() const { return path_; }

    [[nodiscard]] std::string_view lastPathComponent() const;

    // "file://" and the percent-encoded path (RFC 8089).
    [[nodiscard]] std::string absoluteString() const;

    // Absent when the text isn't a file URL of this machine.
    static std::optional<FileURL> fromAbsoluteString(std::string_view text);

    friend bool operator==(const FileURL&, const FileURL&) = default;

  private:
    SharedText path_;
};

} // namespace corvane
