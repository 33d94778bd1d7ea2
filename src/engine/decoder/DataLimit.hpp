#pragma once
#include <cstddef>

namespace engine {

/// A bound, kept by the kernel, on the memory that the process may take for itself. Whoever asks for more
/// gets none: the libraries below the decoder give up what they were about, however fast they were at it, and
/// nobody else on the machine is short of memory.
///
/// There is one bound for the process: the one that was set last, for as long as any is set. One that
/// somebody else has set is never widened.
class DataLimit {
 public:
  /// `room`: bytes that may be taken beyond what has been at the beginning.
  explicit DataLimit(std::size_t room) : room_(room) {}
  ~DataLimit() { end(); }
  DataLimit(const DataLimit&) = delete;
  DataLimit& operator=(const DataLimit&) = delete;
  DataLimit(DataLimit&&) = delete;
  DataLimit& operator=(DataLimit&&) = delete;

  /// From now on, and anew with each call.
  void begin();
  void end();

 private:
  std::size_t room_;
  bool set_ = false;
};

}  // namespace engine
