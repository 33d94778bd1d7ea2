#include "desktop/popup/NameList.hpp"

#include <QtCore/QAbstractListModel>
#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/popup/ShownText.hpp"

namespace desktop {

/// The names in which the text that is looked for stands, those that begin with it first. All entries while
/// nothing is looked for.
class NameList::Entries : public QAbstractListModel {
 public:
  Entries(QObject* parent, const QListView& view) : QAbstractListModel(parent), view_(view) {}

  void fill(std::vector<NameEntry> entries) {
    all_ = std::move(entries);
    find(QString());
  }
  void find(const QString& text) {
    beginResetModel();
    found_.clear();
    std::vector<std::size_t> within;
    for (std::size_t i = 0; i < all_.size(); ++i) {
      const NameEntry& entry = all_[i];
      if (text.isEmpty() || (entry.name && entry.text.startsWith(text, Qt::CaseInsensitive)))
        found_.push_back(i);
      else if (entry.name && entry.text.contains(text, Qt::CaseInsensitive))
        within.push_back(i);
    }
    found_.insert(found_.end(), within.begin(), within.end());
    endResetModel();
  }
  [[nodiscard]] const NameEntry& at(int row) const { return all_[found_[static_cast<std::size_t>(row)]]; }
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(found_.size());
  }
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid()) return {};
    const QString& text = at(index.row()).text;
    // Only what the list has no room for is told by a tip.
    if (role == Qt::ToolTipRole)
      return view_.sizeHintForIndex(index).width() > view_.viewport()->width() ? TipOf(text) : QVariant();
    return role == Qt::DisplayRole || role == Qt::AccessibleTextRole ? text : QVariant();
  }

 private:
  const QListView& view_;
  std::vector<NameEntry> all_;
  std::vector<std::size_t> found_;
};

NameList::NameList(std::function<void(const NameEntry&)> chosen)
    : QFrame(nullptr, Qt::Popup),
      chosen_(std::move(chosen)),
      view_(new QListView),
      entries_(new Entries(this, *view_)),
      heading_(new QLabel),
      edit_(new QLineEdit) {
  constexpr int kMargin = 6;
  setFrameShape(QFrame::StyledPanel);
  QFont bold = heading_->font();
  bold.setBold(true);
  heading_->setFont(bold);
  heading_->setTextFormat(Qt::PlainText);
  heading_->setObjectName("Heading");
  heading_->setMinimumWidth(1);
  edit_->setPlaceholderText("Find");
  edit_->setAccessibleName("Find");
  edit_->setClearButtonEnabled(true);
  view_->setModel(entries_);
  view_->setUniformItemSizes(true);
  view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  view_->setTextElideMode(Qt::ElideRight);
  view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view_->setFrameShape(QFrame::NoFrame);
  view_->setFocusPolicy(Qt::NoFocus);  // the keys are the text's, but for those that move in the list
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  rows->setSpacing(kMargin);
  rows->addWidget(heading_);
  rows->addWidget(edit_);
  rows->addWidget(view_, 1);
  edit_->installEventFilter(this);
  connect(edit_, &QLineEdit::textChanged, this, [this](const QString& text) { find(text); });
  connect(view_, &QListView::clicked, this, [this](const QModelIndex& index) { choose(index.row()); });
}

void NameList::find(const QString& text) {
  entries_->find(text);
  view_->setCurrentIndex(entries_->index(0));
}

void NameList::choose(int row) {
  if (row < 0 || row >= entries_->rowCount()) return;
  const NameEntry entry = entries_->at(row);
  close();
  chosen_(entry);
}

bool NameList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return QFrame::eventFilter(watched, event);
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: choose(view_->currentIndex().row()); return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: QApplication::sendEvent(view_, event); return true;
    default: return QFrame::eventFilter(watched, event);
  }
}

// No more than a long menu takes, and no less than one row.
int NameList::heightFor(int rows) const {
  constexpr int kMost = 380;
  const int aroundRows = sizeHint().height() - view_->sizeHint().height() + 2 * view_->frameWidth();
  return std::min(kMost, aroundRows + std::clamp(rows, 1, kMost) * view_->sizeHintForRow(0));
}

void NameList::open(QPoint at, const QString& heading, const QString& name, std::vector<NameEntry> entries) {
  constexpr int kWidth = 320;
  edit_->clear();
  entries_->fill(std::move(entries));
  view_->setCurrentIndex(entries_->index(0));
  view_->scrollToTop();
  view_->setAccessibleName(name);
  setAccessibleName(name);
  heading_->setVisible(!heading.isEmpty());
  heading_->setText(heading_->fontMetrics().elidedText(heading, Qt::ElideRight, kWidth - 20));
  heading_->setAccessibleName(heading);
  const QScreen* on = QGuiApplication::screenAt(at);
  if (on == nullptr) on = QGuiApplication::primaryScreen();
  if (on == nullptr) return;  // all screens have gone: there is nobody to choose
  const QRect screen = on->availableGeometry();
  const QSize size(std::min(kWidth, screen.width()),
                   std::min(heightFor(entries_->rowCount()), screen.height()));
  resize(size);
  move(std::clamp(at.x(), screen.left(), screen.right() + 1 - size.width()),
       std::clamp(at.y(), screen.top(), screen.bottom() + 1 - size.height()));
  show();
  edit_->setFocus();
}

}  // namespace desktop
