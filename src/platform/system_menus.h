// The menus that a system fills by itself, kept to what belongs to Corvane. Where programs have no such
// menus, nothing happens. Main thread.
#pragma once

#include <memory>

namespace corvane::platform {

// To be called before the application object is made: tells the system which entries not to add.
void declineSystemMenuItems();

// Ends with its object.
class MenuPolicy {
  public:
    virtual ~MenuPolicy() = default;
};

// From here on removes what the system adds, also when it does so late. To be called once the application
// object is there; null where there is nothing to do.
std::unique_ptr<MenuPolicy> enforceMenuPolicy();

} // namespace corvane::platform
