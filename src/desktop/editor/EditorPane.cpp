#include "desktop/editor/EditorPane.hpp"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QApplication>
#include <algorithm>
#include <utility>

#include "desktop/Twips.hpp"

namespace desktop {

using namespace ui::editor;  // NOLINT: the window's controls

namespace {

constexpr std::size_t kFirstButton = static_cast<std::size_t>(Control::kNew_PlayList);

/// The buttons' places leave no room for much beside their words.
constexpr const char* kButtonStyle = "QPushButton, QPushButton:focus { padding: 0; min-width: 0; }";

QString NameOf(const ControlPlace& place) { return QString(place.caption).remove('&'); }

}  // namespace

EditorPane::EditorPane(QtWindows& windows, std::function<void()> closed)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint),
      closed_(std::move(closed)),
      shared_{[&windows](const std::function<void()>& act) { windows.enter(act); }},
      tree_(new TreePane(shared_, drag_, pictures_)),
      box_(new NameBox(shared_)),
      list_(new ListPane(shared_, drag_, pictures_)) {
  setWindowTitle(layout::kCaption);
  setWindowIcon(pictures_.icon(image::kList, ink(), ink()));
  setFixedSize(ToPixels(layout::kWidth), ToPixels(layout::kHeight));
  shared_.settle = [this] { tree_->settle(); };
  tree_->setAccessibleName("Sources");
  box_->setAccessibleName("Playlist");
  box_->setAccessibleDescription("Playlist");  // it is named by what is chosen in it
  list_->setAccessibleName("Playlist");
  place(layout::Of(Control::kTreeView1), tree_);
  place(layout::Of(Control::kPlayListDropBox), box_);
  place(layout::Of(Control::kListView1), list_);
  addButtons();
  auto* wait = new QLabel(layout::Of(Control::kWaitBox).caption);
  wait->setTextFormat(Qt::PlainText);
  wait->setAlignment(Qt::AlignCenter);
  QFont bold = wait->font();
  bold.setBold(true);
  wait->setFont(bold);
  place(layout::Of(Control::kWaitBox), wait);
  wait->hide();
  drag_.panes(*tree_, *list_);
  tree_->setFocus();
  connect(qApp, &QApplication::focusChanged, this,
          [this](const QWidget* from, const QWidget* to) { focusMoved(from, to); });
}

EditorPane::~EditorPane() {
  serve(nullptr, nullptr);
  // They look at what goes before them otherwise.
  delete tree_;
  delete box_;
  delete list_;
}

void EditorPane::place(const ControlPlace& place, QWidget* widget) {
  widget->setParent(this);
  widget->setObjectName(place.name);
  widget->setGeometry(ToPixels(place.left), ToPixels(place.top), ToPixels(place.width),
                      ToPixels(place.height));
  controls_[static_cast<std::size_t>(place.control)] = widget;
}

void EditorPane::addButtons() {
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    const ControlPlace& where = layout::kControls[kFirstButton + i];
    auto* button = new QPushButton(where.caption);
    button->setAccessibleName(NameOf(where));
    button->setStyleSheet(kButtonStyle);  // and not of the window, whose questions would take it on
    place(where, button);
    buttons_[i] = button;
    connect(button, &QPushButton::clicked, this, [this, &where] { clicked(where.control); });
  }
  fitButtons();
}

// One size for all of them, at which the longest words have room.
void EditorPane::fitButtons() {
  constexpr int kFrame = 8;
  constexpr int kSmallest = 8;
  QFont font = this->font();
  font.setPixelSize(QFontInfo(font).pixelSize());
  const auto fits = [&] {
    return std::all_of(buttons_.begin(), buttons_.end(), [&](const QPushButton* button) {
      return QFontMetrics(font).horizontalAdvance(button->accessibleName()) <= button->width() - kFrame;
    });
  };
  while (font.pixelSize() > kSmallest && !fits()) font.setPixelSize(font.pixelSize() - 1);
  for (QPushButton* button : buttons_) button->setFont(font);
}

