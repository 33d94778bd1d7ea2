#include "plugin/Plugin.hpp"

namespace plugin {

// Roads lead back up: the queue's worker is the tracker, the control's events are the player events, and of
// these a station's title goes to the tracker. They are only travelled once everything stands.
Plugin::Plugin(const PluginGround& ground)
    : host(ground.loop),
      settings(host),
      loggers(host, state, ground.platform),
      queue(ground.loop, host, loggers,
            [this](std::int32_t s) {
              playState.MyPlayStateChange(s);
              popup.transportChanged();
            }),
      popupWindow(ground.popupWindow != nullptr ? *ground.popupWindow : noPopupWindow),
      popupControls({popupWindow, popupMenus, form, calls, host, settings, loggers, state, ground.loop}),
      popup(ground.popup != nullptr ? *ground.popup : popupControls),
      calls(form, queue, host, settings, state, popup, ground.loop),
      clock(ground.loop),
      progBar(ground.progressView != nullptr ? *ground.progressView : noProgressView, host, state,
              ground.platform, ground.loop, clock),
      nameXref(host, loggers, progBar),
      catalogue({form, host, loggers, state, stale, playTarget, nameXref, progBar, clock}),
      playRequests(form, catalogue, playTarget, host, settings),
      ownLibrary(playRequests, catalogue, nameXref),
      library(ground.library != nullptr ? *ground.library : ownLibrary),
      mediaStatus(form, calls, host, state, ground.platform, popup),
      playerEvents(form, calls, queue, stale, host, settings, loggers, state, popup),
      triggers(host, loggers),
      playState(ground.loop, form, mediaStatus, triggers, host, loggers, state),
      form(ground.makePlayer, playerEvents),
      devices(host, settings, loggers, state, ground.platform),
      voiceEvents({devices, catalogue, progBar, stale, ground.menus != nullptr ? *ground.menus : popupMenus,
                   host, loggers, state}),
      mediaEvents(ground.mediaEvents != nullptr ? *ground.mediaEvents : voiceEvents),
      popupLists({popupWindow, popupMenus, catalogue, progBar, calls, library, mediaEvents, host}),
      popupForm({popupWindow, popupMenus, popupControls, popupLists, calls, playerEvents, host, loggers,
                 state, ground.platform}),
      actionDropLists(catalogue, progBar, loggers, openActionDialog),
      actionDialog({actionDropLists, openActionDialog, nameXref, progBar, host, loggers, state}),
      actionRun(calls, library, host, state, ground.loop),
      conditions(form, calls, state),
      speechInterlock(form, calls, host, state),
      setupForm(std::make_shared<pages::WebSetupForm>(
          pages::SetupParts{host, settings, state, calls, ground.neighbours.desktop})),
      editorForm({catalogue, nameXref, form, stale, host, loggers, *setupForm}),
      ownPages(*setupForm, editorForm),
      web(ground.web != nullptr ? *ground.web : ownPages),
      lifecycle({host, settings, loggers, state, ground.platform, ground.loop, form, calls, popup, queue,
                 playerEvents, stale, triggers, devices, library, web, mediaEvents, ground.neighbours}),
      dispatch(
          calls, host, state, library, mediaEvents,
          [this, &desktop = ground.neighbours.desktop] {
            playListEditor ? playListEditor->show() : desktop.showPlayListEditor();
          },
          [this] { Vxif::ConfigIO(host); }),
      vxif_(std::make_shared<Vxif>(lifecycle, dispatch, host, state, ground.platform, web,
                                   EventParts{actionDialog, actionDropLists, openActionDialog, actionRun,
                                              conditions, speechInterlock, state})) {
  if (ground.editorWindow != nullptr)
    playListEditor.emplace(ui::editor::EditorParts{*ground.editorWindow, catalogue, nameXref, form, stale,
                                                   host, settings, state});
  playerEvents.streamTitleChange = [this] { playState.StreamTitleChange(); };
  if (ground.coverFiles == nullptr) return;
  coverSearch_.emplace(cover::SearchParts{form, popup, host, loggers, state, *ground.coverFiles},
                       ground.coverServices);
  playState.GetCoverImage = [this] { coverSearch_->GetCoverImage(); };
}

}  // namespace plugin
