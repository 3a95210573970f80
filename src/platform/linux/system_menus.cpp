#include "platform/system_menus.h"

namespace corvane::platform {

void declineSystemMenuItems() {}

std::unique_ptr<MenuPolicy> enforceMenuPolicy() {
    return nullptr;
}

} // namespace corvane::platform
