#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ui/editor/Entry.hpp"
#include "ui/editor/KeyIndex.hpp"

namespace ui::editor {

class TreeNode;
using NodeRef = std::shared_ptr<TreeNode>;

/// A node of a keyed tree. Its parent is known also when it has been removed, as long as the parent is there.
class TreeNode : public Entry, public std::enable_shared_from_this<TreeNode> {
 public:
  using Entry::Entry;

  /// Null for a root.
  [[nodiscard]] NodeRef parent() const { return parent_.lock(); }
  /// The texts of all nodes from the root down, joined by a backslash; for a root its text.
  [[nodiscard]] std::string fullPath() const;
  [[nodiscard]] bool expanded() const { return expanded_; }
  [[nodiscard]] bool bold() const { return bold_; }
  /// Keeps its children in alphabetical order.
  [[nodiscard]] bool sorted() const { return sorted_; }
  [[nodiscard]] NodeRef self() { return shared_from_this(); }

 private:
  friend class KeyedTree;

  std::weak_ptr<TreeNode> parent_;
  std::vector<NodeRef> children_;     // as they are shown
  std::vector<NodeRef> coming_;       // added in a `KeyedTree::Filling`, and not shown so far
  mutable std::size_t numbered_ = 0;  // so many children know their row
  mutable std::size_t row_ = 0;
  bool shown_ = false;
  bool expanded_ = false;
  bool bold_ = false;
  bool sorted_ = false;
};

/// Who shows a tree. The calls in pairs come before and after a change; between them the tree is not to be
/// looked at. Rows count from 0; the parent of a root is null.
class TreeWatch {
 public:
  TreeWatch() = default;
  TreeWatch(const TreeWatch&) = delete;
  TreeWatch& operator=(const TreeWatch&) = delete;
  TreeWatch(TreeWatch&&) = delete;
  TreeWatch& operator=(TreeWatch&&) = delete;
  virtual ~TreeWatch() = default;

  virtual void rowsInserting(const TreeNode* parent, std::size_t first, std::size_t last) = 0;
  virtual void rowsInserted() = 0;
  virtual void rowsRemoving(const TreeNode* parent, std::size_t first, std::size_t last) = 0;
  virtual void rowsRemoved() = 0;
  /// `to` is the row behind the move.
  virtual void rowMoving(const TreeNode* parent, std::size_t from, std::size_t to) = 0;
  virtual void rowMoved() = 0;
  virtual void resetting() = 0;
  virtual void reset() = 0;
  /// Its text, image or boldness is another.
  virtual void changed(const TreeNode& node) = 0;
  virtual void expandedChanged(const TreeNode& node) = 0;
  /// `selectedItem` is another.
  virtual void selectionChanged() = 0;
  virtual void dropHighlightChanged() = 0;
};

/// A tree whose nodes are found by their keys. Looking up takes constant time, and so does an add within a
/// `Filling`; other changes take time proportional to the node's siblings.
class KeyedTree {
 public:
  /// While one lives, nodes that are added are not shown; at its end they are, all those of a parent at one
  /// go. They may be nested.
  class Filling {
   public:
    explicit Filling(KeyedTree& tree) : tree_(tree) { ++tree_.fillings_; }
    ~Filling();
    Filling(const Filling&) = delete;
    Filling& operator=(const Filling&) = delete;
    Filling(Filling&&) = delete;
    Filling& operator=(Filling&&) = delete;

   private:
    KeyedTree& tree_;
  };

  KeyedTree() = default;
  ~KeyedTree() = default;
  KeyedTree(const KeyedTree&) = delete;
  KeyedTree& operator=(const KeyedTree&) = delete;
  KeyedTree(KeyedTree&&) = delete;
  KeyedTree& operator=(KeyedTree&&) = delete;

  /// One at a time, or null.
  void watch(TreeWatch* watch) { watch_ = watch; }

  void clear();
  /// Adds a root. Throws 35602 for a key that is present.
  NodeRef add(const std::string& key, const std::string& text, const char* image);
  /// Adds the last child of a node, or one in its sorted place. Throws 35601 for a parent that is not there,
  /// 35602 for a key that is present.
  NodeRef add(const std::string& parent, const std::string& key, const std::string& text, const char* image);
  /// With all below it. Throws 35601 for a node that is not there.
  void remove(const NodeRef& node);
  void removeChildren(const NodeRef& node);
  /// Throws 35601 for a key that is absent.
  [[nodiscard]] NodeRef find(const std::string& key) const;
  /// All nodes.
  [[nodiscard]] std::size_t size() const { return size_; }

  // What a node is. None of them throws but `key`: 35602 for one that another node has.
  void key(const NodeRef& node, const std::string& value);
  /// Among sorted siblings the node takes its place anew.
  void text(const NodeRef& node, const std::string& value);
  void image(const NodeRef& node, const char* value);
  void bold(const NodeRef& node, bool value);
  void sorted(const NodeRef& node, bool value);
  void expanded(const NodeRef& node, bool value);

  /// How many children a node has, shown or not.
  [[nodiscard]] static std::size_t childCount(const NodeRef& node) {
    return node->children_.size() + node->coming_.size();
  }
  /// A node's children as they are now, shown or not.
  [[nodiscard]] static std::vector<NodeRef> children(const NodeRef& node);

  // What a view asks. `parent` is null for the roots.
  [[nodiscard]] std::size_t rowCount(const TreeNode* parent) const { return shownOf(parent).size(); }
  /// Throws 9 outside of the rows.
  [[nodiscard]] NodeRef nodeAt(const TreeNode* parent, std::size_t row) const;
  [[nodiscard]] std::size_t rowOf(const TreeNode& node) const;

  /// May be null. When the selected node is removed, the next of its siblings is selected, or else the one
  /// before it, or else its parent.
  [[nodiscard]] NodeRef selectedItem() const { return selected_; }
  void selectedItem(const NodeRef& node);
  [[nodiscard]] NodeRef dropHighlight() const { return highlighted_; }
  void dropHighlight(const NodeRef& node);

 private:
  [[nodiscard]] const std::vector<NodeRef>& shownOf(const TreeNode* parent) const {
    return parent != nullptr ? parent->children_ : top_.children_;
  }
  [[nodiscard]] const TreeNode* shownAs(const TreeNode& owner) const {
    return &owner == &top_ ? nullptr : &owner;
  }
  TreeNode& ownerOf(const TreeNode& node);
  NodeRef put(const NodeRef& parent, const NodeRef& node);
  void show(TreeNode& owner);
  void showOne(TreeNode& owner);
  void showAll(TreeNode& owner);
  void takeOut(TreeNode& owner, std::size_t first, std::size_t count);
  void forget(TreeNode& node);
  void place(const NodeRef& node);
  void tellChanged(const TreeNode& node);
  [[nodiscard]] NodeRef heirOf(const NodeRef& node);

  TreeNode top_{"", "", ""};     // holds the roots
  std::vector<NodeRef> filled_;  // whose children are to be shown; null for the roots
  KeyIndex<TreeNode> keys_;
  int fillings_ = 0;
  std::size_t size_ = 0;
  NodeRef selected_;
  NodeRef highlighted_;
  TreeWatch* watch_ = nullptr;
};

}  // namespace ui::editor
