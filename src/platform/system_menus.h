// The menus that a system fills by itself, kept to what belongs to Corvane, and Corvane's own entries in
// them. Where programs have no such menus, nothing happens. Main thread.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane::platform {

// To be called before the application object is made: tells the system which entries not to add.
void declineSystemMenuItems();

// Ends with its object.
class MenuPolicy {
  public:
    virtual ~MenuPolicy() = default;
};

struct MenuCommand {
    std::string title;
    std::function<void()> run; // must not throw
};

// From here on removes what the system adds, also when it does so late, and keeps the commands in the
// application's own menu. To be called once the application object is there; null where there is nothing to
// do.
std::unique_ptr<MenuPolicy> enforceMenuPolicy(const std::vector<MenuCommand>& commands);

} // namespace corvane::platform
