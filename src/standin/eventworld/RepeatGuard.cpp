#include "standin/eventworld/RepeatGuard.hpp"

#include <algorithm>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr base::Milliseconds kGuarded = std::chrono::seconds(5);
// The plug-in's clock is another, and its five seconds begin a little later.
constexpr base::Milliseconds kSurely = std::chrono::milliseconds(5500);

}  // namespace

base::Milliseconds RepeatGuard::left(const std::string& stored) const {
  if (!known_ || stored != last_) return base::Milliseconds(0);
  return std::max(at_ + kSurely - loop_.now(), base::Milliseconds(0));
}

void RepeatGuard::carryOut(base::Object& vxif, const std::string& stored) {
  const base::Milliseconds now = loop_.now();
  const bool again = known_ && stored == last_ && now - at_ <= kGuarded;
  if (!again) {
    known_ = true;
    last_ = stored;
    at_ = now;
  }
  vxif.invoke("TriggerAction", stored);
  if (again)
    throw base::Failure(base::number::kPermissionDenied, "Not carried out again within five seconds");
}

}  // namespace standin
