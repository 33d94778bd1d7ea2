#pragma once
#include <memory>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "base/MemberWords.hpp"

namespace player {

/// An object of the model: its table, and what it keeps alive.
template <class Kept>
class Shown : public base::TableObject {
 public:
  Shown(std::shared_ptr<Kept> kept, base::MemberTable table)
      : TableObject(std::move(table)), kept_(std::move(kept)) {}
  [[nodiscard]] const std::shared_ptr<Kept>& behind() const { return kept_; }

 private:
  std::shared_ptr<Kept> kept_;
};

template <class Kept>
base::ObjectRef Show(const std::shared_ptr<Kept>& kept, const char* name, std::vector<base::Member> members) {
  if (!kept) return nullptr;
  return std::make_shared<Shown<Kept>>(kept, base::MemberTable(name, std::move(members)));
}

/// An object for a part of the control itself, which outlives it.
inline base::ObjectRef Show(const char* name, std::vector<base::Member> members) {
  return std::make_shared<Shown<void>>(nullptr, base::MemberTable(name, std::move(members)));
}

template <class Kept>
std::shared_ptr<Kept> Behind(const base::Value& value) {
  const base::ObjectRef object = base::ToObject(value);
  if (!object) return nullptr;
  const auto* shown = dynamic_cast<const Shown<Kept>*>(object.get());
  if (shown == nullptr) throw base::Failure(base::number::kTypeMismatch);
  return shown->behind();
}

}  // namespace player
