// A file mapped for reading, so that its pages count as the system's cache and can go at any time.
#pragma once

#include <string>
#include <string_view>

namespace corvane::platform {

class MappedFile {
  public:
    // Throws std::system_error.
    explicit MappedFile(const std::string& path);
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile();

    [[nodiscard]] std::string_view text() const { return {static_cast<const char*>(address_), size_}; }

  private:
    void* address_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace corvane::platform
