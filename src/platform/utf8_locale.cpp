#include "platform/utf8_locale.h"

#include <initializer_list>

namespace corvane::platform {

Utf8Locale::Utf8Locale() noexcept {
    for (const char* const name : {"C.UTF-8", "en_US.UTF-8", "UTF-8"}) {
        if (locale_ == nullptr) locale_ = ::newlocale(LC_CTYPE_MASK, name, nullptr);
    }
    if (locale_ != nullptr) earlier_ = ::uselocale(locale_);
}

Utf8Locale::~Utf8Locale() {
    if (locale_ == nullptr) return;
    ::uselocale(earlier_);
    ::freelocale(locale_);
}

} // namespace corvane::platform