void EditorPane::clicked(Control button) {
  tree_->settle();
  EditorEvents* events = shared_.events;
  // Behind an edit there may be nothing left for it to do.
  if (events == nullptr || !control(button).isEnabled()) return;
  switch (button) {
    case Control::kNew_PlayList: return events->New_PlayList_Click();
    case Control::kRename_Button: return events->Rename_Button_Click();
    case Control::kDelete_Button: return events->Delete_Button_Click();
    case Control::kMoveUp_Button: return events->MoveUp_Button_Click();
    case Control::kMoveDown_Button: return events->MoveDown_Button_Click();
    default: return events->Close_Button_Click();
  }
}

void EditorPane::serve(EditorEvents* events, EditorModels* models) {
  drag_.end();
  tree_->dropEdit();
  shared_.events = events;
  // What is shown goes before whose it is.
  if (models == nullptr) {
    tree_->serve(nullptr);
    list_->serve(nullptr);
    box_->serve(nullptr);
  }
  shared_.models = models;
  if (models == nullptr) return;
  tree_->serve(&models->TreeView1);
  list_->serve(&models->ListView1);
  box_->serve(&models->PlayListDropBox);
}

void EditorPane::abandon() {
  shared_.events = nullptr;
  shared_.models = nullptr;
  tree_->abandon();
  list_->abandon();
  box_->abandon();
}

void EditorPane::enable(bool value) {
  if (value == isEnabled()) return;
  if (!value) {
    hadFocus_ = focusWidget();
    drag_.end();
  }
  const bool before = std::exchange(shared_.quiet, true);
  setEnabled(value);
  if (value) {
    QWidget* again = hadFocus_ != nullptr && hadFocus_->isEnabled() ? hadFocus_.data() : tree_;
    again->setFocus();
  }
  shared_.quiet = before;
}

void EditorPane::showControl(Control control, bool value) {
  const bool before = std::exchange(shared_.quiet, true);
  this->control(control).setVisible(value);
  shared_.quiet = before;
}

void EditorPane::focusMoved(const QWidget* from, const QWidget* to) {
  if (shared_.quiet || shared_.events == nullptr || from == nullptr || to == nullptr) return;
  // A label's edit is a part of its tree.
  if (from->window() != this || from == to || to->isAncestorOf(from)) return;
  if (to != tree_ && to != list_ && to != box_) return;
  tree_->settle();
  if (to == box_ || shared_.events == nullptr) return;
  const PaneEvents& told = to == tree_ ? kTreeEvents : kListEvents;
  shared_.focused = told.pane;
  (shared_.events->*told.gotFocus)();
}

void EditorPane::focusOn(Control pane) {
  QWidget& widget = control(pane);
  if (focusWidget() == &widget || shared_.events == nullptr) return;
  tree_->settle();
  if (shared_.events == nullptr) return;
  const bool before = std::exchange(shared_.quiet, true);
  widget.setFocus();
  shared_.quiet = before;
  const PaneEvents& told = pane == Control::kTreeView1 ? kTreeEvents : kListEvents;
  shared_.focused = told.pane;
  (shared_.events->*told.gotFocus)();
}

bool EditorPane::event(QEvent* event) {
  // A question has come up: whatever the mouse does from now on is kept from this window.
  if (event->type() == QEvent::WindowBlocked) drag_.lost();
  return QWidget::event(event);
}

void EditorPane::closeEvent(QCloseEvent* event) {
  if (!isEnabled()) return event->ignore();
  drag_.end();
  tree_->settle();
  closed_();
  // Opened again it begins anew.
  shared_.focused.reset();
  hadFocus_ = tree_;
  tree_->setFocus();
  event->accept();
}

void EditorPane::showEvent(QShowEvent* event) {
  drawn_ = false;
  QWidget::showEvent(event);
}

void EditorPane::paintEvent(QPaintEvent* event) {
  QWidget::paintEvent(event);
  drawn_ = true;
}

}  // namespace desktop
