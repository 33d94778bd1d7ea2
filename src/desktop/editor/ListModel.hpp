#pragma once
#include <QtCore/QAbstractListModel>

#include <functional>

#include "desktop/editor/EntryData.hpp"
#include "ui/editor/KeyedList.hpp"

namespace desktop {

/// Shows a keyed list to a view, without a copy of its own.
class ListModel : public QAbstractListModel, public ui::editor::ListWatch {
 public:
  /// What the view has to show beside the rows.
  struct View {
    /// Runs something, or does not when the desktop has gone.
    std::function<void(const std::function<void()>& act)> enter;
    std::function<void()> selected;
    std::function<void()> highlighted;
    std::function<void()> column;
  };
  ListModel(View view, IconOf icon) : view_(std::move(view)), icon_(std::move(icon)) {}
  ~ListModel() override { abandon(); }
  ListModel(const ListModel&) = delete;
  ListModel& operator=(const ListModel&) = delete;
  ListModel(ListModel&&) = delete;
  ListModel& operator=(ListModel&&) = delete;

  /// The list to show; may be null.
  void serve(ui::editor::KeyedList* list);
  /// Looks at the list no more, and tells the view nothing about it.
  void abandon();
  /// While it changes, what the view takes for the current item is nobody's choice.
  [[nodiscard]] bool changes() const { return changes_; }
  /// Null for an invalid index.
  [[nodiscard]] ui::editor::ItemRef itemOf(const QModelIndex& index) const;
  /// Invalid for an item that is not shown.
  [[nodiscard]] QModelIndex indexOf(const ui::editor::ItemRef& item) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

  void rowsInserting(std::size_t first, std::size_t last) override;
  void rowsInserted() override;
  void rowsRemoving(std::size_t first, std::size_t last) override;
  void rowsRemoved() override;
  void resetting() override;
  void reset() override;
  void changed(const ui::editor::ListItem& item) override;
  void columnChanged() override { view_.enter(view_.column); }
  void selectionChanged() override;
  void dropHighlightChanged() override { view_.enter(view_.highlighted); }

 private:
  void settled();

  View view_;
  IconOf icon_;
  ui::editor::KeyedList* list_ = nullptr;
  bool changes_ = false;
};

}  // namespace desktop
