#include "desktop/MainContext.hpp"

#include <glib.h>

#include <algorithm>
#include <utility>

namespace desktop {

using base::Milliseconds;

MainContext::MainContext(bus::PollLoop& loop, std::function<void()> run)
    : loop_(loop), run_(std::move(run)), timer_(loop.makeTimer(Milliseconds(1), [this] {
        timer_->enabled(false);
        ask();
      })) {
  loop_.beforeWait([this] { prepare(); });
}

MainContext::~MainContext() { loop_.beforeWait({}); }

// The work runs as posted work, not in the event of a watch: a watch isn't entered within its own event, and
// a dialog that is opened from a window's event needs the same watch while it is open.
void MainContext::ask() {
  if (*asked_ || stopped_) return;
  *asked_ = true;
  loop_.post([this, alive = std::weak_ptr<bool>(asked_)] {
    const auto asked = alive.lock();
    if (!asked) return;
    *asked = false;
    if (!stopped_) run_();
  });
}

void MainContext::stop() {
  stopped_ = true;
  watched_.clear();
  timer_->enabled(false);
  // Whoever was thrown out of the context's work has left the rest of it on the context's list, where those
  // that are still further out would find it. A new beginning clears it.
  GMainContext* context = g_main_context_default();
  if (g_main_context_acquire(context) == FALSE) return;
  g_main_context_prepare(context, nullptr);
  g_main_context_release(context);
}

void MainContext::prepare() {
  if (*asked_ || stopped_) return;
  const Wait wait = query();
  watch(wait.descriptors);
  if (wait.timeout == 0) {
    timer_->enabled(false);
    return ask();
  }
  timer_->interval(Milliseconds(std::max(wait.timeout, 1)));
  timer_->enabled(wait.timeout > 0);
}

MainContext::Wait MainContext::query() {
  Wait wait;
  GMainContext* context = g_main_context_default();
  if (g_main_context_acquire(context) == FALSE) return wait;
  gint priority = 0;
  const bool ready = g_main_context_prepare(context, &priority) != FALSE;
  std::vector<GPollFD> found(8);
  for (;;) {
    const auto room = static_cast<gint>(found.size());
    const gint count = g_main_context_query(context, G_MAXINT, &wait.timeout, found.data(), room);
    found.resize(static_cast<std::size_t>(count));
    if (count <= room) break;
  }
  g_main_context_release(context);
  if (ready) wait.timeout = 0;
  for (const GPollFD& each : found) wait.descriptors.push_back({each.fd, static_cast<short>(each.events), 0});
  return wait;
}

void MainContext::watch(const std::vector<pollfd>& descriptors) {
  const auto same = [](const Watched& a, const pollfd& b) {
    return a.descriptor == b.fd && a.events == b.events;
  };
  if (std::equal(watched_.begin(), watched_.end(), descriptors.begin(), descriptors.end(), same)) return;
  watched_.clear();
  for (const pollfd& each : descriptors)
    watched_.push_back({each.fd, each.events, loop_.watch(each.fd, each.events, [this](short) { ask(); })});
}

}  // namespace desktop
