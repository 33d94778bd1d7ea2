#pragma once
#include <cstdio>
#include <memory>
#include <string>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "plugin/Neighbours.hpp"
#include "script/ScriptClass.hpp"

/// The desktop of a machine without a display: a dialog answers its default at once and leaves its text on
/// the standard error stream.
class HeadlessDesktop : public plugin::Desktop {
 public:
  std::int16_t ShowTimedMessage(const std::string& title, const std::string& text,
                                std::int16_t /*seconds*/) override {
    constexpr std::int16_t kTimeIsUp = 2;
    std::fprintf(stderr, "%s %s\n", title.c_str(), text.c_str());
    return kTimeIsUp;
  }
};

/// The public objects that can be created by name. Each is made once and kept to the end of the process.
class RegisteredObjects : public plugin::ObjectFactory {
 public:
  [[nodiscard]] const std::shared_ptr<script::ScriptClass>& scriptClass() const { return scriptClass_; }

  base::ObjectRef create(const std::string& registeredName) override {
    if (!base::SameText(registeredName, script::ScriptClass::kRegisteredName))
      throw base::Failure(base::number::kCannotCreate, "No object is registered as " + registeredName);
    return scriptClass_;
  }

 private:
  std::shared_ptr<script::ScriptClass> scriptClass_ = std::make_shared<script::ScriptClass>();
};
