#include "ui/editor/KeyedTree.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace ui::editor {

namespace {

/// A text as it stands in alphabetical order: without regard to case, and equal ones by their characters.
struct Place {
  explicit Place(const NodeRef& placed)
      : folded(base::LowerCase(placed->text())), text(&placed->text()), node(placed) {}
  std::string folded;
  const std::string* text;
  NodeRef node;

  bool operator<(const Place& other) const {
    return folded != other.folded ? folded < other.folded : *text < *other.text;
  }
};

std::vector<NodeRef> InOrder(const std::vector<NodeRef>& nodes) {
  std::vector<Place> places(nodes.begin(), nodes.end());
  std::stable_sort(places.begin(), places.end());
  std::vector<NodeRef> sorted;
  sorted.reserve(places.size());
  for (Place& each : places) sorted.push_back(std::move(each.node));
  return sorted;
}

/// Where a node belongs among others that are in order: behind those that are equal.
std::vector<NodeRef>::iterator Among(std::vector<NodeRef>& others, const NodeRef& node) {
  return std::upper_bound(others.begin(), others.end(), Place(node),
                          [](const Place& wanted, const NodeRef& each) { return wanted < Place(each); });
}

}  // namespace

std::string TreeNode::fullPath() const {
  const NodeRef above = parent();
  return above ? above->fullPath() + "\\" + text() : text();
}

KeyedTree::Filling::~Filling() {
  if (--tree_.fillings_ > 0) return;
  // A parent was noted before its children could be.
  for (const NodeRef& owner : std::exchange(tree_.filled_, {})) tree_.show(owner ? *owner : tree_.top_);
}

TreeNode& KeyedTree::ownerOf(const TreeNode& node) {
  const NodeRef parent = node.parent();
  return parent ? *parent : top_;
}

NodeRef KeyedTree::add(const std::string& key, const std::string& text, const char* image) {
  return put(nullptr, std::make_shared<TreeNode>(key, text, image));
}

NodeRef KeyedTree::add(const std::string& parent, const std::string& key, const std::string& text,
                       const char* image) {
  const NodeRef above = find(parent);
  return put(above, std::make_shared<TreeNode>(key, text, image));
}

NodeRef KeyedTree::put(const NodeRef& parent, const NodeRef& node) {
  keys_.add(*node);
  TreeNode& owner = parent ? *parent : top_;
  node->parent_ = parent;
  owner.coming_.push_back(node);
  ++size_;
  if (fillings_ == 0)
    show(owner);
  else if (owner.coming_.size() == 1)
    filled_.push_back(parent);
  return node;
}

void KeyedTree::show(TreeNode& owner) {
  if (owner.coming_.empty()) return;
  for (const NodeRef& node : owner.coming_) node->shown_ = true;
  if (owner.coming_.size() == 1)
    showOne(owner);
  else
    showAll(owner);
}

void KeyedTree::showOne(TreeNode& owner) {
  const NodeRef node = std::exchange(owner.coming_, {}).front();
  const auto at = owner.sorted_ ? Among(owner.children_, node) : owner.children_.end();
  const auto row = static_cast<std::size_t>(at - owner.children_.begin());
  if (watch_ != nullptr) watch_->rowsInserting(shownAs(owner), row, row);
  owner.children_.insert(at, node);
  owner.numbered_ = std::min(owner.numbered_, row);
  if (watch_ != nullptr) watch_->rowsInserted();
}

void KeyedTree::showAll(TreeNode& owner) {
  std::vector<NodeRef> added = std::exchange(owner.coming_, {});
  if (owner.sorted_) added = InOrder(added);
  const std::size_t before = owner.children_.size();
  const bool behind = before == 0 || !owner.sorted_;
  if (watch_ != nullptr) {
    if (behind)
      watch_->rowsInserting(shownAs(owner), before, before + added.size() - 1);
    else
      watch_->resetting();
  }
  owner.children_.insert(owner.children_.end(), added.begin(), added.end());
  if (!behind) owner.children_ = InOrder(owner.children_);
  owner.numbered_ = behind ? std::min(owner.numbered_, before) : 0;
  if (watch_ == nullptr) return;
  if (behind)
    watch_->rowsInserted();
  else
    watch_->reset();
}

void KeyedTree::clear() {
  if (watch_ != nullptr) watch_->resetting();
  for (const auto* nodes : {&top_.children_, &top_.coming_})
    for (const NodeRef& node : *nodes) forget(*node);
  top_.children_.clear();
  top_.coming_.clear();
  top_.numbered_ = 0;
  filled_.clear();
  selected_.reset();
  highlighted_.reset();
  if (watch_ == nullptr) return;
  watch_->reset();
  watch_->selectionChanged();
}

void KeyedTree::remove(const NodeRef& node) {
  if (!node || !node->held()) throw base::Failure(base::number::kElementNotFound);
  TreeNode& owner = ownerOf(*node);
  if (!node->shown_) {
    std::erase(owner.coming_, node);
    return forget(*node);
  }
  if (selected_ == node) selectedItem(heirOf(node));
  takeOut(owner, rowOf(*node), 1);
}

