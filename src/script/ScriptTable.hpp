#pragma once
#include <vector>

#include "base/MemberWords.hpp"
#include "plugin/host/PluginState.hpp"

namespace script {

/// A member of the script object, and what it answers when it can't do its work: the empty value of its type
/// unless another is named.
struct Slot {
  // NOLINTNEXTLINE(google-explicit-constructor): most members of the table are just members
  Slot(base::Member member);

  base::Member member;
  base::Value start;    ///< the answer before start-up is over
  base::Value failure;  ///< the answer where it fails
  bool always = false;  ///< it works before start-up is over too
};

/// An operation whose collection is no object at all before start-up is over, and is made in any case
/// afterwards.
Slot Collection(base::Member member);
/// An operation that gives `unread` where it fails.
Slot Unread(base::Member member, base::Record unread);
/// An operation that also works before start-up is over.
Slot Always(base::Member member);

/// The members as the script object has them: they skip failures, the conversion of their arguments among
/// them, and do nothing until start-up is over. `state` outlives them.
std::vector<base::Member> Skipping(const plugin::PluginState& state, std::vector<Slot> slots);

}  // namespace script
