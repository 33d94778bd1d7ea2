#pragma once
#include "base/Members.hpp"

namespace script {

/// `ScriptClass`, the plug-in's second public object, which the host's scripts reach.
class ScriptClass : public base::TableObject {
 public:
  /// The name under which it is created.
  static constexpr const char* kRegisteredName = "vxif_WMP9.scriptclass";

  ScriptClass();
};

}  // namespace script
