#include "platform/files/sha256.h"

#include <stdexcept>

#include <openssl/crypto.h>
#include <openssl/evp.h>

namespace corvane::platform {

namespace {

void require(int success) {
    if (success != 1) throw std::runtime_error("libcrypto can't make a SHA-256");
}

// Nothing else here uses libcrypto, and making it ready for all that it can do takes longer than a quick
// command otherwise does.
const EVP_MD* findAlgorithm() {
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ADD_ALL_CIPHERS | OPENSSL_INIT_NO_ADD_ALL_DIGESTS |
                            OPENSSL_INIT_NO_LOAD_CONFIG,
                        nullptr);
    return EVP_MD_fetch(nullptr, "SHA256", nullptr);
}

// Null when there is none. Looked up once: that takes as long as hashing some hundred bytes.
const EVP_MD* algorithm() {
    static const EVP_MD* const found = findAlgorithm();
    return found;
}

} // namespace

struct Sha256::State {
    EVP_MD_CTX* context = EVP_MD_CTX_new();

    State() { require(context && algorithm() ? EVP_DigestInit_ex(context, algorithm(), nullptr) : 0); }

    State(const State&) = delete;
    State& operator=(const State&) = delete;

    ~State() { EVP_MD_CTX_free(context); }
};

Sha256::Sha256()
  : state_(std::make_unique<State>()) {}

void Sha256::update(std::string_view bytes) {
    require(EVP_DigestUpdate(state_->context, bytes.data(), bytes.size()));
}

Sha256Digest Sha256::digest() {
    Sha256Digest result;
    require(EVP_DigestFinal_ex(state_->context, result.data(), nullptr));
    require(EVP_DigestInit_ex(state_->context, nullptr, nullptr));
    return result;
}

Sha256::Sha256(Sha256&&) noexcept = default;
Sha256& Sha256::operator=(Sha256&&) noexcept = default;
Sha256::~Sha256() = default;

} // namespace corvane::platform
