#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ui/editor/Entry.hpp"
#include "ui/editor/KeyIndex.hpp"

namespace ui::editor {

/// An item of a keyed list.
class ListItem : public Entry, public std::enable_shared_from_this<ListItem> {
 public:
  using Entry::Entry;
  [[nodiscard]] std::shared_ptr<ListItem> self() { return shared_from_this(); }

 private:
  friend class KeyedList;
  mutable std::size_t row_ = 0;
};
using ItemRef = std::shared_ptr<ListItem>;

/// Who shows a list; as `TreeWatch`.
class ListWatch {
 public:
  ListWatch() = default;
  ListWatch(const ListWatch&) = delete;
  ListWatch& operator=(const ListWatch&) = delete;
  ListWatch(ListWatch&&) = delete;
  ListWatch& operator=(ListWatch&&) = delete;
  virtual ~ListWatch() = default;

  virtual void rowsInserting(std::size_t first, std::size_t last) = 0;
  virtual void rowsInserted() = 0;
  virtual void rowsRemoving(std::size_t first, std::size_t last) = 0;
  virtual void rowsRemoved() = 0;
  virtual void resetting() = 0;
  virtual void reset() = 0;
  /// Its text is another.
  virtual void changed(const ListItem& item) = 0;
  /// The column's caption or width is another.
  virtual void columnChanged() = 0;
  virtual void selectionChanged() = 0;
  virtual void dropHighlightChanged() = 0;
};

/// A list of one column whose items are found by their keys, in constant time, or by their positions from 1.
/// Other changes than at the end take time proportional to the items behind.
class KeyedList {
 public:
  /// While one lives, items that are added at the end are not shown; at its end they are, at one go.
  class Filling {
   public:
    explicit Filling(KeyedList& list) : list_(list) { ++list_.fillings_; }
    ~Filling();
    Filling(const Filling&) = delete;
    Filling& operator=(const Filling&) = delete;
    Filling(Filling&&) = delete;
    Filling& operator=(Filling&&) = delete;

   private:
    KeyedList& list_;
  };

  KeyedList() = default;
  ~KeyedList() = default;
  KeyedList(const KeyedList&) = delete;
  KeyedList& operator=(const KeyedList&) = delete;
  KeyedList(KeyedList&&) = delete;
  KeyedList& operator=(KeyedList&&) = delete;

  /// One at a time, or null.
  void watch(ListWatch* watch) { watch_ = watch; }

  /// The one column. `width` is in twips. Throw 9 while there is none.
  void clearColumns();
  void addColumn(const std::string& caption, float width);
  [[nodiscard]] const std::string& columnCaption() const;
  [[nodiscard]] float columnWidth() const;
  void columnWidth(float twips);
  bool HideColumnHeaders = false;

  void clear();
  /// Adds an item at a position from 1 to `count` + 1; what stands there moves down. Throws 35602 for a key
  /// that is present, 9 for another position.
  ItemRef add(std::size_t position, const std::string& key, const std::string& text, const char* image);
  /// Throws 9 for a position without an item.
  void remove(std::size_t position);
  /// Throws 35601 for a key that is absent.
  [[nodiscard]] ItemRef find(const std::string& key) const;
  /// Throws 9 for a position without an item.
  [[nodiscard]] ItemRef item(std::size_t position) const;
  [[nodiscard]] std::size_t count() const { return items_.size(); }
  /// The position from 1. Throws 35601 for an item that is not there any more.
  [[nodiscard]] std::size_t indexOf(const ListItem& item) const;

  /// Throws 35602 for a key that another item has.
  void key(const ItemRef& item, const std::string& value);
  void text(const ItemRef& item, const std::string& value);

  // What a view asks.
  [[nodiscard]] std::size_t rowCount() const { return shown_; }

  /// May be null. An item that is removed is selected and highlighted no more.
  [[nodiscard]] ItemRef selectedItem() const { return selected_; }
  void selectedItem(const ItemRef& item);
  [[nodiscard]] ItemRef dropHighlight() const { return highlighted_; }
  void dropHighlight(const ItemRef& item);

 private:
  void showAll();

  struct Column {
    std::string caption;
    float width = 0;
  };
  std::vector<Column> columns_;
  std::vector<ItemRef> items_;
  std::size_t shown_ = 0;
  mutable std::size_t numbered_ = 0;  // so many items know their row
  KeyIndex<ListItem> keys_;
  int fillings_ = 0;
  ItemRef selected_;
  ItemRef highlighted_;
  ListWatch* watch_ = nullptr;
};

}  // namespace ui::editor
