// Whether messages lie in trash or junk, by the names of their mailboxes. Names repeat in nearly every
// message, so each is looked at once. For one job on one thread; refers to the names it was asked for.
#pragma once

#include <string_view>
#include <unordered_map>

#include "text/shared_text.h"

namespace corvane {

class TrashOrJunk {
  public:
    bool holds(const SharedText& mailbox);

  private:
    bool holdsName(const SharedText& mailbox);

    std::unordered_map<std::string_view, bool> known_;
    const SharedText* last_ = nullptr;
    bool holdsLast_ = false;
};

} // namespace corvane
