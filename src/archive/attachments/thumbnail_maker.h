// Small pictures of image files that came with mail. A file is decoded in a process of its own, with limits
// of memory, pixels and time, and only where its bytes begin as a picture of one of the known formats does:
// one that makes the decoder hang or crash costs its thumbnail. Blocks, on a background thread.
#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace corvane {

struct Thumbnail {
    int width = 0;
    int height = 0;
    // Row by row, four bytes a pixel: red, green, blue and opacity, the colours multiplied by that.
    std::string pixels;
};

// "png", "jpeg", "gif", "bmp" or "webp" for the beginning of a file; empty for anything else.
std::string_view pictureFormat(std::string_view beginning);

// At most `edge` at its longer side. Absent for a file that is no picture or too large, and where the program
// that decodes isn't there.
std::optional<Thumbnail> makeThumbnail(const platform::Platform& platform, const std::string& path, int edge,
                                       const std::stop_token& stop = {});

} // namespace corvane
