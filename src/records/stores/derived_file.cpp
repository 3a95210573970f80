#include "records/stores/derived_file.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "platform/files/writing/durable_file.h"

namespace corvane {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 16; // a multiple of a step's bytes

// Tells damage, not intent. Four lanes, since each step waits for the one before.
class Checksum {
  public:
    void add(std::string_view piece) {
        std::size_t at = 0;
        for (; at + stepBytes <= piece.size(); at += stepBytes) addStep(piece.data() + at);
        if (at == piece.size()) return;
        std::array<char, stepBytes> last{};
        std::memcpy(last.data(), piece.data() + at, piece.size() - at);
        addStep(last.data());
        lanes_[0] += piece.size() - at;
    }

    [[nodiscard]] std::uint64_t value() const {
        std::uint64_t sum = 0;
        for (const std::uint64_t lane : lanes_) sum = (sum ^ (lane >> 29) ^ lane) * factor;
        return sum;
    }

  private:
    static constexpr std::uint64_t factor = 0x9E3779B97F4A7C15;
    static constexpr std::size_t laneCount = 4;
    static constexpr std::size_t stepBytes = laneCount * sizeof(std::uint64_t);

    void addStep(const char* bytes) {
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes + lane * sizeof word, sizeof word);
            lanes_[lane] = (lanes_[lane] ^ word) * factor;
            lanes_[lane] ^= lanes_[lane] >> 32;
        }
    }

    std::array<std::uint64_t, laneCount> lanes_{1, 2, 3, 4};
};

bool isWhole(const std::string& path) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    std::ifstream file(path, std::ios::binary);
    std::uint64_t expected = 0;
    std::array<char, sizeof expected> head{};
    if (!file.read(head.data(), head.size())) return false;
    std::memcpy(&expected, head.data(), head.size());
    Checksum checksum;
    std::vector<char> piece(pieceBytes);
    while (file.read(piece.data(), pieceBytes) || file.gcount() > 0)
        checksum.add({piece.data(), static_cast<std::size_t>(file.gcount())});
    return checksum.value() == expected;
}

} // namespace

DerivedFile::DerivedFile(std::unique_ptr<platform::MappedFile> file)
  : file_(std::move(file))
  , content_(file_->text().substr(sizeof(std::uint64_t))) {}

std::optional<DerivedFile> DerivedFile::open(const std::string& path) {
    try {
        if (!isWhole(path)) return std::nullopt;
        return DerivedFile(std::make_unique<platform::MappedFile>(path));
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::error_code DerivedFile::write(platform::FileLayer& files, const std::string& path,
                                   std::string_view content) {
    Checksum checksum;
    checksum.add(content);
    const std::uint64_t value = checksum.value();
    std::string whole(reinterpret_cast<const char*>(&value), sizeof value);
    return platform::writeFileAtomically(files, path, whole.append(content));
}

std::string_view DerivedFile::bytes(std::size_t offset, std::size_t count) const {
    if (offset > content_.size() || count > content_.size() - offset)
        throw std::out_of_range("derived file: behind its end");
    return content_.substr(offset, count);
}

} // namespace corvane
