#pragma once
#include <cstdint>
#include <vector>

namespace player {

/// A playlist out of which many items can be taken at one go, for whoever changes lists of thousands from
/// another process.
class ManyOut {
 public:
  virtual ~ManyOut() = default;
  ManyOut(const ManyOut&) = delete;
  ManyOut& operator=(const ManyOut&) = delete;
  ManyOut(ManyOut&&) = delete;
  ManyOut& operator=(ManyOut&&) = delete;

  /// The places rise, and count as before the call. Throws 9 for one where there is no item; then all stay.
  virtual void removeItems(const std::vector<std::int32_t>& places) = 0;

 protected:
  ManyOut() = default;
};

}  // namespace player
