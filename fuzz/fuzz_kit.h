// What the fuzz targets share: ending a run with its input as a finding, cutting values off an input, and
// files that last as long as the process. Header only; one thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace corvane::fuzz {

// The run ends, and its input is kept as a finding, unless the condition holds.
inline void require(bool condition) {
    if (!condition) std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// Cuts an input into values from its front. Behind its end all numbers are 0 and all texts empty.
class InputReader {
  public:
    explicit InputReader(std::string_view input)
      : rest_(input) {}

    [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }

    std::string_view text(std::size_t size) {
        const std::string_view text = rest_.substr(0, size);
        rest_.remove_prefix(text.size());
        return text;
    }

    // Up to the separator, which is left out, or the end.
    std::string_view field(char separator) {
        const std::string_view field = text(std::min(rest_.find(separator), rest_.size()));
        text(1);
        return field;
    }

    std::size_t byte() { return number(1); }

    // The bytes as a big-endian number.
    std::size_t number(std::size_t bytes) {
        std::size_t number = 0;
        for (const char byte : text(bytes)) number = number << 8 | static_cast<unsigned char>(byte);
        return number;
    }

  private:
    std::string_view rest_;
};

// A folder in the temporary folder, removed with its owner. Whoever starts the target chooses a temporary
// folder in memory, and removes what a finding leaves there.
class FuzzFolder {
  public:
    FuzzFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "corvane-fuzz-XXXXXX").string();
        require(::mkdtemp(pattern.data()) != nullptr);
        path_ = std::filesystem::canonical(pattern).string();
    }

    FuzzFolder(const FuzzFolder&) = delete;
    FuzzFolder& operator=(const FuzzFolder&) = delete;

    ~FuzzFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::string& path() const { return path_; }

    [[nodiscard]] std::string at(std::string_view name) const { return path_ + "/" + std::string(name); }

  private:
    std::string path_;
};

inline void writeFile(const std::string& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline std::string readWhole(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::string bytes(file ? static_cast<std::size_t>(file.tellg()) : 0, '\0');
    file.seekg(0).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

} // namespace corvane::fuzz
