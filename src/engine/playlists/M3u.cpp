#include "engine/playlists/M3u.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/library/Attributes.hpp"
#include "engine/tags/TagFields.hpp"
#include "engine/tags/TextForms.hpp"

namespace engine {
namespace {

constexpr std::string_view kHeader = "#EXTM3U";
constexpr std::string_view kNameTag = "#PLAYLIST:";
/// The name to the letter, where the tag before, which other programs read, can't hold it.
constexpr std::string_view kExactNameTag = "#VANTORIX-NAME:";
constexpr std::string_view kItemTag = "#EXTINF:";
/// Ends the list's own lines, where it would else be doubtful which those are.
constexpr std::string_view kItemsTag = "#VANTORIX-ITEMS";
constexpr std::string_view kMark = "\xEF\xBB\xBF";

bool IsControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::replace(text.begin(), text.end(), '\r', ' ');
  std::replace(text.begin(), text.end(), '\0', ' ');
  return text;
}

template <class Plain>
std::string Escaped(std::string_view text, Plain&& plain) {
  std::string result;
  for (const char character : text) {
    if (plain(character)) {
      result += character;
      continue;
    }
    std::array<char, 4> code{};
    std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(character));
    result += code.data();
  }
  return result;
}

/// Takes the first line, with its end, off a text.
std::string_view TakeLine(std::string_view& rest) {
  const std::string_view line = rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1);
  rest.remove_prefix(line.size());
  return line;
}

/// A line without its end and the blanks around it; empty if it is not to be read.
std::string_view Readable(std::string_view line) {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r' || line.back() == ' '))
    line.remove_suffix(1);
  while (!line.empty() && line.front() == ' ') line.remove_prefix(1);
  const bool sound = line.size() <= M3uText::kLongestLine && line.find('\0') == std::string_view::npos;
  return sound ? line : std::string_view();
}

bool IsItem(std::string_view readable) {
  if (readable.empty() || readable.front() == '#') return false;
  const bool mayBeFile = readable.front() == 'f' || readable.front() == 'F';
  return !mayBeFile || !PathOf(std::string(readable)).empty();
}

bool IsNameTag(std::string_view readable) {
  return readable.starts_with(kNameTag) || readable.starts_with(kExactNameTag);
}

/// A tag of the list, not of the item that follows.
bool IsListTag(std::string_view readable) {
  return IsNameTag(readable) || readable.starts_with(kHeader) || readable.starts_with("#EXTENC");
}

/// The list's own lines.
struct Head {
  std::size_t size = 0;
  std::size_t mark = 0;  ///< of the line behind them that ends them
};

Head HeadOf(std::string_view text) {
  std::size_t tags = text.size();  // where the tags right before the first item begin
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t at = text.size() - rest.size();
    const std::string_view line = TakeLine(rest);
    const std::string_view readable = Readable(line);
    if (readable == kItemsTag) return {at, line.size()};
    if (IsItem(readable)) return {std::min(tags, at)};
    if (IsListTag(readable))
      tags = text.size();
    else if (readable.starts_with("#EXT"))
      tags = std::min(tags, at);
  }
  return {text.size()};
}

/// A location as a line of the file.
std::string LineOf(const std::string& location) {
  if (IsAddress(location)) {
    const bool text = base::IsPlainUtf8(location);
    const std::size_t end = location.find_last_not_of(' ') + 1;
    return Escaped(location.substr(0, end),
                   [&](char c) { return !IsControl(c) && (text || static_cast<unsigned char>(c) < 0x80); }) +
           Escaped(location.substr(end), [](char) { return false; });
  }
  std::error_code ignored;
  std::filesystem::path whole = location;
  if (whole.is_relative()) whole = std::filesystem::absolute(whole, ignored);
  const std::string& path = whole.native();
  if (std::none_of(path.begin(), path.end(), IsControl) && !path.empty() && path.back() != ' ') return path;
  return "file://" + Escaped(path, [](char c) { return c > ' ' && c < 0x7F && c != '%'; });
}

