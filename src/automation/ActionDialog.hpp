#pragma once
#include <string>

#include "automation/ActionDropLists.hpp"
#include "base/Object.hpp"
#include "catalogue/NameXref.hpp"
#include "catalogue/Progress.hpp"
#include "plugin/host/Loggers.hpp"
#include "plugin/host/PluginState.hpp"
#include "plugin/host/Settings.hpp"

namespace automation {

/// What an action's dialog is built on.
struct ActionDialogParts {
  ActionDropLists& dropLists;
  OpenActionDialog& dialog;
  catalogue::NameXref& xref;
  catalogue::Progress& progress;
  plugin::HostServices& host;
  plugin::Loggers& loggers;
  plugin::PluginState& state;
};

/// The dialog in which the host lets a user put together an action of this plug-in. The host owns dialog and
/// storage: the plug-in describes the one as text and judges the string that comes back. None of the
/// operations throws.
class ActionDialog {
 public:
  explicit ActionDialog(const ActionDialogParts& parts) : in_(parts) {}

  /// The whole dialog: rows separated by a carriage return, their fields by a tab. Gathering its lists may
  /// take long, so that without `RefreshActions` a fresh action shows none until a prompt was chosen.
  /// `ActionStr` gets the characters that had to go from the text, normally none.
  std::string ActionUI(std::string& ActionStr);
  /// An action in one line; empty for "No Action". Never asks the library.
  std::string ActionUIFormat(const std::string& ActionString);
  /// Widens the lists of a dialog whose controls the host has made, and puts the button beside the titles.
  void ModifyActionUI(const base::Value& controls);
  /// Why the action may not be saved; empty when it may.
  std::string ValidateActionUI(const std::string& ActionStr);

 private:
  std::string dialogText(const ActionString& a);
  std::string illegal(const std::string& procedure, const std::string& text);
  void step(const std::string& text);

  ActionDialogParts in_;
};

}  // namespace automation
