#pragma once
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "plugin/Neighbours.hpp"
#include "script/ScriptClass.hpp"
#include "ui/WindowlessMsgForm.hpp"
#include "ui/myMsgForm.hpp"

/// The desktop of a machine without a display: a dialog answers its default at once and leaves its text on
/// the standard error stream.
class HeadlessDesktop : public plugin::Desktop {
 public:
  /// To be called before anything is shown.
  void connect(plugin::HostServices& host, base::Loop& loop) { message_.emplace(view_, host, loop); }

  std::int16_t ShowTimedMessage(const std::string& title, const std::string& text,
                                std::int16_t seconds) override {
    return message_->ShowTimedMessage(title, text, seconds);
  }

 private:
  ui::WindowlessMsgForm view_;
  std::optional<ui::myMsgForm> message_;
};

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
