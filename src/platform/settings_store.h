// The settings of the user: named values in one file that a person can read (JSON, UTF-8, indented), written
// atomically at every change. A file that isn't there, or isn't such a file, counts as empty; a value of
// another type than asked for counts as absent. A damaged file is kept beside the new one as
// "<name>.damaged". A file that is there and can't be read is left as it is: until it can, nothing is saved.
//
// Single-threaded: it belongs to the main thread. Values of keys that this version doesn't know are kept, and
// so are those that another process saved meanwhile: a change is made to the file as it then is, while its
// folder is locked against other stores. A save that fails leaves the file and is tried again with the next
// change; this object answers with the new value.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "platform/files/file_descriptor.h"
#include "platform/files/layers/file_layer.h"

namespace corvane::platform {

// A larger file isn't one.
inline constexpr std::size_t largestSettingsBytes = 16 << 20;

class SettingsStore {
  public:
    explicit SettingsStore(std::string path, FileLayer& files = posixFileLayer());
    SettingsStore(SettingsStore&&) noexcept;
    ~SettingsStore();

    // Where the bytes of a file that couldn't be taken over at the construction are kept, from the first
    // change on; absent when it could, or wasn't there.
    [[nodiscard]] const std::optional<std::string>& setAside() const { return setAside_; }

    // At the last look the file couldn't be read, so it isn't known what it holds. The file was looked at by
    // the construction and each change.
    [[nodiscard]] bool isUnreadable() const;

    // Why the last change couldn't be saved; a falsy code when it could.
    [[nodiscard]] const std::error_code& saveFailure() const { return saveFailure_; }

    [[nodiscard]] const std::string& path() const { return path_; }

    // The value of a key; absent when there is none of this type.
    [[nodiscard]] std::optional<std::string> text(const std::string& key) const;
    [[nodiscard]] std::optional<std::vector<std::string>> textList(const std::string& key) const;
    [[nodiscard]] std::optional<std::map<std::string, std::string>> textMap(const std::string& key) const;

    // Each saves at once, and waits up to a second for another store's save. Bytes that are no UTF-8 become
    // U+FFFD. `saveFailure` tells how it went.
    void setText(const std::string& key, const std::string& value);
    void setTextList(const std::string& key, const std::vector<std::string>& value);
    void setTextMap(const std::string& key, const std::map<std::string, std::string>& value);
    void remove(const std::string& key);

  private:
    struct Document;

    [[nodiscard]] std::string asidePath() const;
    [[nodiscard]] FileDescriptor lockedFolder() const;
    void load();
    void reloadIfChanged();
    void save();

    template <typename Edit>
    void change(const Edit& edit);

    std::string path_;
    FileLayer& files_;
    std::unique_ptr<Document> document_;
    std::optional<std::string> setAside_;
    std::error_code saveFailure_;
};

} // namespace corvane::platform
