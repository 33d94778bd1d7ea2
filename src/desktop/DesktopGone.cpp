#include "desktop/DesktopGone.hpp"

#include <QtCore/qlogging.h>
#include <QtCore/QString>

namespace desktop {

struct LastWords::Ear {
  static inline LastWords* owner = nullptr;
  static inline QtMessageHandler former = nullptr;

  static void hear(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    // Whatever Qt complains of when the desktop has gone comes of that. The words themselves count too, as
    // this way to the desktop may close a moment after Qt's own.
    if (owner->awaiting_ > 0 && std::this_thread::get_id() == owner->thread_ &&
        (owner->display_.gone() || text.contains("connection broke")))
      throw DesktopGone();
    former(type, context, text);
  }
};

LastWords::LastWords(const Display& display) : display_(display) {
  Ear::owner = this;
  Ear::former = qInstallMessageHandler(&Ear::hear);
}

LastWords::~LastWords() {
  qInstallMessageHandler(nullptr);
  Ear::owner = nullptr;
}

}  // namespace desktop
