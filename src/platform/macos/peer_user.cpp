#include "platform/processes/peer_user.h"

#include <sys/types.h>
#include <unistd.h>

namespace corvane::platform {

bool isPeerOfSameUser(int socketDescriptor) noexcept {
    uid_t user = 0;
    gid_t group = 0;
    return ::getpeereid(socketDescriptor, &user, &group) == 0 && user == ::geteuid();
}

} // namespace corvane::platform
