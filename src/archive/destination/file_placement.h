// Brings the bytes of one message to their place in an archive, and proves them there. Blocks, without a time
// limit of its own: ArchiveDestination gives it one.
//
// An existing file at the place is one of three. The same bytes: the file of a killed run, which is proved
// and kept. A part of the bytes, or zeros in places: a write that was cut short, made anew. Anything else may
// be the only copy of some other mail, since names repeat and an index can be lost: it is moved aside, never
// overwritten. What can't be looked at is left alone, and the message fails.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "archive/destination/archive_folders.h"
#include "archive/destination/durable_write.h"
#include "platform/files/layers/file_layer.h"
#include "platform/threads/time_limited_worker.h"

namespace corvane::archive {

struct PlacedFile {
    enum class Outcome {
        written,
        alreadyInPlace,
        // The name isn't free: on this disk it means the file of another one that is spelled differently, or
        // a cloud provider keeps that file elsewhere. Nothing was written.
        nameTaken,
    };

    Outcome outcome = Outcome::written;
    // Of a file that is in its place: what was read back, and the folder that it is in.
    DiskReading reading;
    WrittenFolder folder;
    std::chrono::duration<double> verifying{};
};

class FilePlacement {
  public:
    // `relativePath` is that of an .eml file below the root.
    FilePlacement(platform::FileLayer& files, ArchiveFolders& folders, platform::JobLimit& limit,
                  const std::string& relativePath, std::string_view bytes);

    // Throws ArchiveError.
    PlacedFile place();

  private:
    void placeIn(platform::FileLayer& folder, ArchiveFolders::Opened& opened);
    bool isFree(platform::FileLayer& folder);
    bool isKnownBySpelling(ArchiveFolders::Opened& opened);
    bool keepExisting(platform::FileLayer& folder, const struct stat& status);
    void moveAside(platform::FileLayer& folder);
    void write(platform::FileLayer& folder);
    DiskReading readBack(platform::FileLayer& folder, BeforeReading before);
    [[noreturn]] void refuse(std::string_view reason, int error = 0) const;
    [[noreturn]] void refuseByError() const;

    platform::FileLayer& files_;
    ArchiveFolders& folders_;
    platform::JobLimit& limit_;
    const std::string& relativePath_;
    std::string name_;
    std::string_view bytes_;
    PlacedFile result_;
};

} // namespace corvane::archive