NodeRef KeyedTree::heirOf(const NodeRef& node) {
  const auto& siblings = ownerOf(*node).children_;
  const std::size_t row = rowOf(*node);
  if (row + 1 < siblings.size()) return siblings[row + 1];
  if (row > 0) return siblings[row - 1];
  return node->parent();
}

void KeyedTree::removeChildren(const NodeRef& node) {
  for (const NodeRef& child : std::exchange(node->coming_, {})) forget(*child);
  if (node->children_.empty()) return;
  if (selected_ && selected_->parent() == node) selectedItem(node);
  takeOut(*node, 0, node->children_.size());
}

void KeyedTree::takeOut(TreeNode& owner, std::size_t first, std::size_t count) {
  if (watch_ != nullptr) watch_->rowsRemoving(shownAs(owner), first, first + count - 1);
  const auto begin = owner.children_.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = begin + static_cast<std::ptrdiff_t>(count);
  std::for_each(begin, end, [this](const NodeRef& node) { forget(*node); });
  owner.children_.erase(begin, end);
  owner.numbered_ = std::min(owner.numbered_, first);
  if (watch_ != nullptr) watch_->rowsRemoved();
  if (selected_ && !selected_->held()) selectedItem(nullptr);
  if (highlighted_ && !highlighted_->held()) dropHighlight(nullptr);
}

void KeyedTree::forget(TreeNode& node) {
  for (const auto* nodes : {&node.children_, &node.coming_})
    for (const NodeRef& child : *nodes) forget(*child);
  node.children_.clear();
  node.coming_.clear();
  node.numbered_ = 0;
  keys_.remove(node);
  node.held_ = false;
  node.shown_ = false;
  --size_;
}

NodeRef KeyedTree::find(const std::string& key) const {
  TreeNode* found = keys_.find(key);
  if (found == nullptr) throw base::Failure(base::number::kElementNotFound);
  return found->self();
}

void KeyedTree::key(const NodeRef& node, const std::string& value) {
  if (node->held())
    keys_.change(*node, value);
  else
    node->key_ = value;
}

void KeyedTree::tellChanged(const TreeNode& node) {
  if (watch_ != nullptr && node.shown_) watch_->changed(node);
}

void KeyedTree::text(const NodeRef& node, const std::string& value) {
  if (node->text_ == value) return;
  node->text_ = value;
  if (node->shown_ && ownerOf(*node).sorted_) place(node);
  tellChanged(*node);
}

// Its siblings are in order, only the node itself may have to go elsewhere.
void KeyedTree::place(const NodeRef& node) {
  TreeNode& owner = ownerOf(*node);
  const std::size_t from = rowOf(*node);
  auto others = owner.children_;
  others.erase(others.begin() + static_cast<std::ptrdiff_t>(from));
  const auto at = Among(others, node);
  const auto to = static_cast<std::size_t>(at - others.begin());
  if (to == from) return;
  if (watch_ != nullptr) watch_->rowMoving(shownAs(owner), from, to);
  others.insert(at, node);
  owner.children_ = std::move(others);
  owner.numbered_ = std::min({owner.numbered_, from, to});
  if (watch_ != nullptr) watch_->rowMoved();
}

void KeyedTree::image(const NodeRef& node, const char* value) {
  node->image_ = value;
  tellChanged(*node);
}

void KeyedTree::bold(const NodeRef& node, bool value) {
  node->bold_ = value;
  tellChanged(*node);
}

void KeyedTree::sorted(const NodeRef& node, bool value) {
  const bool begins = value && !node->sorted_;
  node->sorted_ = value;
  if (!begins || node->children_.size() < 2) return;
  if (watch_ != nullptr) watch_->resetting();
  node->children_ = InOrder(node->children_);
  node->numbered_ = 0;
  if (watch_ != nullptr) watch_->reset();
}

void KeyedTree::expanded(const NodeRef& node, bool value) {
  if (node->expanded_ == value) return;
  node->expanded_ = value;
  if (watch_ != nullptr && node->shown_) watch_->expandedChanged(*node);
}

std::vector<NodeRef> KeyedTree::children(const NodeRef& node) {
  std::vector<NodeRef> all = node->children_;
  all.insert(all.end(), node->coming_.begin(), node->coming_.end());
  return all;
}

NodeRef KeyedTree::nodeAt(const TreeNode* parent, std::size_t row) const {
  const auto& rows = shownOf(parent);
  if (row >= rows.size()) throw base::Failure(base::number::kIndex);
  return rows[row];
}

std::size_t KeyedTree::rowOf(const TreeNode& node) const {
  const NodeRef parent = node.parent();
  const TreeNode& owner = parent ? *parent : top_;
  for (; owner.numbered_ < owner.children_.size(); ++owner.numbered_)
    owner.children_[owner.numbered_]->row_ = owner.numbered_;
  return node.row_;
}

void KeyedTree::selectedItem(const NodeRef& node) {
  if (selected_ == node) return;
  selected_ = node;
  if (watch_ != nullptr) watch_->selectionChanged();
}

void KeyedTree::dropHighlight(const NodeRef& node) {
  if (highlighted_ == node) return;
  highlighted_ = node;
  if (watch_ != nullptr) watch_->dropHighlightChanged();
}

}  // namespace ui::editor
