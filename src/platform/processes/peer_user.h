// Who is at the other end of a local socket.
#pragma once

namespace corvane::platform {

// Whether the process at the other end runs as this user. False as well where the system doesn't say.
bool isPeerOfSameUser(int socketDescriptor) noexcept;

} // namespace corvane::platform
