#include "archive/attachments/thumbnail_maker.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/files/file_descriptor.h"
#include "platform/paths.h"
#include "platform/processes/child_process.h"
#include "platform/processes/timed_pipe.h"

namespace corvane {

namespace {

using platform::PipeOutcome;

constexpr std::int64_t mostBytes = std::int64_t{64} << 20;
constexpr auto patience = std::chrono::seconds(10);
constexpr std::size_t mostHeadLine = 16;
constexpr std::size_t bytesOfPixel = 4;

std::string decoderPath(const platform::Platform& platform) {
    for (const std::string& folder : platform.programResourceFolders()) {
        std::string path = platform::joinPath(folder, "corvane-thumbnail");
        if (platform::isExecutableFile(path)) return path;
    }
    return {};
}

// Absent for what is no plain file of a size that is worth the time.
std::optional<platform::FileDescriptor> openPicture(const std::string& path) {
    platform::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status{};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > mostBytes)
        return std::nullopt;
    return file;
}

std::string_view formatOf(const platform::FileDescriptor& file) {
    std::array<char, 16> beginning{};
    const ssize_t got = ::pread(file.get(), beginning.data(), beginning.size(), 0);
    return got <= 0 ? std::string_view() : pictureFormat({beginning.data(), static_cast<std::size_t>(got)});
}

// What the decoder writes until it ends; absent for more than it may write, and beyond the patience.
std::optional<std::string> answerOf(int pipe, std::size_t mostAnswer, platform::PipeDeadline deadline,
                                    const std::stop_token& stop) {
    std::string answer;
    PipeOutcome outcome = PipeOutcome::done;
    while (outcome == PipeOutcome::done && answer.size() <= mostAnswer)
        outcome = platform::receiveSome(pipe, answer, deadline, stop);
    return outcome == PipeOutcome::ended ? std::optional(std::move(answer)) : std::nullopt;
}

std::optional<Thumbnail> thumbnailIn(std::string answer, int edge) {
    Thumbnail made;
    const std::size_t head = std::string_view(answer).substr(0, mostHeadLine).find('\n');
    if (head == std::string::npos) return std::nullopt;
    const char* const end = answer.data() + head;
    const auto width = std::from_chars(answer.data(), end, made.width);
    if (width.ec != std::errc() || width.ptr == end || *width.ptr != ' ') return std::nullopt;
    const auto height = std::from_chars(width.ptr + 1, end, made.height);
    if (height.ec != std::errc() || height.ptr != end) return std::nullopt;
    if (made.width < 1 || made.width > edge || made.height < 1 || made.height > edge) return std::nullopt;
    made.pixels = answer.substr(head + 1);
    const auto pixels = static_cast<std::size_t>(made.width) * static_cast<std::size_t>(made.height);
    return made.pixels.size() == pixels * bytesOfPixel ? std::optional(std::move(made)) : std::nullopt;
}

std::optional<Thumbnail> decoded(const std::string& decoder, const platform::FileDescriptor& picture,
                                 std::string_view format, int edge, const std::stop_token& stop) {
    platform::Pipe pipe = platform::makePipe();
    platform::ChildProcess child({.executable = decoder,
                                  .arguments = {std::string(format), std::to_string(edge)},
                                  .standardInput = picture.get(),
                                  .standardOutput = pipe.writeEnd.get(),
                                  .isUpkeep = true});
    pipe.writeEnd.reset();
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const std::size_t mostAnswer =
        mostHeadLine + static_cast<std::size_t>(edge) * static_cast<std::size_t>(edge) * bytesOfPixel;
    auto answer = answerOf(pipe.readEnd.get(), mostAnswer, deadline, stop);
    if (!answer) child.kill();
    return child.wait() == 0 && answer ? thumbnailIn(std::move(*answer), edge) : std::nullopt;
}

} // namespace

std::string_view pictureFormat(std::string_view beginning) {
    using namespace std::string_view_literals;
    if (beginning.starts_with("\x89PNG\r\n\x1a\n"sv)) return "png";
    if (beginning.starts_with("\xff\xd8\xff"sv)) return "jpeg";
    if (beginning.starts_with("GIF87a"sv) || beginning.starts_with("GIF89a"sv)) return "gif";
    if (beginning.starts_with("BM"sv)) return "bmp";
    const bool isWebp =
        beginning.starts_with("RIFF"sv) && beginning.size() >= 12 && beginning.substr(8, 4) == "WEBP"sv;
    return isWebp ? "webp" : "";
}

std::optional<Thumbnail> makeThumbnail(const platform::Platform& platform, const std::string& path, int edge,
                                       const std::stop_token& stop) {
    const std::string decoder = decoderPath(platform);
    const auto picture = decoder.empty() ? std::nullopt : openPicture(path);
    const std::string_view format = picture ? formatOf(*picture) : std::string_view();
    if (format.empty()) return std::nullopt;
    try {
        return decoded(decoder, *picture, format, edge, stop);
    } catch (const std::exception&) {
        return std::nullopt; // it couldn't be started
    }
}

} // namespace corvane
