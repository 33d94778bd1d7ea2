#include "desktop/Look.hpp"

#include <QtCore/QEvent>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusVariant>
#include <QtGui/QFont>
#include <QtGui/QPainter>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QProxyStyle>
#include <QtWidgets/QStyleOption>
#include <algorithm>

namespace desktop {

namespace {

struct Colours {
  QRgb background, panel, ink, quiet, line, soft, accent, accentInk;
};

constexpr Colours kLight{0xfff4f6fb, 0xffffffff, 0xff1b2333, 0xff5c6880,
                         0xffdfe4ef, 0xffeef1f8, 0xff2f55e0, 0xffffffff};
constexpr Colours kDark{0xff10141d, 0xff191f2c, 0xffe8ecf5, 0xff9aa6bd,
                        0xff2a3244, 0xff222a3a, 0xff86a3ff, 0xff0e1530};

QPalette PaletteOf(const Colours& colours) {
  QPalette palette;
  palette.setColor(QPalette::Window, colours.background);
  palette.setColor(QPalette::Base, colours.panel);
  palette.setColor(QPalette::AlternateBase, colours.soft);
  palette.setColor(QPalette::Button, colours.panel);
  palette.setColor(QPalette::Midlight, colours.soft);
  palette.setColor(QPalette::Mid, colours.line);
  palette.setColor(QPalette::Highlight, colours.accent);
  palette.setColor(QPalette::HighlightedText, colours.accentInk);
  palette.setColor(QPalette::Link, colours.accent);
  palette.setColor(QPalette::ToolTipBase, colours.panel);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(role, colours.ink);
  palette.setColor(QPalette::PlaceholderText, colours.quiet);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, colours.quiet);
  return palette;
}

/// The style whose boxes to check and handles to pull can't be told from a dark ground, with an outline round
/// them.
class Outlined : public QProxyStyle {
 public:
  Outlined() : QProxyStyle("Fusion") {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_IndicatorCheckBox) outline(*painter, *option, option->rect);
  }
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_Slider && (option->subControls & SC_SliderHandle) != 0)
      outline(*painter, *option,
              subControlRect(CC_Slider, option, SC_SliderHandle, widget).adjusted(1, 1, -1, -1));
  }

 private:
  static void outline(QPainter& painter, const QStyleOption& option, const QRect& round) {
    if ((option.state & State_Enabled) == 0) return;
    constexpr double kCorner = 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(option.palette.color(QPalette::PlaceholderText));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(round).adjusted(0.5, 0.5, -0.5, -0.5), kCorner, kCorner);
    painter.restore();
  }
};

constexpr const char* kStyle = R"(
QPushButton { background: palette(button); color: palette(button-text); border: 1px solid palette(mid);
  border-radius: 7px; padding: 6px 18px; min-width: 58px; }
QPushButton:hover { border-color: palette(highlight); }
QPushButton:focus { border: 2px solid palette(highlight); padding: 5px 17px; }
QPushButton:pressed, QPushButton:disabled { background: palette(alternate-base); }
QPushButton:default { background: palette(highlight); color: palette(highlighted-text);
  border-color: palette(highlight); }
QPushButton:default:focus { border-color: palette(button-text); }
QProgressBar { background: palette(mid); border: 0; border-radius: 5px; min-height: 10px; max-height: 10px; }
QProgressBar::chunk { background: palette(highlight); border-radius: 5px; }
)";

constexpr const char* kSettings = "org.freedesktop.portal.Desktop";
constexpr const char* kSettingsPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettingsInterface = "org.freedesktop.portal.Settings";

}  // namespace

Look::Look(QApplication& application)
    : QObject(&application), application_(application), bus_(QDBusConnection::sessionBus()) {
  constexpr double kSmallestFont = 10.5;
  QFont font = QApplication::font();
  font.setPointSizeF(std::max(font.pointSizeF(), kSmallestFont));
  auto* style = new Outlined;
  style->setParent(&application);
  QApplication::setStyle(style);
  QApplication::setFont(font);
  dress_.setSingleShot(true);
  connect(&dress_, &QTimer::timeout, this, [this] { apply(); });
  apply();
  application_.installEventFilter(this);
  if (!bus_.isConnected()) return;
  again_.setSingleShot(true);
  again_.setInterval(0);
  connect(&again_, &QTimer::timeout, this, [this] { ask(); });
  bus_.connect(kSettings, kSettingsPath, kSettingsInterface, "SettingChanged", &again_, SLOT(start()));
  again_.start();
}

void Look::ask() {
  QDBusMessage question =
      QDBusMessage::createMethodCall(kSettings, kSettingsPath, kSettingsInterface, "Read");
  question << "org.freedesktop.appearance"
           << "color-scheme";
  question.setAutoStartService(false);
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* ended) {
    ended->deleteLater();
    const QDBusPendingReply<QDBusVariant> answer = *ended;
    if (answer.isError()) return;
    // The value lies in a box, and that in the answer's own.
    QVariant value = answer.value().variant();
    if (value.userType() == qMetaTypeId<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    const uint wish = value.toUInt();
    wish_ = wish <= 2 ? static_cast<Wish>(wish) : Wish::kNone;
    apply();
  });
}

void Look::apply() {
  dressing_ = true;
  bool dark = wish_ == Wish::kDark;
  if (wish_ == Wish::kNone) {
    // What its own colours are is seen when ours are taken off.
    QApplication::setPalette(QPalette());
    const QPalette own = QApplication::palette();
    dark = own.color(QPalette::Window).lightness() < own.color(QPalette::WindowText).lightness();
  }
  QApplication::setPalette(PaletteOf(dark ? kDark : kLight));
  if (!dark_ || *dark_ != dark) {
    // Rules keep the colours that they were made with.
    application_.setStyleSheet({});
    application_.setStyleSheet(kStyle);
  }
  dark_ = dark;
  dressing_ = false;
}

bool Look::eventFilter(QObject* watched, QEvent* event) {
  const bool changed = event->type() == QEvent::ThemeChange ||
                       (event->type() == QEvent::ApplicationPaletteChange && watched == &application_);
  // Behind the event, when the desktop's new colours are known.
  if (changed && !dressing_) dress_.start();
  return QObject::eventFilter(watched, event);
}

}  // namespace desktop
