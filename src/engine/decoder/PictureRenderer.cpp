#include "engine/decoder/PictureRenderer.hpp"

#include <atomic>
#include <utility>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "engine/card/Opening.hpp"

namespace engine {
namespace {

/// How many are kept to be drawn in again: one that is drawn, one on its way, one that is shown.
constexpr std::size_t kKept = 3;

/// How long a card that is being opened is waited for at the end, so that no driver is at work while the
/// process ends. One that hangs is left alone.
constexpr base::Milliseconds kAtTheEnd = std::chrono::seconds(1);

}  // namespace

PictureRenderer::PictureRenderer(base::Loop& loop, const MpvHandle& decoder, Shown shown, ByCard card)
    : decoder_(decoder), shown_(std::move(shown)), card_(std::move(card)), post_(loop) {
  if (card_.open) {
    patience_ = loop.makeTimer(card_.patience, [this] { openedTooLong(); });
    patience_->enabled(true);
    openCard();
    return;
  }
  canvas_.emplace(decoder_, nullptr, &wake, this);
  ready_ = true;
  thread_ = std::thread([this] { work(); });
}

PictureRenderer::~PictureRenderer() {
  if (opening_ && opening_->leave(kAtTheEnd)) {
    thread_.detach();
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    turn_.notify_one();
  }
  if (thread_.joinable()) thread_.join();
}

void PictureRenderer::wake(void* self) {
  auto& renderer = *static_cast<PictureRenderer*>(self);
  const std::lock_guard lock(renderer.mutex_);
  renderer.due_ = true;
  renderer.turn_.notify_one();
}

void PictureRenderer::size(base::PictureSize size) {
  const std::lock_guard lock(mutex_);
  if (size == size_) return;
  size_ = size;
  if (size_.empty()) newest_.reset();
  due_ = true;  // what stands still is drawn anew
  turn_.notify_one();
}

void PictureRenderer::openCard() {
  opening_ = std::make_shared<Opening>();
  thread_ = std::thread([this, opening = opening_, open = card_.open] {
    std::unique_ptr<GraphicsCard> card;
    std::string reason;
    base::Handled([&] { card = open(); },
                  [&](const base::Failure& failure) { reason = failure.description(); });
    if (!opening->come()) return;  // the renderer may be gone; the card closes here, where it was opened
    begin(std::move(card), std::move(reason));
    work();
  });
}

void PictureRenderer::openedTooLong() {
  patience_->enabled(false);
  if (!opening_ || !opening_->leave({})) return;
  opening_.reset();
  thread_.detach();
  thread_ = std::thread([this] {
    begin(nullptr, "the graphics card's driver doesn't answer");
    work();
  });
}

void PictureRenderer::begin(std::unique_ptr<GraphicsCard> card, std::string reason) {
  const bool drawn = card && base::Handled(
                                 [&] {
                                   canvas_.emplace(decoder_, std::move(card), &wake, this);
                                   return true;
                                 },
                                 [&](const base::Failure& failure) {
                                   reason = failure.description();
                                   return false;
                                 });
  if (!drawn) beginInSoftware(reason);
  post_([this, there = canvas_.has_value()] {
    patience_->enabled(false);
    ready_ = there;
    card_.changed();
  });
}

void PictureRenderer::beginInSoftware(const std::string& reason) {
  if (!reason.empty()) tell("Films are drawn in software: " + reason);
  base::Handled([&] { canvas_.emplace(decoder_, nullptr, &wake, this); },
                [&](const base::Failure& failure) { tell(failure.description()); });
}

void PictureRenderer::tell(const std::string& reason) const {
  post_([this, reason] { card_.message(reason); });
}

void PictureRenderer::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    turn_.wait(lock, [this] { return ending_ || (due_ && !size_.empty()); });
    if (ending_) break;
    due_ = false;
    const base::PictureSize size = size_;
    lock.unlock();
    const auto frame = blank(size);
    const bool drawn = draw(*frame);
    lock.lock();
    if (!drawn || size_.empty()) continue;
    newest_ = frame;
    if (!std::exchange(posted_, true)) post_([this] { handOver(); });
  }
  lock.unlock();
  canvas_.reset();  // where it was used, as a card's must be
}

bool PictureRenderer::draw(base::PictureFrame& frame) {
  if (!canvas_) return false;
  return base::Handled(
      [&] {
        canvas_->draw(frame);
        return true;
      },
      [&](const base::Failure& failure) {
        canvas_.reset();
        begin(nullptr, failure.description());
        return false;
      });
}

void PictureRenderer::handOver() {
  base::FrameRef frame;
  {
    const std::lock_guard lock(mutex_);
    posted_ = false;
    frame = std::move(newest_);
  }
  if (frame) shown_(std::move(frame));
}

std::shared_ptr<base::PictureFrame> PictureRenderer::blank(base::PictureSize size) {
  std::erase_if(frames_, [&](const auto& each) { return each->size != size; });
  for (const auto& each : frames_) {
    if (each.use_count() != 1) continue;
    std::atomic_thread_fence(std::memory_order_acquire);  // whoever had it has read it to the end
    return each;
  }
  auto made = std::make_shared<base::PictureFrame>(size);
  if (frames_.size() < kKept) frames_.push_back(made);
  return made;
}

}  // namespace engine
