#pragma once
#include <cstdint>
#include <string>

#include "base/DayClock.hpp"
#include "base/Loop.hpp"
#include "base/Platform.hpp"
#include "catalogue/Progress.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/PluginState.hpp"
#include "ui/ProgBarView.hpp"

namespace ui {

/// The progress of long walks of the library. The window comes only when the work lasts more than a second;
/// while it lasts, the process runs at normal priority. All operations run with failures skipped.
class ProgBar : public catalogue::Progress {
 public:
  ProgBar(ProgBarView& view, plugin::HostServices& host, const plugin::PluginState& state,
          base::Platform& platform, base::Loop& loop, const base::DayClock& clock)
      : view_(view), host_(host), state_(state), platform_(platform), loop_(loop), clock_(clock) {}

  void Disp_ProgBar(const std::string& name) override;
  void Update_ProgBar(float fraction) override;
  void Hide_ProgBar(const std::string& name) override;

  /// How many callers are inside a pair of `Disp_ProgBar` and `Hide_ProgBar`.
  [[nodiscard]] std::int32_t ProgressUsers() const { return ProgressUsers_; }
  /// When the present work started, 0 for none.
  [[nodiscard]] float ProgressStart() const { return ProgressStart_; }

 private:
  void startClock();
  void showWhenLate();
  void show();

  ProgBarView& view_;
  plugin::HostServices& host_;
  const plugin::PluginState& state_;
  base::Platform& platform_;
  base::Loop& loop_;
  const base::DayClock& clock_;
  std::int32_t ProgressUsers_ = 0;
  float ProgressStart_ = 0;
};

}  // namespace ui
