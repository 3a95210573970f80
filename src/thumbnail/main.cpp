// Decodes one picture and gives a small one of it:
//   corvane-thumbnail FORMAT EDGE < PICTURE > THUMBNAIL
// The thumbnail is a line with its width and its height, neither above EDGE, and its pixels row by row, four
// bytes each: red, green, blue and opacity, the colours multiplied by that. Exit status 1: no picture of that
// format, or one that is too large.
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QImageReader>

#include <unistd.h>

#include "platform/processes/process_limits.h"

namespace {

#ifdef CORVANE_UNLIMITED_MEMORY
constexpr std::int64_t memoryBytes = std::numeric_limits<std::int64_t>::max();
#else
constexpr std::int64_t memoryBytes = std::int64_t{640} << 20;
#endif
constexpr auto processorTime = std::chrono::seconds(5);
constexpr int pictureMebibytes = 320;
constexpr std::int64_t mostPixels = 80'000'000;
constexpr int mostEdge = 1024;

std::optional<int> edgeFrom(const char* text) {
    int edge = 0;
    const char* const end = text + std::strlen(text);
    const auto [stopped, error] = std::from_chars(text, end, edge);
    const bool isNumber = error == std::errc() && stopped == end;
    return isNumber && edge > 0 && edge <= mostEdge ? std::optional(edge) : std::nullopt;
}

// Null where there is no picture of that format, or one that is too large.
QImage thumbnail(QIODevice& input, const char* format, int edge) {
    QImageReader reader(&input, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isEmpty() || std::int64_t{size.width()} * size.height() > mostPixels) return {};
    const QSize small = size.scaled(edge, edge, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    if (small.width() < size.width()) reader.setScaledSize(small);
    return reader.read().convertToFormat(QImage::Format_RGBA8888_Premultiplied);
}

bool write(const char* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes, count);
        if (written <= 0) return false;
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

bool writeThumbnail(const QImage& image) {
    const std::string size = std::to_string(image.width()) + ' ' + std::to_string(image.height()) + '\n';
    bool isWritten = write(size.data(), size.size());
    for (int row = 0; row < image.height() && isWritten; ++row)
        isWritten = write(reinterpret_cast<const char*>(image.constScanLine(row)),
                          static_cast<std::size_t>(image.width()) * 4);
    return isWritten;
}

} // namespace

int main(int argc, char** argv) {
    const auto edge = argc == 3 ? edgeFrom(argv[2]) : std::nullopt;
    if (!edge) return 2;
    // Where the system refuses any of it, the size of the picture is limited still.
    corvane::platform::limitThisProcess({memoryBytes, processorTime});
    QImageReader::setAllocationLimit(pictureMebibytes);
    const QCoreApplication application(argc, argv); // knows where the readers of formats lie
    QFile input;
    if (!input.open(STDIN_FILENO, QIODevice::ReadOnly)) return EXIT_FAILURE;
    const QImage image = thumbnail(input, argv[1], *edge);
    return !image.isNull() && writeThumbnail(image) ? EXIT_SUCCESS : EXIT_FAILURE;
}
