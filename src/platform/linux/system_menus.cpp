#include "platform/system_menus.h"

namespace corvane::platform {

void declineSystemMenuItems() {}

std::unique_ptr<MenuPolicy> enforceMenuPolicy(const std::vector<MenuCommand>& /*commands*/) {
    return nullptr;
}

} // namespace corvane::platform
