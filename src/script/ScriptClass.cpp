#include "script/ScriptClass.hpp"

namespace script {

ScriptClass::ScriptClass()
    : TableObject(
          {"ScriptClass", {{"Version", base::MemberKind::kOperation, {}, base::Type::kText, [](base::Args&) {
                              return base::Value(VANTORIX_VERSION);
                            }}}}) {}

}  // namespace script
