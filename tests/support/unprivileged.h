// The process has the rights of an ordinary user while this lives, also where the tests run as root.
#pragma once

#include <unistd.h>

namespace corvane::testing {

class Unprivileged {
  public:
    Unprivileged()
      : earlier_(::geteuid()) {
        constexpr uid_t nobody = 65534;
        // The real id too: access() asks for that one. The saved one stays, for the way back.
        if (earlier_ == 0) isSo_ = ::setreuid(nobody, 0) == 0 && ::seteuid(nobody) == 0;
    }

    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

    ~Unprivileged() {
        if (earlier_ == 0 && isSo_ && (::seteuid(0) != 0 || ::setreuid(0, 0) != 0)) ::_exit(1);
    }

    [[nodiscard]] bool isSo() const { return isSo_; }

  private:
    uid_t earlier_;
    bool isSo_ = earlier_ != 0;
};

} // namespace corvane::testing
