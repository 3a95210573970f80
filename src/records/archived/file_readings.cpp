#include "records/archived/file_readings.h"

namespace corvane {

FileStamp stampOf(const struct stat& status) noexcept {
    return {status.st_size, platform::modifiedNanoseconds(status), platform::changedNanoseconds(status)};
}

FileStamp stampOf(const platform::FileLook& look) noexcept {
    if (look.presence != platform::FileLook::Presence::there) return unknownStamp;
    return {look.sizeBytes, look.modifiedNanoseconds, look.changedNanoseconds};
}

} // namespace corvane
