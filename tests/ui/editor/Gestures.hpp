#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "ui/editor/EditorGround.hpp"
#include "ui/editor/InStep.hpp"
#include "ui/editor/Shadow.hpp"

namespace support {

/// Plays gestures on an editor and looks, after each of them, at what may have become of the window and of
/// the stored playlists.
class Gestures {
 public:
  Gestures() {
    for (const char* title : {"Sky", "Sea", "Leaf", "Moss", "Rain", "Snow"}) {
      const bool early = all_.size() < 3;
      all_.push_back(in_.library.addTrack(title, early ? "Ann" : "Bob", early ? "Blue" : "Green", "Folk"));
      all_.back()->url = std::string("http:") + title;
    }
    in_.library.attributes = {{"album", {"Blue", "Green"}}, {"artist", {"Ann", "Bob"}}, {"genre", {"Folk"}}};
    in_.library.addPlaylist("Autumn", {all_[0], all_[1], all_[2]});
    in_.library.addPlaylist("Winter", {all_[3], all_[4]});
    in_.library.addPlaylist("PlayList", {all_[5]});
    in_.editor.models().TreeView1.watch(&treeShadow_);
    in_.editor.models().ListView1.watch(&listShadow_);
    in_.window.onMessage = [this] { meanwhile(); };
    in_.editor.show();
  }

  /// What does not hold behind it; empty when all does.
  std::string play(const Gesture& gesture) {
    const Store before = store();
    steps_.note(in_.editor);
    foreign_ = false;
    in_.window.messages.clear();
    act(gesture);
    in_.journal.clear();
    return checked(before, gesture);
  }

 private:
  using Store = std::map<FakePlaylistRef, std::vector<std::string>>;
  using Events = ui::editor::EditorEvents;

  [[nodiscard]] Store store() const {
    Store all;
    for (const FakePlaylistRef& list : in_.library.playlists) {
      std::vector<std::string>& titles = all[list];
      for (const player::MediaRef& media : list->members) titles.push_back(media->name());
    }
    return all;
  }
  [[nodiscard]] Events& events() { return *in_.window.events; }
  ui::editor::KeyedTree& tree() { return in_.editor.models().TreeView1; }
  ui::editor::KeyedList& list() { return in_.editor.models().ListView1; }
  ui::editor::DropBox& box() { return in_.editor.models().PlayListDropBox; }

  /// Any node that is shown, or none.
  NodeRef someNode(std::uint8_t number) {
    std::vector<NodeRef> nodes;
    const auto take = [&](const auto& self, const TreeNode* parent) -> void {
      for (std::size_t row = 0; row < tree().rowCount(parent); ++row) {
        nodes.push_back(tree().nodeAt(parent, row));
        self(self, nodes.back().get());
      }
    };
    take(take, nullptr);
    return nodes.empty() ? nullptr : nodes[number % nodes.size()];
  }
  ui::editor::ItemRef someItem(std::uint8_t number) {
    const std::size_t count = list().count();
    const std::size_t place = number % (count + 1);  // none at times
    return place == 0 ? nullptr : list().item(place);
  }
  static std::string someName(std::uint8_t number) {
    static const std::array<const char*, 7> kNames{"Spring", " Summer ",  "winter",        "PlayList",
                                                   "",       "A & \"B\"", "http://station"};
    return kNames.at(number % kNames.size());
  }

  void act(const Gesture& gesture) {
    constexpr std::int16_t kHeld[] = {0, ui::editor::kShiftDown, ui::editor::kCtrlDown};
    constexpr std::int16_t kKeys[] = {13, 17, 45, 46, 67, 86, 88, 112, 9};
    const std::int16_t held = kHeld[gesture.second % 3];
    const std::int16_t code = kKeys[gesture.first % 9];
    switch (KindOf(gesture)) {
      case 0:
      case 1: return pressNode(someNode(gesture.first), held);
      case 2: return pressItem(someItem(gesture.first), held);
      case 3: return drag(Control::kTreeView1, someItem(gesture.first));
      case 4: return drag(Control::kListView1, someItem(gesture.first));
      case 5: return dragToTree(gesture.first % 2 == 0 ? Control::kTreeView1 : Control::kListView1);
      case 6: return events().TreeView1_KeyDown(code, held);
      case 7: return events().TreeView1_KeyUp(code, held);
      case 8: return events().ListView1_KeyDown(code, held);
      case 9: return events().ListView1_KeyUp(code, held);
      case 10: return events().TreeView1_GotFocus();
      case 11: return events().ListView1_GotFocus();
      case 12: return events().MoveUp_Button_Click();
      case 13: return events().MoveDown_Button_Click();
      case 14: return remove(gesture.first % 2 == 0);
      case 15: in_.window.typed = someName(gesture.first); return events().New_PlayList_Click();
      case 16: return rename(someName(gesture.first));
      case 17: return toggle(someNode(gesture.first));
      case 18:
        if (box().count() > 0) box().listIndex(static_cast<std::int32_t>(gesture.first % box().count()));
        return;
      case 19: in_.window.chosenFile = gesture.first % 2 == 0 ? "" : someName(gesture.first); return;
      case 20: meanwhile_ = gesture.first; return;
      default: return reopen(gesture.first);
    }
  }
  void pressNode(const NodeRef& node, std::int16_t held) {
    in_.window.node = node;
    if (node) tree().selectedItem(node);
    events().TreeView1_MouseDown(ui::editor::kLeftButton, held, 0, 0);
    if (node) events().TreeView1_NodeClick(node);
  }
  void pressItem(const ui::editor::ItemRef& item, std::int16_t held) {
    in_.window.item = item;
    if (!item) return;
    list().selectedItem(item);
    events().ListView1_MouseDown(ui::editor::kLeftButton, held, 0, 0);
    events().ListView1_ItemClick(item);
  }
  void begin(Control source) {
    if (source == Control::kTreeView1)
      events().TreeView1_MouseMove(ui::editor::kLeftButton, 0, 0, 0);
    else
      events().ListView1_MouseMove(ui::editor::kLeftButton, 0, 0, 0);
  }
  void drag(Control source, const ui::editor::ItemRef& onto) {
    in_.window.item = source == Control::kListView1 ? in_.editor.state().CurrentListItem : nullptr;
    if (!in_.editor.state().Dragging) begin(source);
    if (!in_.editor.state().Dragging) return;
    in_.window.item = onto;
    events().ListView1_DragOver(source, 0, 100, ui::editor::DragState::kOver);
    if (in_.editor.state().CurrentListItem || source == Control::kTreeView1)
      events().ListView1_DragDrop(source, 0, 100);
  }
  void dragToTree(Control source) {
    begin(source);
    events().TreeView1_DragOver(source, 0, 0, ui::editor::DragState::kEnter);
    events().TreeView1_DragDrop(source, 0, 0);
  }
  void remove(bool confirmed) {
    in_.window.answers = {confirmed ? MessageAnswer::kYes : MessageAnswer::kNo};
    events().Delete_Button_Click();
    in_.window.answers.clear();
  }
  void rename(std::string text) {
    const NodeRef node = tree().selectedItem();
    std::int16_t cancel = 0;
    events().TreeView1_BeforeLabelEdit(cancel);
    if (cancel != 0 || !node) return;
    events().TreeView1_AfterLabelEdit(cancel, text);
    if (cancel == 0) tree().text(node, text);
  }
  void toggle(const NodeRef& node) {
    if (!node || tree().rowCount(node.get()) == 0) return;
    tree().expanded(node, !node->expanded());
    if (node->expanded()) events().TreeView1_Expand(node);
  }
  void reopen(std::uint8_t number) {
    if (number % 4 != 0) return;
    in_.window.close();
    in_.editor.show();
  }

