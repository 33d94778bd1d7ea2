#pragma once
#include <string>

namespace mpris {

/// Where the user's session bus is now; empty for nowhere. A bus starts a process with its own address in the
/// place of the session bus's, so the house's bus hands that one on as VANTORIX_SESSION_BUS. Without both it
/// is the socket in the user's folder, where it may appear later and has to be his. Only sockets of this
/// machine are taken: names of others would have to be looked up, and waited for.
std::string SessionAddress();

}  // namespace mpris
