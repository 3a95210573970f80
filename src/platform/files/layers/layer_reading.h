// Reading whole files through a file layer.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include <sys/stat.h>

#include "platform/files/layers/file_layer.h"
#include "platform/files/layers/layer_descriptor.h"

namespace corvane::platform {

// Whether a failed call says by this errno that there is no such file. Every other error means that nobody
// could look.
bool saysAbsent(int errorNumber) noexcept;

enum class FinalLink { follow, refuse };

// Opens a regular file for reading; a FIFO or a device is refused without a wait (EINVAL, EISDIR for a
// folder). No descriptor and errno when it can't; `status` is that of the file.
LayerDescriptor openRegularFile(FileLayer& files, const std::string& path, FinalLink link,
                                struct stat& status);

// The rest of an open file in pieces of at most 1 MiB, the first as large as `expected`, if that is less.
// `onPiece` returns whether to go on. 0, also when it didn't want to, or the errno of the failed read.
int readPieces(FileLayer& files, int descriptor, std::size_t expected,
               const std::function<bool(std::string_view)>& onPiece);

} // namespace corvane::platform
