#pragma once
#include <chrono>

namespace scripting {

/// Takes from this process, for good, what no script needs: it can open no file and no connection, start no
/// program and no process, and ends when the one that has started it ends. Its memory is bounded. Throws
/// std::system_error where the system refuses.
void Confine();
/// It is ended by the system after so much time of the processor.
void BoundProcessor(std::chrono::seconds most);
/// From now on, for good, the system refuses with EPERM whatever this process asks of it beyond reading and
/// writing where it can already, memory that is never executed, the time, and its own end. To be called last.
/// Throws std::system_error where the system has no such filter; on other machines than x86-64 and AArch64 it
/// does nothing.
void RefuseOtherCalls();

}  // namespace scripting
