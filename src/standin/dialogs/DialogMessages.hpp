#pragma once
#include <string>

#include "standin/dialogs/DialogForm.hpp"

namespace standin {

/// The fields of an action's dialog that a message of the plug-in's means, with what stands beside each.
/// Those that "must be blank" are the ones that are not. None for a message that isn't known, which is
/// about the whole.
DialogValues FieldsMeant(const std::string& message, const DialogValues& values);

}  // namespace standin