  /// What others do while a message is open.
  void meanwhile() {
    const std::uint8_t what = std::exchange(meanwhile_, 0);
    if (what == 0) return;
    foreign_ = true;
    auto& lists = in_.library.playlists;
    switch (what % 5) {
      case 0: return in_.editor.show();
      case 1:
        if (!lists.empty()) lists.front()->members.clear();
        return;
      case 2:
        if (!lists.empty()) lists.pop_back();
        return;
      case 3:
        if (!lists.empty()) lists.front()->title += " too";
        return;
      default: in_.window.close(); return in_.editor.show();
    }
  }

  std::string checked(const Store& before, const Gesture& gesture) {
    if (treeShadow_.lines() != LinesOf(tree())) return "the tree's view is not what the tree is";
    if (listShadow_.lines != LinesOf(list())) return "the list's view is not what the list is";
    if (list().rowCount() != list().count()) return "a fill has not ended";
    if (!in_.window.isEnabled) return "the window is left disabled";
    for (std::size_t i = 1; i <= list().count(); ++i) {
      const auto item = list().item(i);
      if (list().find(item->key()) != item || list().indexOf(*item) != i) return "an item is not found";
    }
    for (std::size_t i = 1; i < box().count(); ++i)
      if (base::LowerCase(box().entry(i)) < base::LowerCase(box().entry(i - 1)))
        return "the box is not in order";
    const ui::editor::EditorState& state = in_.editor.state();
    if (state.CurrentListItem && !state.CurrentListItem->held() &&
        (state.MoveUp_Button || state.MoveDown_Button))
      return "an item can be moved that is not in the list";
    if (foreign_) return {};
    const std::string step = steps_.lost(in_.editor, in_.window.messages, gesture);
    return step.empty() ? changeOf(before, gesture) : step;
  }
  /// One gesture puts one title into one list at most, and takes one out of one; a deleted list goes whole.
  [[nodiscard]] std::string changeOf(const Store& before, const Gesture& gesture) const {
    const Store now = store();
    int more = 0;
    int less = 0;
    int changed = 0;
    for (const auto& [list, titles] : before) {
      const auto found = now.find(list);
      if (found == now.end()) continue;  // deleted
      const auto count = [](const std::vector<std::string>& all) { return static_cast<int>(all.size()); };
      const int difference = count(found->second) - count(titles);
      if (difference > 0) more += difference;
      if (difference < 0) less -= difference;
      if (difference == 0) {
        auto left = titles;
        auto right = found->second;
        std::sort(left.begin(), left.end());
        std::sort(right.begin(), right.end());
        if (left != right) ++changed;
      }
    }
    if (more > 1 || less > 1) return "more than one title has come or gone";
    if (changed > 0) return "a list has other titles though as many";
    const bool dropped = KindOf(gesture) == kDragFromTree && more == 1 && in_.window.messages.empty();
    if (dropped && less != (steps_.moves() ? 1 : 0))
      return steps_.moves() ? "a move has left the title where it stood" : "a copy has taken the title away";
    return {};
  }

  EditorGround in_;
  std::vector<FakeMediaRef> all_;
  TreeShadow treeShadow_{in_.editor.models().TreeView1};
  ListShadow listShadow_{in_.editor.models().ListView1};
  InStep steps_;
  std::uint8_t meanwhile_ = 0;
  bool foreign_ = false;
};

}  // namespace support
