#pragma once
#include <memory>

#include "base/Failure.hpp"

namespace ui::editor {

/// What is referred to. Throws 91 for nothing.
template <class T>
T& Present(const std::shared_ptr<T>& reference) {
  if (!reference) throw base::Failure(base::number::kObjectMissing);
  return *reference;
}

}  // namespace ui::editor
