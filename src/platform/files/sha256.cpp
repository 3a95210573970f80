#include "platform/files/sha256.h"

namespace corvane::platform {

Sha256Digest sha256(std::string_view bytes) {
    Sha256 hash;
    hash.update(bytes);
    return hash.digest();
}

} // namespace corvane::platform
