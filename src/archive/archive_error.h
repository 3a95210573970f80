// What can go wrong in an archive, as the user is told. what() is the text to show.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace corvane {

// One message could not be archived.
class ArchiveError : public std::runtime_error {
  public:
    enum class Case {
        emlxParseFailed,
        writeVerificationFailed,
        writeFailed,
        writeTimedOut,
        readTimedOut, // in Mail's store
        couldNotLook, // at a file of the archive that belongs to the message
    };

    // With the errno of the cause the text says when the disk is full.
    explicit ArchiveError(Case kind, int errorNumber = 0);

    [[nodiscard]] Case kind() const noexcept { return kind_; }

  private:
    Case kind_;
};

// What can't be done with an archive's index, for the errors below.
inline constexpr std::string_view indexNotRead = "无法读取归档索引";
inline constexpr std::string_view indexNotSaved = "无法保存归档索引";

// Why a file of an archive couldn't be had, in the words of systemErrorReason.
std::string fileErrorReason(bool isInCloud, int errorNumber);

// The archive as a whole can't be used: its folder can't be made, its index can't be read or saved.
class ArchiveAccessError : public std::runtime_error {
  public:
    // "<what> “<path>”：<reason>".
    ArchiveAccessError(std::string_view what, std::string_view path, std::string_view reason);
    ArchiveAccessError(std::string_view what, std::string_view path, int errorNumber);
};

} // namespace corvane
