#include "engine/decoder/Canvas.hpp"

#include <mpv/render.h>
#include <mpv/render_gl.h>

#include <array>
#include <string>
#include <utility>

#include "base/Failure.hpp"
#include "engine/decoder/MpvHandle.hpp"

namespace engine {
namespace {

/// As GL_RGBA8 is numbered in OpenGL.
constexpr int kEightBitsAColour = 0x8058;

[[noreturn]] void Refused(const std::string& what, const MpvHandle& decoder, int error) {
  throw base::Failure(base::number::kCannotCreate, what + ": " + decoder.textOf(error));
}

}  // namespace

Canvas::Canvas(const MpvHandle& decoder, std::unique_ptr<GraphicsCard> card, void (*wake)(void*),
               void* context)
    : decoder_(decoder), card_(std::move(card)) {
  const MpvLibrary& library = decoder.library();
  std::string kind = card_ ? MPV_RENDER_API_TYPE_OPENGL : MPV_RENDER_API_TYPE_SW;
  mpv_opengl_init_params functions{
      [](void* from, const char* name) { return static_cast<const GraphicsCard*>(from)->function(name); },
      card_.get()};
  std::array<mpv_render_param, 3> parts{{{MPV_RENDER_PARAM_API_TYPE, kind.data()}, {}, {}}};
  if (card_) parts[1] = {MPV_RENDER_PARAM_OPENGL_INIT_PARAMS, &functions};
  const int result = library.makeRenderer(&context_, decoder.get(), parts.data());
  if (result < 0)
    Refused(card_ ? "the decoder doesn't take " + card_->name() : "Moving pictures can't be drawn", decoder,
            result);
  library.onFrame(context_, wake, context);
}

Canvas::~Canvas() {
  decoder_.library().onFrame(context_, nullptr, nullptr);
  decoder_.library().endRenderer(context_);
}

void Canvas::draw(base::PictureFrame& frame) { card_ ? drawByCard(frame) : drawInSoftware(frame); }

void Canvas::drawByCard(base::PictureFrame& frame) {
  mpv_opengl_fbo target{static_cast<int>(card_->framebuffer(frame.size)), frame.size.width, frame.size.height,
                        kEightBitsAColour};
  std::array<mpv_render_param, 2> parts{{{MPV_RENDER_PARAM_OPENGL_FBO, &target}, {}}};
  const int result = decoder_.library().draw(context_, parts.data());
  if (result < 0) Refused("the decoder doesn't draw by " + card_->name(), decoder_, result);
  card_->read(frame);
}

void Canvas::drawInSoftware(base::PictureFrame& frame) {
  std::array<int, 2> size{frame.size.width, frame.size.height};
  std::string format = "bgr0";
  std::array<mpv_render_param, 5> parts{{{MPV_RENDER_PARAM_SW_SIZE, size.data()},
                                         {MPV_RENDER_PARAM_SW_FORMAT, format.data()},
                                         {MPV_RENDER_PARAM_SW_STRIDE, &frame.stride},
                                         {MPV_RENDER_PARAM_SW_POINTER, frame.data()},
                                         {}}};
  decoder_.library().draw(context_, parts.data());
}

}  // namespace engine
