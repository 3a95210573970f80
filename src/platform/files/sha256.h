// SHA-256 (FIPS 180-4), by the system's cryptographic library. A value of its own for each thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

namespace corvane::platform {

using Sha256Digest = std::array<std::uint8_t, 32>;

class Sha256 {
  public:
    // Throws std::runtime_error when the library has no SHA-256 to give.
    Sha256();
    Sha256(Sha256&&) noexcept;
    Sha256& operator=(Sha256&&) noexcept;
    ~Sha256();

    void update(std::string_view bytes);

    // Of all bytes since the construction or the last digest; begins anew.
    Sha256Digest digest();

  private:
    struct State;

    std::unique_ptr<State> state_;
};

Sha256Digest sha256(std::string_view bytes);

} // namespace corvane::platform
