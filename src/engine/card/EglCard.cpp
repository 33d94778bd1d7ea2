#include "engine/card/EglCard.hpp"

#include <algorithm>
#include <array>

#include "base/Failure.hpp"

namespace engine {
namespace {

[[noreturn]] void Fail(const std::string& reason) {
  throw base::Failure(base::number::kCannotCreate, reason);
}

template <class Function>
void Find(const EglContext& context, const char* name, Function& function) {
  function = reinterpret_cast<Function>(context.function(name));
  if (function == nullptr) Fail(context.renderer() + " has no " + name);
}

}  // namespace

EglCard::Functions::Functions(const EglContext& context) {
  Find(context, "glGetError", error);
  Find(context, "glGetIntegerv", number);
  Find(context, "glPixelStorei", store);
  Find(context, "glReadPixels", read);
  Find(context, "glGenFramebuffers", makeFramebuffers);
  Find(context, "glBindFramebuffer", bindFramebuffer);
  Find(context, "glDeleteFramebuffers", endFramebuffers);
  Find(context, "glFramebufferRenderbuffer", attach);
  Find(context, "glCheckFramebufferStatus", state);
  Find(context, "glGenRenderbuffers", makeRenderbuffers);
  Find(context, "glBindRenderbuffer", bindRenderbuffer);
  Find(context, "glDeleteRenderbuffers", endRenderbuffers);
  Find(context, "glRenderbufferStorage", room);
  if (context.tellsLoss()) Find(context, "glGetGraphicsResetStatus", lost);
}

EglCard::EglCard(const std::string& library, bool any) : context_(library, any), gl_(context_) {
  gl_.makeFramebuffers(1, &framebuffer_);
  gl_.makeRenderbuffers(1, &pixels_);
}

EglCard::~EglCard() {
  gl_.endFramebuffers(1, &framebuffer_);
  gl_.endRenderbuffers(1, &pixels_);
}

unsigned EglCard::framebuffer(base::PictureSize size) {
  if (size == size_) return framebuffer_;
  GLint most = 0;
  gl_.number(GL_MAX_RENDERBUFFER_SIZE, &most);
  std::array<GLint, 2> view{};
  gl_.number(GL_MAX_VIEWPORT_DIMS, view.data());
  if (size.width > std::min(most, view[0]) || size.height > std::min(most, view[1]))
    Fail(name() + " draws no picture of " + std::to_string(size.width) + "x" + std::to_string(size.height));
  check(false);
  gl_.bindRenderbuffer(GL_RENDERBUFFER, pixels_);
  gl_.room(GL_RENDERBUFFER, GL_RGBA8, size.width, size.height);
  gl_.bindRenderbuffer(GL_RENDERBUFFER, 0);
  gl_.bindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  gl_.attach(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, pixels_);
  const bool complete = gl_.state(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  gl_.bindFramebuffer(GL_FRAMEBUFFER, 0);
  check(true);
  if (!complete) Fail(name() + " doesn't draw into memory");
  size_ = size;
  return framebuffer_;
}

void EglCard::read(base::PictureFrame& frame) {
  check(false);
  gl_.bindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  gl_.store(GL_PACK_ALIGNMENT, 4);
  gl_.store(GL_PACK_ROW_LENGTH, static_cast<GLint>(frame.stride / 4));
  gl_.read(0, 0, frame.size.width, frame.size.height, GL_BGRA, GL_UNSIGNED_BYTE, frame.data());
  gl_.store(GL_PACK_ROW_LENGTH, 0);  // the decoder counts on what holds at first
  gl_.bindFramebuffer(GL_FRAMEBUFFER, 0);
  check(true);
}

void EglCard::check(bool every) const {
  if (gl_.lost != nullptr && gl_.lost() != GL_NO_ERROR) Fail(name() + " has been reset");
  // Each kind is told once; a card that is lost may tell the same for ever.
  for (int i = 0; i < 16; ++i) {
    const GLenum error = gl_.error();
    if (error == GL_NO_ERROR) return;
    if (error == GL_OUT_OF_MEMORY) Fail(name() + " has no memory left");
    if (error == GL_CONTEXT_LOST) Fail(name() + " is lost");
    if (every) Fail(name() + " fails with " + std::to_string(error));
  }
}

}  // namespace engine
