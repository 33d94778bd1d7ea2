#include "engine/decoder/PictureRenderer.hpp"

#include <mpv/render.h>

#include <array>
#include <atomic>
#include <utility>

#include "base/Failure.hpp"
#include "engine/decoder/MpvHandle.hpp"

namespace engine {
namespace {

/// How many are kept to be drawn in again: one that is drawn, one on its way, one that is shown.
constexpr std::size_t kKept = 3;

}  // namespace

PictureRenderer::PictureRenderer(base::Loop& loop, const MpvHandle& decoder, Shown shown)
    : library_(decoder.library()), shown_(std::move(shown)), post_(loop) {
  std::string kind = MPV_RENDER_API_TYPE_SW;
  std::array<mpv_render_param, 2> parts{{{MPV_RENDER_PARAM_API_TYPE, kind.data()}, {}}};
  const int result = library_.makeRenderer(&context_, decoder.get(), parts.data());
  if (result < 0) {
    throw base::Failure(base::number::kCannotCreate,
                        std::string("Moving pictures can't be drawn: ") + decoder.textOf(result));
  }
  thread_ = std::thread([this] { work(); });
  library_.onFrame(
      context_,
      [](void* context) {
        auto* self = static_cast<PictureRenderer*>(context);
        const std::lock_guard lock(self->mutex_);
        self->due_ = true;
        self->turn_.notify_one();
      },
      this);
}

PictureRenderer::~PictureRenderer() {
  library_.onFrame(context_, nullptr, nullptr);
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    turn_.notify_one();
  }
  thread_.join();
  library_.endRenderer(context_);
}

void PictureRenderer::size(base::PictureSize size) {
  const std::lock_guard lock(mutex_);
  if (size == size_) return;
  size_ = size;
  if (size_.empty()) newest_.reset();
  due_ = true;  // what stands still is drawn anew
  turn_.notify_one();
}

void PictureRenderer::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    turn_.wait(lock, [this] { return ending_ || (due_ && !size_.empty()); });
    if (ending_) return;
    due_ = false;
    const base::PictureSize size = size_;
    lock.unlock();
    const auto frame = blank(size);
    draw(*frame);
    lock.lock();
    if (size_.empty()) continue;
    newest_ = frame;
    if (!std::exchange(posted_, true)) post_([this] { handOver(); });
  }
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

void PictureRenderer::draw(base::PictureFrame& frame) const {
  std::array<int, 2> size{frame.size.width, frame.size.height};
  std::string format = "bgr0";
  std::array<mpv_render_param, 5> parts{{{MPV_RENDER_PARAM_SW_SIZE, size.data()},
                                         {MPV_RENDER_PARAM_SW_FORMAT, format.data()},
                                         {MPV_RENDER_PARAM_SW_STRIDE, &frame.stride},
                                         {MPV_RENDER_PARAM_SW_POINTER, frame.data()},
                                         {}}};
  library_.draw(context_, parts.data());
}

}  // namespace engine
