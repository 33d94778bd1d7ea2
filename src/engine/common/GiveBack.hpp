#pragma once
#include <malloc.h>

namespace engine {

/// Hands freed memory back to the system: after much of it was held for a short while, as a scan and the load
/// of a large library do, the allocator would keep it for good.
inline void GiveBackMemory() {
#ifdef __GLIBC__
  ::malloc_trim(0);
#endif
}

}  // namespace engine
