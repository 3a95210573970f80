// What lies in the user's own folders is for this user alone: folders are made with the mode 0700, files with
// 0600, and what an earlier version left open to others is narrowed. Thread-safe.
#pragma once

#include <string>
#include <system_error>

#include <sys/types.h>

#include "platform/files/layers/file_layer.h"

namespace corvane::platform {

inline constexpr mode_t privateFileMode = 0600;
inline constexpr mode_t privateFolderMode = 0700;

// Makes the folder with its missing parents. One that is there and open to others is narrowed, with all that
// lies in it, as far as it belongs to this user. Returns the error of the first one that can't be made, or a
// falsy code.
std::error_code makePrivateFolder(FileLayer& files, const std::string& path);

// Makes an empty file where nothing is, for libraries that give the files that they make beside it the same
// mode; narrows one that is there. Without effect where that isn't possible: whoever opens it then tells.
void makePrivateFile(const std::string& path) noexcept;

// Makes a folder 0700, without its parents, or finds one that is a folder and no link, belongs to this user
// and is narrowed then: nobody else can have put anything into it since. False otherwise.
bool makeOwnFolder(const std::string& path) noexcept;

// Takes the permissions of others from a file or folder of this user; no effect on anybody else's.
void narrowToOwner(const std::string& path) noexcept;

} // namespace corvane::platform
