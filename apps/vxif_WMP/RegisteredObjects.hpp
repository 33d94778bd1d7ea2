#pragma once
#include <memory>
#include <string>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "plugin/host/Neighbours.hpp"
#include "script/ScriptClass.hpp"

/// The public objects that can be created by name. Each is made once and kept to the end of the process.
class RegisteredObjects : public plugin::ObjectFactory {
 public:
  void provide(std::shared_ptr<script::ScriptClass> scriptClass) { scriptClass_ = std::move(scriptClass); }
  [[nodiscard]] const std::shared_ptr<script::ScriptClass>& scriptClass() const { return scriptClass_; }

  base::ObjectRef create(const std::string& registeredName) override {
    if (!scriptClass_ || !base::SameText(registeredName, script::ScriptClass::kRegisteredName))
      throw base::Failure(base::number::kCannotCreate, "No object is registered as " + registeredName);
    return scriptClass_;
  }

 private:
  std::shared_ptr<script::ScriptClass> scriptClass_;
};
