#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/common/EraseAt.hpp"

namespace engine {

constexpr int kLongestItem = 4'000'000;  ///< seconds, so that milliseconds are a 32-bit number

/// An item as a playlist file tells it.
struct M3uItem {
  std::string location;  ///< a path or an address
  std::string title;  ///< "Artist - Title", empty if unknown; at most `tags::TagFields::kLongest` bytes of it
  int seconds = -1;   ///< -1 if unknown
  bool cut = false;   ///< the file tells a longer title
};

/// A playlist file's text. It is edited by lines, and what an edit does not concern stays as it stands:
/// remarks, tags of other programs, line ends, an older encoding. The lines before an item are its own and go
/// where it goes; those before the first item's tags belong to the list, or those before
/// a line of our own that is written where an edit has brought an item with other lines to the front.
class M3uText {
 public:
  /// No line that is longer, or holds a code 0, is read; it is kept.
  static constexpr std::size_t kLongestLine = 65536;

  static constexpr std::size_t kMostItems = 500'000;

  /// Throws 6 for a list of more items.
  explicit M3uText(std::string text = {});

  /// Empty if the file does not tell; at most `tags::TagFields::kLongest` bytes of what it tells.
  [[nodiscard]] std::string name() const;
  [[nodiscard]] bool nameIsCut() const;
  /// Throws 5 for a name of more than `tags::TagFields::kLongest` bytes.
  void name(const std::string& value);

  [[nodiscard]] std::size_t count() const { return items_.size(); }
  /// `folder` is what relative paths start from.
  [[nodiscard]] M3uItem item(std::size_t index, const std::string& folder) const;
  /// Throws 5 for a location that is longer than a line may be, 6 for more items than may be; then none is
  /// put in.
  void insertAll(std::size_t index, const std::vector<M3uItem>& items);
  void insert(std::size_t index, const M3uItem& item) { insertAll(index, {item}); }
  void remove(std::size_t index);
  /// The places rise, and there is an item at each.
  void removeAll(const std::vector<std::int32_t>& places) { EraseAt(items_, places); }
  void move(std::size_t from, std::size_t to);

  /// The text as it is to be written.
  [[nodiscard]] std::string text() const;

 private:
  struct Piece {
    std::size_t begin = 0;
    std::size_t size = 0;
  };

  [[nodiscard]] std::string_view of(const Piece& piece) const {
    return std::string_view(text_).substr(piece.begin, piece.size);
  }
  void checkRoom(std::size_t more) const;
  void readHead(std::string_view head);
  [[nodiscard]] std::string wholeName() const;
  void needHeader();
  void add(std::string& text, std::string_view piece) const;

  std::string text_;  ///< what the pieces lie in, those that came later at its end
  std::string lineEnd_ = "\n";
  std::string mark_;       ///< the byte order mark, if there is one
  std::string front_;      ///< the list's own lines before its name
  std::string nameLines_;  ///< the lines that tell the name
  std::string rest_;       ///< the list's own lines behind it
  bool hasHeader_ = false;
  std::vector<Piece> items_;
  Piece tail_;  ///< the lines behind the last item
};

/// Text of a file: as it is if it is well-formed UTF-8, otherwise read as Latin-1.
std::string TextOf(std::string_view bytes);

/// A playlist's name as a file name without ending: characters that no file name should hold are written as
/// a percent sign and two hexadecimal digits. `name` is not empty.
std::string EscapeFileName(const std::string& name);
std::string UnescapeFileName(const std::string& fileName);

}  // namespace engine
