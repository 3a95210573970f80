// Brings the bytes of one message to their place in an archive, and proves them there. Blocks, without a time
// limit of its own: ArchiveDestination gives it one.
//
// An existing file at the place is one of three. The same bytes: the file of a killed run, which is proved
// and kept. A part of the bytes, or zeros in places: a write that was cut short, made anew. Anything else may
// be the only copy of some other mail, since names repeat and an index can be lost: it is moved aside, never
// overwritten. What can't be looked at is left alone, and the message fails.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "archive/archive_root.h"
#include "archive/message_extraction.h"
#include "archive/time_limited_worker.h"
#include "platform/files/file_layer.h"

namespace corvane::archive {

// What a run has learned of the folders in an archive. Used by one thread at a time.
struct ArchiveFolders {
    struct Folder {
        // False when the disk knows the folder by another spelling, as one without case does.
        bool isSpelledSo = true;
        std::optional<std::unordered_set<std::string>> fileNames; // composed; read when first needed
    };

    ArchiveRoot root;
    std::unordered_map<std::string, Folder> prepared; // by relative path
};

struct PlacedFile {
    enum class Outcome {
        written,
        alreadyInPlace,
        // On this disk the name means the file of another one that is spelled differently.
        nameTaken,
    };

    Outcome outcome = Outcome::written;
    std::chrono::duration<double> verifying{};
};

class FilePlacement {
  public:
    // `relativePath` is <year>/<account>/<name>.eml.
    FilePlacement(platform::FileLayer& files, ArchiveFolders& folders, JobLimit& limit,
                  const std::string& relativePath, std::string_view bytes);

    // Throws ArchiveError.
    PlacedFile place();

  private:
    ArchiveFolders::Folder& prepareFolder();
    bool makeFolder(const std::string& relativeFolder);
    [[noreturn]] void refuse(std::string_view reason) const;
    bool isKnownBySpelling(ArchiveFolders::Folder& folder);
    bool keepExisting(const struct stat& status);
    void moveAside();
    void write();

    platform::FileLayer& files_;
    ArchiveFolders& folders_;
    JobLimit& limit_;
    const std::string& relativePath_;
    std::string_view bytes_;
    std::string path_;
    PlacedFile result_;
};

} // namespace corvane::archive
