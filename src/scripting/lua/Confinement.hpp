#pragma once
#include <chrono>

namespace scripting {

/// Takes from this process, for good, what no script needs: it can open no file and no connection, start no
/// program and no process, and ends when the one that has started it ends. Its memory is bounded. Throws
/// std::system_error where the system refuses.
void Confine();
/// It is ended by the system after so much time of the processor.
void BoundProcessor(std::chrono::seconds most);

}  // namespace scripting
