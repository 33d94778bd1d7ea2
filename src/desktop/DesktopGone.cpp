#include "desktop/DesktopGone.hpp"

#include <QtCore/qlogging.h>
#include <unistd.h>
#include <QtCore/QString>

namespace desktop {

struct LastWords::Ear {
  static inline LastWords* owner = nullptr;
  static inline QtMessageHandler former = nullptr;
  static inline bool startLeft = false;

  static void hear(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    // Whatever Qt complains of when the desktop has gone comes of that. The words themselves count too, as
    // this way to the desktop may close a moment after Qt's own.
    if (std::this_thread::get_id() != owner->thread_ && text.startsWith("The Wayland connection")) {
      // A thread of Qt's own that reads what the desktop sends. It would end the process next.
      for (;;) ::pause();
    }
    const bool guarded = owner->awaiting_ > 0 || owner->starting_;
    if (guarded && std::this_thread::get_id() == owner->thread_ &&
        (owner->display_.gone() || text.contains("connection broke"))) {
      if (owner->starting_)
        std::longjmp(owner->outOfStart_, 1);  // NOLINT(cert-err52-cpp): nothing is to be taken apart
      throw DesktopGone();
    }
    former(type, context, text);
  }
};

LastWords::LastWords(const Display& display) : display_(display) {
  Ear::owner = this;
  Ear::former = qInstallMessageHandler(&Ear::hear);
}

bool LastWords::startWasLeft() { return Ear::startLeft; }

bool LastWords::outliveStart(const std::function<void()>& start) {
  if (setjmp(outOfStart_) != 0) {  // NOLINT(cert-err52-cpp)
    starting_ = false;
    Ear::startLeft = true;
    return false;
  }
  starting_ = true;
  start();
  starting_ = false;
  return true;
}

LastWords::~LastWords() {
  qInstallMessageHandler(nullptr);
  Ear::owner = nullptr;
}

}  // namespace desktop
