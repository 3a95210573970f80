// The extracted attachments that are being shown, as files in the temporary folder: below
// "CorvaneAttachments", in one folder a mail whose name says nothing outside of this run. For this user
// alone, and bounded: what was used longest ago goes. Files that were handed to other programs stay when this
// one ends; the next start removes them. Any thread.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "archive/portable_names.h"
#include "platform/files/file_descriptor.h"
#include "text/mutex.h"

namespace corvane::archive {

class AttachmentCache {
  public:
    struct Limits {
        std::int64_t bytes = std::int64_t{1} << 30;
        std::size_t files = 500;
    };

    // Which attachment: the mail's path, the name as its record has it, and which of those of that name.
    struct Key {
        std::string mailPath;
        std::string name;
        std::size_t occurrence = 0;

        friend auto operator<=>(const Key&, const Key&) = default;
    };

    explicit AttachmentCache(const std::string& temporaryFolder)
      : AttachmentCache(temporaryFolder, Limits()) {}

    AttachmentCache(const std::string& temporaryFolder, const Limits& limits);

    // The folder for the attachments of a mail. It need not exist.
    [[nodiscard]] std::string cacheFolder(std::string_view mailPath) const;

    // The file with an attachment; nullopt when there is none, or it has become empty.
    std::optional<std::string> find(const Key& key);

    // Writes one and returns its path. Throws std::system_error.
    std::string put(const Key& key, std::string_view data);

    // Removes what runs that have ended left in the temporary folder, which need not have any.
    static void removeLeftovers(const std::string& temporaryFolder);

  private:
    struct File {
        Key key;
        std::string path;
        std::int64_t bytes = 0;
    };

    using Files = std::list<File>; // the last used first

    void begin() REQUIRES(mutex_);
    void remove(Files::iterator file) REQUIRES(mutex_);
    void makeRoomFor(std::int64_t bytes) REQUIRES(mutex_);

    std::string base_;
    std::string run_; // what the names of this run's folders begin with
    Limits limits_;
    text::Mutex mutex_;
    platform::FileDescriptor claim_ GUARDED_BY(mutex_);
    Files files_ GUARDED_BY(mutex_);
    std::map<Key, Files::iterator> byKey_ GUARDED_BY(mutex_);
    std::int64_t bytes_ GUARDED_BY(mutex_) = 0;
    UniqueNames names_ GUARDED_BY(mutex_);
};

} // namespace corvane::archive
