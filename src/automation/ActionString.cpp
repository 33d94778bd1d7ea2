#include "automation/ActionString.hpp"

#include <algorithm>
#include <iterator>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "web/UtilityModule.hpp"

namespace automation {

const GroupAction* FindGroupAction(std::string_view word) {
  const auto* const found = std::find_if(std::begin(kGroupActions), std::end(kGroupActions),
                                         [&](const GroupAction& action) { return word == action.word; });
  return found == std::end(kGroupActions) ? nullptr : found;
}

ActionString::ActionString(std::string_view text) : fields_(base::Split(text, '\x02')) {
  web::ArrayDropFirst(fields_);
}

const std::string& ActionString::operator[](std::size_t index) const {
  if (index >= fields_.size()) throw base::Failure(base::number::kIndex);
  return fields_[index];
}

std::string& ActionString::operator[](std::size_t index) {
  if (index >= fields_.size()) throw base::Failure(base::number::kIndex);
  return fields_[index];
}

}  // namespace automation
