#include "plugin/host/Unwaited.hpp"

#include <utility>

#include "base/Attempt.hpp"
#include "plugin/host/HostServices.hpp"

namespace plugin {

namespace {
/// So many go in one message at most: the host does nothing else while it works on them.
constexpr std::size_t kMostTogether = 100;
}  // namespace

void UnwaitedCalls::add(base::Call call, Owner& owner) {
  calls_.push_back(std::move(call));
  owners_.push_back(&owner);
  if (calls_.size() >= kMostTogether) send();
}

void UnwaitedCalls::send() {
  if (calls_.empty()) return;
  // Taken out first: calls that come in meanwhile may ask the host, and so come here.
  const std::vector<Owner*> owners = std::exchange(owners_, {});
  std::vector<base::Call> calls = std::exchange(calls_, {});
  base::Handled(
      [&] {
        const base::ObjectRef host = host_;  // shutting down within a call clears the reference
        for (const base::FailedCall& each : base::CallEach(base::Deref(host), std::move(calls)))
          if (each.place < owners.size()) owners[each.place]->failed(each.failure);
      },
      [&](const base::Failure& failure) {
        for (Owner* owner : owners) owner->failed(failure);
      });
}

Unwaited::Unwaited(HostServices& host) : host_(host) {}

Unwaited::~Unwaited() { host_.unwaited().send(); }

void Unwaited::SaveINISetting(const std::string& section, const std::string& key, const base::Value& value,
                              const std::string& file) {
  base::Call call{"SaveINISetting", {}};
  call.args.reserve(5);  // with the room that the name may take beside them
  call.args.emplace_back(section);
  call.args.emplace_back(key);
  call.args.emplace_back(value);
  call.args.emplace_back(file);
  host_.unwaited().add(std::move(call), *this);
}

void Unwaited::settle() {
  host_.unwaited().send();
  meetFailure();
}

void Unwaited::WaitEvents() {
  host_.whileWaiting([&] {
    host_.unwaited().add({"WaitEvents", {}}, *this);
    host_.unwaited().send();
  });
  meetFailure();
}

void Unwaited::meetFailure() {
  if (first_) throw base::Failure(*std::exchange(first_, std::nullopt));
}

void Unwaited::failed(const base::Failure& failure) {
  if (!first_) first_ = failure;
}

}  // namespace plugin
