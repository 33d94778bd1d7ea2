#pragma once
#include <memory>
#include <optional>

#include "automation/ActionDialog.hpp"
#include "automation/ActionRun.hpp"
#include "automation/Conditions.hpp"
#include "automation/Devices.hpp"
#include "automation/Triggers.hpp"
#include "automation/VoiceEvents.hpp"
#include "base/DayClock.hpp"
#include "catalogue/MediaCatalogue.hpp"
#include "cover/CoverSearch.hpp"
#include "player/PlayStateTracker.hpp"
#include "player/PlayerEvents.hpp"
#include "plugin/Lifecycle.hpp"
#include "plugin/Vxif.hpp"
#include "plugin/adapters/LibraryAdapter.hpp"
#include "plugin/adapters/PagesAdapter.hpp"
#include "plugin/commands/Dispatch.hpp"
#include "plugin/commands/SpeechInterlock.hpp"
#include "ui/ProgBar.hpp"
#include "ui/editor/PlayListEditor.hpp"
#include "ui/popup/PopupForm.hpp"
#include "ui/popup/WindowlessPopup.hpp"

namespace plugin {

/// What a plug-in is built on.
struct PluginGround {
  base::Loop& loop;
  base::Platform& platform;
  player::PlayerFactory makePlayer;
  Neighbours neighbours;
  player::PopupView* popup = nullptr;       ///< in the place of the plug-in's own popup controls
  ui::PopupWindow* popupWindow = nullptr;   ///< their window; none on a machine without a display
  MediaMenus* menus = nullptr;              ///< in the place of the popup controls' own
  LibraryCalls* library = nullptr;          ///< in the place of the plug-in's own
  ui::ProgBarView* progressView = nullptr;  ///< none on a machine without a display
  WebForms* web = nullptr;                  ///< in the place of the plug-in's own pages
  MediaEvents* mediaEvents = nullptr;       ///< in the place of the plug-in's own
  cover::CoverFiles* coverFiles = nullptr;  ///< without it no cover is looked for
  cover::Services coverServices{};
  ui::editor::EditorWindow* editorWindow = nullptr;  ///< none on a machine without a display
};

/// The one owner of everything that the plug-in shares: its modules are members in the order in which they
/// build on each other. Build as many as you like.
class Plugin {
 public:
  explicit Plugin(const PluginGround& ground);

  [[nodiscard]] std::shared_ptr<Vxif> vxif() const { return vxif_; }

  // The modules, for tests and for the windows that show them.
  PluginState state;
  HostServices host;
  Settings settings;
  Loggers loggers;
  player::StaleMarks stale;
  player::StateQueue queue;
  ui::WindowlessPopup noPopupWindow;
  ui::PopupWindow& popupWindow;
  ui::PopupMenus popupMenus;
  ui::PopupControls popupControls;
  player::PopupView& popup;
  player::WMPCalls calls;
  base::LoopDayClock clock;
  ui::WindowlessProgBar noProgressView;
  ui::ProgBar progBar;
  catalogue::NameXref nameXref;
  player::PlayTarget playTarget;
  catalogue::MediaCatalogue catalogue;
  player::PlayRequests playRequests;
  LibraryAdapter ownLibrary;
  LibraryCalls& library;
  player::MediaStatus mediaStatus;
  player::PlayerEvents playerEvents;
  automation::Triggers triggers;
  player::PlayStateTracker playState;
  player::WMPPlayer form;  // behind all that the control may send an event to while it goes
  automation::Devices devices;
  automation::VoiceEvents voiceEvents;
  MediaEvents& mediaEvents;
  ui::PopupLists popupLists;
  ui::PopupForm popupForm;
  automation::OpenActionDialog openActionDialog;
  automation::ActionDropLists actionDropLists;
  automation::ActionDialog actionDialog;
  automation::ActionRun actionRun;
  automation::Conditions conditions;
  SpeechInterlock speechInterlock;
  std::shared_ptr<pages::WebSetupForm> setupForm;  // shared with the host, which asks it for its page
  pages::WebEditorForm editorForm;
  PagesAdapter ownPages;
  WebForms& web;
  std::optional<ui::editor::PlayListEditor> playListEditor;  ///< where there is a window for it
  Lifecycle lifecycle;
  Dispatch dispatch;

 private:
  std::shared_ptr<Vxif> vxif_;
  std::optional<cover::CoverSearch> coverSearch_;
};

}  // namespace plugin
