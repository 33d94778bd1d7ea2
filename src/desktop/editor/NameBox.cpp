#include "desktop/editor/NameBox.hpp"

#include <utility>

#include "desktop/popup/ShownText.hpp"

namespace desktop {

class NameBox::Names : public QAbstractListModel {
 public:
  using QAbstractListModel::QAbstractListModel;

  void show(const ui::editor::DropBox* box) {
    beginResetModel();
    box_ = box;
    rows_ = box != nullptr ? static_cast<int>(box->count()) : 0;
    endResetModel();
  }
  [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : rows_;
  }
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
    // There may be fewer by now.
    const auto row = static_cast<std::size_t>(index.row());
    if (box_ == nullptr || !index.isValid() || row >= box_->count()) return {};
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
    return ShownText(box_->entry(row));
  }

 private:
  const ui::editor::DropBox* box_ = nullptr;
  int rows_ = 0;
};

NameBox::NameBox(Shared& shared) : shared_(shared), names_(new Names(this)) {
  // It has its fixed place; to look at all names for their lengths would take long.
  setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
  setModel(names_);
  refresh_.setSingleShot(true);
  connect(&refresh_, &QTimer::timeout, this, [this] { refresh(); });
  connect(this, &QComboBox::activated, this, [this](int row) {
    shared_.settle();
    if (box_ == nullptr || refresh_.isActive() || row < 0 || static_cast<std::size_t>(row) >= box_->count())
      return;
    box_->listIndex(row);
  });
}

NameBox::~NameBox() { abandon(); }

void NameBox::abandon() {
  if (box_ != nullptr) box_->changed = [] {};
  box_ = nullptr;
}

void NameBox::serve(ui::editor::DropBox* names) {
  abandon();
  box_ = names;
  if (box_ != nullptr) box_->changed = [this] { stale(); };
  refresh();
}

void NameBox::stale() {
  if (refresh_.isActive()) return;
  shared_.enter([this] { refresh_.start(); });
}

void NameBox::refresh() {
  refresh_.stop();
  names_->show(box_);
  setCurrentIndex(box_ != nullptr ? box_->listIndex() : -1);
}

void NameBox::showPopup() {
  if (refresh_.isActive()) refresh();
  QComboBox::showPopup();
}

}  // namespace desktop
