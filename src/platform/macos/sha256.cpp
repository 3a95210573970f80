#include "platform/files/sha256.h"

#include <algorithm>
#include <limits>

#include <CommonCrypto/CommonDigest.h>

namespace corvane::platform {

struct Sha256::State {
    CC_SHA256_CTX context;

    State() { CC_SHA256_Init(&context); }
};

Sha256::Sha256()
  : state_(std::make_unique<State>()) {}

void Sha256::update(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t count = std::min<std::size_t>(bytes.size(), std::numeric_limits<CC_LONG>::max());
        CC_SHA256_Update(&state_->context, bytes.data(), static_cast<CC_LONG>(count));
        bytes.remove_prefix(count);
    }
}

Sha256Digest Sha256::digest() {
    Sha256Digest result;
    CC_SHA256_Final(result.data(), &state_->context);
    CC_SHA256_Init(&state_->context);
    return result;
}

Sha256::Sha256(Sha256&&) noexcept = default;
Sha256& Sha256::operator=(Sha256&&) noexcept = default;
Sha256::~Sha256() = default;

} // namespace corvane::platform
