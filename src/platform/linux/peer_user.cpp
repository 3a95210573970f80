#include "platform/processes/peer_user.h"

#include <sys/socket.h>
#include <unistd.h>

namespace corvane::platform {

bool isPeerOfSameUser(int socketDescriptor) noexcept {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socketDescriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           size == sizeof peer && peer.uid == ::geteuid();
}

} // namespace corvane::platform
