// UTF-8 as the charset of this thread's C locale, for libraries that ask it. One thread.
#pragma once

#include <clocale>

#if defined(__APPLE__)
#include <xlocale.h>
#endif

namespace corvane::platform {

// As long as it lives. No effect on a system that has no such locale.
class Utf8Locale {
  public:
    Utf8Locale() noexcept;
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;
    ~Utf8Locale();

  private:
    locale_t locale_ = nullptr;
    locale_t earlier_ = nullptr;
};

} // namespace corvane::platform
