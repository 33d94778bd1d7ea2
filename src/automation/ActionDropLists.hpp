#pragma once
#include <cstdint>
#include <string>

#include "automation/ActionString.hpp"
#include "base/Object.hpp"
#include "catalogue/MediaCatalogue.hpp"
#include "catalogue/Progress.hpp"
#include "plugin/host/Loggers.hpp"

namespace automation {

/// What the dialog of an action that is open now shows. It belongs to one dialog at a time: the next one
/// overwrites it.
struct OpenActionDialog {
  /// For which group the Titles list was built: the action word joined to the group's name, the empty text
  /// for no group, or `kNotInitialized`.
  std::string ActionDialogState;
  /// The dialog's controls, as the host has numbered them from 1: those of the eight rows from "Action" to
  /// "Mode" have even numbers, each behind its label, and the button has number 17.
  base::ObjectRef ActionDialogControls;

  /// The dialog was shown without lists.
  static constexpr const char* kNotInitialized = "Not Initialized";
};

/// The drop lists of an action's dialog. In a text form each entry is preceded by one tab, so that a list's
/// first line is empty. None of the operations throws.
class ActionDropLists {
 public:
  ActionDropLists(catalogue::MediaCatalogue& catalogue, catalogue::Progress& progress,
                  plugin::Loggers& loggers, OpenActionDialog& dialog)
      : catalogue_(catalogue), progress_(progress), loggers_(loggers), dialog_(dialog) {}

  /// The names of a category, sorted without regard to case; one line that says why, where there are none.
  std::string GetActionDropList(const std::string& CategoryType);
  /// The titles of the group that an action names. After a failure, which is logged, the text as far as it
  /// came.
  void FileDropList(const ActionString& a, std::string& text);
  /// Fills the Titles list of the open dialog anew from the group that its lists show. 0, or the status of
  /// `GetGroupItems`.
  std::int32_t FileDropListModify();

 private:
  std::string sortedNames(const std::string& category);
  void titles(const ActionString& a, std::string& text);
  void refill(const base::ObjectRef& list, const player::Playlist& group, const std::string& previous,
              catalogue::ProgressShown& shown);

  catalogue::MediaCatalogue& catalogue_;
  catalogue::Progress& progress_;
  plugin::Loggers& loggers_;
  OpenActionDialog& dialog_;
};

}  // namespace automation
