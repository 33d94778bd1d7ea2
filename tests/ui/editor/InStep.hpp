#pragma once
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>
#include <vector>

#include "ui/editor/PlayListEditor.hpp"

namespace support {

/// One gesture in numbers: what is done, and on what.
struct Gesture {
  std::uint8_t what = 0;
  std::uint8_t first = 0;
  std::uint8_t second = 0;
};

inline int KindOf(const Gesture& gesture) { return gesture.what % 22; }

// The kinds that a comparison of list and playlist tells apart.
inline constexpr int kDragFromTree = 3;
inline constexpr int kDragInList = 4;
inline constexpr int kListKey = 8;
inline constexpr int kMoveUp = 12;
inline constexpr int kMoveDown = 13;
inline constexpr int kChoice = 18;

/// Compares the list with the playlist that it shows. They may part: by a title that stands twice, by
/// whatever is refused half way, by a title that is cut out of the library. All but the last say so. Without
/// such a word a list that was in step stays so.
class InStep {
  using Titles = std::vector<std::string>;

 public:
  /// How things stand before a gesture.
  void note(ui::editor::PlayListEditor& editor) {
    shown_ = editor.state().ListPlayList;
    const bool named = shown_ && shown_->name() == editor.models().PlayListDropBox.text();
    before_ = Listed(editor.models().ListView1);
    const Titles stored = named ? Stored(*shown_) : Titles();
    same_ = named && Unique(stored) && Sorted(stored) == Sorted(before_);
    inOrder_ = same_ && stored == before_;
    const ui::editor::EntryRef& clip = editor.state().ClipItem;
    cutFromLibrary_ = clip && editor.state().ClipIsCopy == 0 &&
                      editor.state().ClipSource == ui::editor::Control::kTreeView1 &&
                      clip->key().rfind("PlayList", 0) != 0;
    const ui::editor::NodeRef& node = editor.state().CurrentNode;
    moves_ = node && node->fullPath().rfind("PlayList", 0) == 0 && editor.state().CopyMode != 1;
  }

  /// Whether what comes from the tree is taken out of where it stands there.
  [[nodiscard]] bool moves() const { return moves_; }

  /// What the gesture has put out of step; empty for nothing.
  [[nodiscard]] std::string lost(ui::editor::PlayListEditor& editor, const Titles& messages,
                                 const Gesture& gesture) const {
    const int kind = KindOf(gesture);
    for (const std::string& message : messages)
      if (message.rfind("Are you sure", 0) != 0) return {};
    const auto& list = editor.state().ListPlayList;
    if (!list || list->name() != editor.models().PlayListDropBox.text()) return {};
    const Titles stored = Stored(*list);
    const Titles listed = Listed(editor.models().ListView1);
    if (kind == kChoice)
      return !Unique(stored) || listed == stored ? std::string() : "a fill is not what is stored";
    if (!same_ || list != shown_ || (kind == kListKey && cutFromLibrary_)) return {};
    if (Sorted(listed) != Sorted(stored)) return "the list has other titles than its playlist";
    const bool reorders = kind == kDragInList || kind == kMoveUp || kind == kMoveDown;
    if (reorders && inOrder_ && listed != stored) return "a move in the list is another one in the playlist";
    if (kind != kDragFromTree || listed.size() <= before_.size()) return {};
    const std::string dropped = Folded(editor.state().CurrentListItem->text());
    if (stored.back() != dropped) return "what was dropped is not at the playlist's end";
    // The gesture counts the items, and none of them, as it finds them.
    const std::size_t onto = gesture.first % (before_.size() + 1);
    if (listed[onto == 0 ? before_.size() : onto - 1] != dropped)
      return "what was dropped is not before the item that it was dropped on";
    return {};
  }

 private:
  /// As names are told apart when they are looked up: by their letters and digits.
  static std::string Folded(const std::string& text) {
    std::string folded;
    for (const char c : text)
      if (std::isalnum(static_cast<unsigned char>(c)) != 0) folded += static_cast<char>(std::tolower(c));
    return folded;
  }
  static Titles Listed(const ui::editor::KeyedList& list) {
    Titles titles;
    for (std::size_t i = 1; i <= list.count(); ++i) titles.push_back(Folded(list.item(i)->text()));
    return titles;
  }
  static Titles Stored(const player::Playlist& list) {
    Titles titles;
    for (std::int32_t i = 0; i < list.count(); ++i) titles.push_back(Folded(list.item(i)->name()));
    return titles;
  }
  static Titles Sorted(Titles titles) {
    std::sort(titles.begin(), titles.end());
    return titles;
  }
  static bool Unique(const Titles& titles) {
    const Titles all = Sorted(titles);
    return std::adjacent_find(all.begin(), all.end()) == all.end();
  }

  player::PlaylistRef shown_;
  Titles before_;
  bool same_ = false;
  bool inOrder_ = false;
  bool cutFromLibrary_ = false;
  bool moves_ = false;
};

}  // namespace support