void CheckLine(std::string_view line) {
  if (line.size() > M3uText::kLongestLine) {
    throw base::Failure(base::number::kInvalidArgument, "That is too long for a playlist");
  }
}

int SecondsOf(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  int seconds = -1;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), seconds);
  return read.ec == std::errc() && seconds >= 0 && seconds <= kLongestItem ? seconds : -1;
}

/// Where the title of an item's tag begins: behind the first comma that is not within quotation marks.
std::size_t CommaOf(std::string_view text) {
  bool quoted = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '"') quoted = !quoted;
    if (text[at] == ',' && !quoted) return at;
  }
  return text.find(',');
}

void ReadTag(std::string_view text, M3uItem& item) {
  item.seconds = SecondsOf(text);
  const auto comma = CommaOf(text);
  if (comma == std::string_view::npos) return;
  const std::string title = base::TrimBlanks(TextOf(text.substr(comma + 1)));
  item.title = tags::Shortened(title, tags::TagFields::kLongest);
  item.cut = item.title.size() < title.size();
}

}  // namespace

std::string TextOf(std::string_view bytes) {
  if (base::IsPlainUtf8(bytes)) return std::string(bytes);
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte != 0 && byte < 0x80) {
      text += character;
    } else {
      text += base::CharacterOf(byte == 0 ? 0xFFFD : byte);
    }
  }
  return text;
}

M3uText::M3uText(std::string text) : text_(std::move(text)) {
  // Some programs of old ended lines by that alone.
  if (text_.find('\n') == std::string::npos) std::replace(text_.begin(), text_.end(), '\r', '\n');
  std::string_view rest = text_;
  if (rest.starts_with(kMark)) {
    mark_ = kMark;
    rest.remove_prefix(kMark.size());
  }
  const std::size_t start = mark_.size();
  const Head head = HeadOf(rest);
  readHead(rest.substr(0, head.size));
  if (const auto end = rest.find('\n'); end != std::string_view::npos && end > 0 && rest[end - 1] == '\r')
    lineEnd_ = "\r\n";
  std::size_t begin = start + head.size + head.mark;
  rest.remove_prefix(head.size + head.mark);
  while (!rest.empty()) {
    if (!IsItem(Readable(TakeLine(rest)))) continue;
    checkRoom(1);
    const std::size_t end = text_.size() - rest.size();
    items_.push_back({begin, end - begin});
    begin = end;
  }
  tail_ = {begin, text_.size() - begin};
}

void M3uText::readHead(std::string_view head) {
  bool named = false;  // by the line before
  while (!head.empty()) {
    const std::string_view line = TakeLine(head);
    const std::string_view readable = Readable(line);
    const bool header = readable.starts_with(kHeader) && !hasHeader_;
    const bool tag = readable.starts_with(kNameTag) && nameLines_.empty();
    const bool exact = named && readable.starts_with(kExactNameTag);
    if (nameLines_.empty() && (tag || header)) front_ += std::exchange(rest_, {});
    if (tag || exact) {
      add(nameLines_, line);
    } else {
      add(header && nameLines_.empty() ? front_ : rest_, line);
    }
    hasHeader_ = hasHeader_ || header;
    named = tag;
  }
}

void M3uText::needHeader() {
  if (!hasHeader_) front_.insert(0, std::string(kHeader) + lineEnd_);
  hasHeader_ = true;
}

std::string M3uText::wholeName() const {
  std::string_view lines = nameLines_;
  if (lines.empty()) return {};
  std::string name = base::TrimBlanks(TextOf(Readable(TakeLine(lines)).substr(kNameTag.size())));
  if (lines.empty()) return name;
  const std::string exact = UnescapeFileName(std::string(Readable(lines).substr(kExactNameTag.size())));
  // It counts only while no other program has given the list another name.
  const bool fits = base::IsPlainUtf8(exact) && base::TrimBlanks(OneLine(exact)) == name;
  return fits && !exact.empty() ? exact : name;
}

std::string M3uText::name() const {
  return std::string(tags::Shortened(wholeName(), tags::TagFields::kLongest));
}

