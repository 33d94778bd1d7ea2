#include "desktop/editor/ListPane.hpp"

#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "desktop/Twips.hpp"
#include "desktop/popup/ShownText.hpp"

namespace desktop {

using ui::editor::ItemRef;

/// Rows as wide as the column.
class ListPane::Rows : public QStyledItemDelegate {
 public:
  explicit Rows(ListPane* pane) : QStyledItemDelegate(pane), pane_(pane) {}
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setWidth(pane_->columnWidth());
    return size;
  }

 private:
  ListPane* pane_;
};

ListPane::ListPane(Shared& shared, Drag& drag, Pictures& pictures)
    : shared_(shared),
      input_(*this, kListEvents, shared, drag),
      model_({shared.enter, [this] { showSelected(); }, [this] { viewport()->update(); },
              [this] { showColumn(); }},
             [this, &pictures](const char* key) {
               return pictures.icon(key, palette().color(QPalette::Text),
                                    palette().color(QPalette::HighlightedText));
             }) {
  setUniformItemSizes(true);
  setIconSize({16, 16});
  setEditTriggers(NoEditTriggers);
  setSelectionMode(SingleSelection);
  setAutoScroll(false);
  setContextMenuPolicy(Qt::NoContextMenu);
  setHorizontalScrollMode(ScrollPerPixel);
  setItemDelegate(new Rows(this));
  setModel(&model_);
  connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
    if (!follows_ && !model_.changes()) choose(current);
  });
}

ListPane::~ListPane() {
  follows_ = true;
  setModel(nullptr);
}

int ListPane::columnWidth() const {
  constexpr float kWidest = 1e6;
  if (shared_.models == nullptr) return 0;
  try {
    return ToPixels(std::min(shared_.models->ListView1.columnWidth(), kWidest));
  } catch (const base::Failure&) {
    return 0;  // it has no column
  }
}

void ListPane::showColumn() {
  setAccessibleName("Playlist " + ShownText(shared_.models->ListView1.columnCaption()));
  scheduleDelayedItemsLayout();
}

void ListPane::showSelected() {
  const ItemRef item = shared_.models != nullptr ? shared_.models->ListView1.selectedItem() : nullptr;
  const QModelIndex index = model_.indexOf(item);
  if (index == currentIndex() && selectionModel()->isSelected(index)) return;
  const bool before = std::exchange(follows_, true);
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
  follows_ = before;
  // What was moved stays in sight; what is pressed must not run away from under the mouse.
  if (item && QGuiApplication::mouseButtons() == Qt::NoButton) bring(item);
}

void ListPane::bring(const ItemRef& item) {
  toBring_ = isVisible() ? nullptr : item;
  if (isVisible() && item) scrollTo(model_.indexOf(item));
}

void ListPane::showEvent(QShowEvent* event) {
  QListView::showEvent(event);
  bring(std::exchange(toBring_, nullptr));
}

// Qt takes the first row for the current one where there is none, which is nobody's choice.
void ListPane::focusInEvent(QFocusEvent* event) {
  const bool before = std::exchange(follows_, true);
  QListView::focusInEvent(event);
  follows_ = before;
  showSelected();
}

void ListPane::mousePressEvent(QMouseEvent* event) {
  event->accept();
  shared_.settle();
  input_.entered();
  const ItemRef item = itemAt(event->pos());
  if (item && shared_.models != nullptr && PaneInput::tells(*event))
    shared_.models->ListView1.selectedItem(item);
  input_.press(*event, event->pos(), item != nullptr, [&] { shared_.events->ListView1_ItemClick(item); });
}

void ListPane::choose(const QModelIndex& chosen) {
  const ItemRef item = model_.itemOf(chosen);
  if (!item) return;
  shared_.settle();
  if (shared_.models == nullptr || !item->held() || item == shared_.models->ListView1.selectedItem()) return;
  shared_.models->ListView1.selectedItem(item);
  const QModelIndex index = model_.indexOf(item);
  scrollTo(index);
  const QRect seen = visualRect(index) & viewport()->rect();
  input_.chosen(seen.center(), [&] { shared_.events->ListView1_ItemClick(item); });
}

void ListPane::keyPressEvent(QKeyEvent* event) {
  if (input_.keyDown(*event)) return;
  const int rows = model_.rowCount({});
  const int page = std::max(1, viewport()->height() / std::max(1, sizeHintForRow(0)) - 1);
  const auto go = [&](int row) {
    if (rows > 0) setCurrentIndex(model_.index(std::clamp(row, 0, rows - 1)));
  };
  const int now = currentIndex().row();  // -1 for none
  switch (event->key()) {
    case Qt::Key_Up: return go(now - 1);
    case Qt::Key_Down: return go(now + 1);
    case Qt::Key_Home: return go(0);
    case Qt::Key_End: return go(rows - 1);
    case Qt::Key_PageUp: return go(now - page);
    case Qt::Key_PageDown: return go(now + page);
    default: break;
  }
  if (PaneInput::searches(*event))
    keyboardSearch(event->text());
  else
    event->ignore();
}

// What is dropped on an item comes before it.
void ListPane::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  const ItemRef marked = shared_.models != nullptr ? shared_.models->ListView1.dropHighlight() : nullptr;
  const QModelIndex index = model_.indexOf(marked);
  if (!index.isValid()) return;
  constexpr int kLine = 3;
  constexpr double kTint = 0.25;
  QPainter painter(viewport());
  QColor colour = palette().color(QPalette::Highlight);
  QRect row = visualRect(index);
  row.setRight(std::max(row.right(), viewport()->width()));
  painter.fillRect(row.left(), row.top(), row.width(), kLine, colour);
  colour.setAlphaF(kTint);
  painter.fillRect(row, colour);
}

}  // namespace desktop
