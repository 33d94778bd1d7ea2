#pragma once
#include <cstddef>
#include <memory>
#include <string>

/// The playlist editor: a window with a tree of sources and the list of one playlist. Its logic works on the
/// plain models of this folder, which a view shows without a copy of its own.
namespace ui::editor {

/// What a tree node and a list item have in common. The container that holds an entry changes it, so that
/// whoever shows it is told; the tag alone is nobody's business but the logic's. An entry outlives its
/// removal as long as somebody holds it, with all that it said last.
class Entry {
 public:
  Entry(std::string key, std::string text, const char* image);
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  Entry(Entry&&) = delete;
  Entry& operator=(Entry&&) = delete;
  virtual ~Entry() = default;

  /// Unique in the container, without regard to case.
  [[nodiscard]] const std::string& key() const { return key_; }
  [[nodiscard]] const std::string& text() const { return text_; }
  /// A key of `ImageList1`.
  [[nodiscard]] const char* image() const { return image_; }
  /// False from when it has been removed.
  [[nodiscard]] bool held() const { return held_; }

  std::string tag;

 private:
  template <class T>
  friend class KeyIndex;
  friend class KeyedTree;
  friend class KeyedList;

  std::string key_;
  std::string text_;
  const char* image_;
  std::size_t keyHash_;  // of the folded key
  bool held_ = true;
};
using EntryRef = std::shared_ptr<Entry>;

/// The pictures' keys that entries and drags bear.
namespace image {
inline constexpr const char* kDrive = "Drive";
inline constexpr const char* kAlbum = "Music CD";
inline constexpr const char* kArtist = "People";
inline constexpr const char* kGenre = "Music2";
inline constexpr const char* kList = "List";
inline constexpr const char* kGlobe = "Globe";
inline constexpr const char* kFolder = "ClosedFolder";
inline constexpr const char* kSound = "Sound";
inline constexpr const char* kDeleted = "Deleted";
inline constexpr const char* kDrag = "Drag";
inline constexpr const char* kNo = "No";

/// `ImageList1`: pictures of 16 by 16 pixels, in this order.
inline constexpr const char* kAll[] = {
    "OpenFolder", "DragSound", "Sound",     "Music2",  "Drag",     "Warning", "Deleted",  "No",
    "No2",        "X",         "TrafficLt", "GreenLt", "YellowLt", "RedLt",   "Music CD", "ClosedFolder",
    "Explorer",   "CD Drive",  "Drive",     "People",  "List",     "Globe"};
}  // namespace image

}  // namespace ui::editor