bool M3uText::nameIsCut() const { return wholeName().size() > tags::TagFields::kLongest; }

void M3uText::name(const std::string& value) {
  if (value.size() > tags::TagFields::kLongest)
    throw base::Failure(base::number::kInvalidArgument, "That is too long for a playlist's name");
  const std::string plain = std::string(kNameTag) + OneLine(value);
  CheckLine(plain);
  std::string lines = plain + lineEnd_;
  const bool another = text_.find(kExactNameTag) != std::string::npos;  // which might be taken for this one's
  if (another || base::TrimBlanks(OneLine(value)) != value) {
    const std::string exact = std::string(kExactNameTag) +
                              Escaped(value, [](char c) { return !IsControl(c) && c != ' ' && c != '%'; });
    CheckLine(exact);
    lines += exact + lineEnd_;
  }
  nameLines_ = lines;
  needHeader();
}

M3uItem M3uText::item(std::size_t index, const std::string& folder) const {
  M3uItem item;
  for (std::string_view rest = of(items_.at(index)); !rest.empty();) {
    const std::string_view line = Readable(TakeLine(rest));
    if (line.starts_with(kItemTag)) ReadTag(line.substr(kItemTag.size()), item);
    if (rest.empty()) item.location = PathOf(std::string(line));
  }
  if (!IsAddress(item.location) && item.location.front() != '/') item.location = folder + '/' + item.location;
  return item;
}

void M3uText::checkRoom(std::size_t more) const {
  if (more > kMostItems - items_.size())
    throw base::Failure(base::number::kOverflow,
                        "There are more than " + std::to_string(kMostItems) + " items in it");
}

void M3uText::insertAll(std::size_t index, const std::vector<M3uItem>& items) {
  checkRoom(items.size());
  std::vector<Piece> pieces;
  std::string added;
  for (const M3uItem& item : items) {
    const std::string line = LineOf(item.location);
    CheckLine(line);
    if (!IsItem(Readable(line)))
      throw base::Failure(base::number::kInvalidArgument, "The item has no address");
    const std::size_t begin = added.size();
    const std::string title(tags::Shortened(OneLine(item.title), tags::TagFields::kLongest));
    added.append(kItemTag).append(std::to_string(item.seconds)).append(",").append(title).append(lineEnd_);
    added.append(line).append(lineEnd_);
    pieces.push_back({text_.size() + begin, added.size() - begin});
  }
  needHeader();
  text_ += added;
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(index), pieces.begin(), pieces.end());
}

void M3uText::remove(std::size_t index) { items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index)); }

void M3uText::move(std::size_t from, std::size_t to) {
  const Piece piece = items_.at(from);
  remove(from);
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(to), piece);
}

void M3uText::add(std::string& text, std::string_view piece) const {
  text += piece;
  if (!piece.empty() && piece.back() != '\n') text += lineEnd_;
}

std::string M3uText::text() const {
  std::string text;
  text.reserve(text_.size() + nameLines_.size() + 64);
  text += mark_ + front_ + nameLines_ + rest_;
  const std::size_t head = text.size();
  for (const Piece& piece : items_) add(text, of(piece));
  add(text, of(tail_));
  // An item that stood in the middle may bring remarks, or another list's name, to the front.
  if (HeadOf(std::string_view(text).substr(mark_.size())).size != head - mark_.size())
    text.insert(head, std::string(kItemsTag) + lineEnd_);
  if (mark_.empty() && text.starts_with(kMark)) text.insert(0, kMark);  // not to be taken for one
  return text;
}

std::string EscapeFileName(const std::string& name) {
  std::string escaped = Escaped(name, [](char c) {
    return !IsControl(c) && std::string_view("/\\:*?\"<>|%").find(c) == std::string_view::npos;
  });
  if (escaped.front() == '.') escaped = "%2E" + escaped.substr(1);
  return escaped;
}

std::string UnescapeFileName(const std::string& fileName) { return PathOf("file:///" + fileName).substr(1); }

}  // namespace engine
