// A file of ours with content that can be made again at any time, such as a table for quick look-ups. It
// carries a checksum: one that was cut, damaged or written by something else reads as none. Other programs of
// the user can write where it lies, so whoever reads it takes nothing in it for granted. Any thread; touches
// the disk.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "platform/files/layers/file_layer.h"
#include "platform/files/mapped_file.h"

namespace corvane {

class DerivedFile {
  public:
    // Absent when there is none or it isn't whole. Reads it once; what is looked up later is mapped.
    static std::optional<DerivedFile> open(const std::string& path);

    static std::error_code write(platform::FileLayer& files, const std::string& path,
                                 std::string_view content);

    [[nodiscard]] std::size_t size() const { return content_.size(); }

    // The value at that byte. Throws std::out_of_range behind the end.
    template <class T>
    [[nodiscard]] T at(std::size_t offset) const {
        static_assert(std::is_trivially_copyable_v<T>);
        T value;
        bytes(offset, sizeof value).copy(reinterpret_cast<char*>(&value), sizeof value);
        return value;
    }

    // Throws std::out_of_range behind the end.
    [[nodiscard]] std::string_view bytes(std::size_t offset, std::size_t count) const;

  private:
    explicit DerivedFile(std::unique_ptr<platform::MappedFile> file);

    std::unique_ptr<platform::MappedFile> file_;
    std::string_view content_;
};

} // namespace corvane
