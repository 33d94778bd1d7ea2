#pragma once

namespace engine {

/// True when an interface other than the loopback is up and running.
bool IsOnline();

}  // namespace engine
