#include "ui/popup/PopupForm.hpp"

#include <functional>

#include "base/Attempt.hpp"

namespace ui {

using base::Attempt;
using player::WMPCalls;

namespace {

struct Action {
  const char* item;
  std::function<void(WMPCalls&)> act;
};

const std::vector<Action>& Actions() {
  static const std::vector<Action> kActions = {
      {"ShowCoverArt", [](WMPCalls& calls) { calls.SetShowCoverArt("toggle"); }},
      {"ShowVisualizations", [](WMPCalls& calls) { calls.SetShowVisualizations("toggle"); }},
      {"ShowFullScreenVideo", [](WMPCalls& calls) { calls.SetFullScreenVideo("toggle"); }},
      {"LoopMode", [](WMPCalls& calls) { calls.SetLoopMode("toggle"); }},
      {"ShuffleMode", [](WMPCalls& calls) { calls.SetShuffleMode("toggle"); }},
      {"Eject", [](WMPCalls& calls) { calls.EjectDrive(0); }},
      {"AlwaysOnTop", [](WMPCalls& calls) { calls.SetAlwaysOnTop("toggle"); }},
  };
  return kActions;
}

}  // namespace

PopupForm::PopupForm(const PopupFormParts& parts) : in_(parts) { in_.window.serve(this, &in_.menus); }

PopupForm::~PopupForm() { in_.window.serve(nullptr, nullptr); }

void PopupForm::logged(const std::function<void()>& procedure) {
  base::Handled(procedure, [&](const base::Failure& failure) {
    in_.loggers.LogFormError(failure.number(), failure.description(), "Form_Unload");
  });
}

void PopupForm::Form_Resize() {
  Attempt step;
  step([&] {
    if (in_.window.minimised())
      in_.calls.SetDisplayControls(false);
    else
      in_.controls.LayoutControls();
  });
}

bool PopupForm::Form_QueryUnload(std::int16_t mode) {
  if (mode != kByTheUser) return false;
  logged([&] { in_.window.minimise(); });
  return true;
}

void PopupForm::Form_Unload() {
  logged([&] {
    in_.calls.StopPlayback();
    in_.host.Host.reset();
  });
}

void PopupForm::menuClick(const std::string& item) {
  if (item == "About") {
    Attempt step;
    step([&] {
      in_.platform.messageBox(base::BoxKind::kPlain, "Vantorix Media Player",
                              "Version: " + in_.state.PluginVersion + "\r\n" + plugin::kLegalNotice);
    });
    return;
  }
  for (const Action& each : Actions())
    if (item == each.item) each.act(in_.calls);
}

}  // namespace ui
