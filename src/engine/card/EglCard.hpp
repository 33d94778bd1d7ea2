#pragma once
#include <EGL/egl.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <string>

#include "engine/card/EglContext.hpp"
#include "engine/card/GraphicsCard.hpp"

namespace engine {

/// A card as the machine's own drivers offer it. What it draws is read back into memory instead of being
/// shared with a window: a window's memory on the card belongs to its desktop, and goes with it in the middle
/// of a film.
class EglCard : public GraphicsCard {
 public:
  /// Throws number 429 where there is none. `any` takes one that draws in software too.
  EglCard(const std::string& library, bool any);
  ~EglCard() override;
  EglCard(const EglCard&) = delete;
  EglCard& operator=(const EglCard&) = delete;
  EglCard(EglCard&&) = delete;
  EglCard& operator=(EglCard&&) = delete;

  [[nodiscard]] std::string name() const override { return context_.renderer(); }
  [[nodiscard]] void* function(const char* name) const override { return context_.function(name); }
  unsigned framebuffer(base::PictureSize size) override;
  void read(base::PictureFrame& frame) override;

 private:
  struct Functions {
    explicit Functions(const EglContext& context);
    decltype(&glGetError) error;
    decltype(&glGetIntegerv) number;
    decltype(&glPixelStorei) store;
    decltype(&glReadPixels) read;
    PFNGLGENFRAMEBUFFERSPROC makeFramebuffers;
    PFNGLBINDFRAMEBUFFERPROC bindFramebuffer;
    PFNGLDELETEFRAMEBUFFERSPROC endFramebuffers;
    PFNGLFRAMEBUFFERRENDERBUFFERPROC attach;
    PFNGLCHECKFRAMEBUFFERSTATUSPROC state;
    PFNGLGENRENDERBUFFERSPROC makeRenderbuffers;
    PFNGLBINDRENDERBUFFERPROC bindRenderbuffer;
    PFNGLDELETERENDERBUFFERSPROC endRenderbuffers;
    PFNGLRENDERBUFFERSTORAGEPROC room;
    PFNGLGETGRAPHICSRESETSTATUSPROC lost = nullptr;  ///< null where nobody tells
  };
  /// Throws where the card has failed, or with `every` for whatever has gone wrong since it was last asked.
  void check(bool every) const;

  EglContext context_;
  Functions gl_;
  GLuint framebuffer_ = 0;
  GLuint pixels_ = 0;
  base::PictureSize size_;
};

}  // namespace engine
