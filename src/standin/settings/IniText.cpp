#include "standin/settings/IniText.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/Text.hpp"

namespace standin {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// The mark that some editors put at the front of a file.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool PlainText(std::string_view text) {
  if (text.empty()) return true;
  return !text.starts_with(kByteOrderMark) && !IsBlank(text.front()) && !IsBlank(text.back()) &&
         text.front() != '"' && std::none_of(text.begin(), text.end(), IsControl);
}

bool PlainKey(std::string_view text) {
  return !text.empty() && PlainText(text) && text.find('=') == std::string_view::npos &&
         std::string_view("[;#").find(text.front()) == std::string_view::npos;
}

std::string Quoted(std::string_view text) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (IsControl(c)) {
          const auto code = static_cast<unsigned char>(c);
          out += "\\x";
          out += kDigits[code >> 4U];
          out += kDigits[code & 15U];
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// Reads a quoted text at the front of `text` and moves behind it; nothing when it isn't closed.
std::optional<std::string> TakeQuoted(std::string_view& text) {
  std::string out;
  for (std::size_t i = 1; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') {
      text.remove_prefix(i + 1);
      return out;
    }
    if (c != '\\' || i + 1 >= text.size()) {
      out += c;
      continue;
    }
    const char next = text[++i];
    if (next == 'n') {
      out += '\n';
    } else if (next == 'r') {
      out += '\r';
    } else if (next == 't') {
      out += '\t';
    } else if (next == '"' || next == '\\') {
      out += next;
    } else if (next == 'x' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 &&
               HexDigit(text[i + 2]) >= 0) {
      out += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    } else {
      out += '\\';
      out += next;
    }
  }
  return std::nullopt;
}

/// The text that stands for a value: in quotes as a whole, or as it is.
std::string Meant(std::string_view text) {
  text = Trimmed(text);
  if (!text.empty() && text.front() == '"') {
    std::string_view rest = text;
    std::optional<std::string> inner = TakeQuoted(rest);
    if (inner && rest.empty()) return *std::move(inner);
  }
  return std::string(text);
}

std::optional<std::pair<std::string, std::string>> KeyAndValue(std::string_view line) {
  if (line.front() == '"') {
    std::string_view rest = line;
    std::optional<std::string> key = TakeQuoted(rest);
    rest = Trimmed(rest);
    if (key && !rest.empty() && rest.front() == '=') return std::pair(*std::move(key), Meant(rest.substr(1)));
  }
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  return std::pair(std::string(Trimmed(line.substr(0, equals))), Meant(line.substr(equals + 1)));
}

}  // namespace

IniFile::Section& IniFile::need(std::string_view name) {
  std::string folded = base::LowerCase(name);
  if (const auto found = byName_.find(folded); found != byName_.end()) return *found->second;
  // Lines without a heading can only stand first.
  const auto place = name.empty() ? sections_.begin() : sections_.end();
  const auto made = sections_.insert(place, Section{std::string(name), {}, {}});
  byName_.emplace(std::move(folded), made);
  bytes_ += name.size();
  return *made;
}

const IniFile::Section* IniFile::look(std::string_view name) const {
  const auto found = byName_.find(base::LowerCase(name));
  return found == byName_.end() ? nullptr : &*found->second;
}

IniFile IniFile::parse(std::string_view text) {
  IniFile file;
  Section* section = nullptr;
  // The one without a name is only made for a line that stands before every heading.
  const auto here = [&]() -> Section& { return section == nullptr ? *(section = &file.need({})) : *section; };
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view raw = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    std::string_view line = Trimmed(raw);
    while (!line.empty() && line.back() == '\r') line = Trimmed(line.substr(0, line.size() - 1));
    while (line.starts_with(kByteOrderMark)) line = Trimmed(line.substr(kByteOrderMark.size()));
    if (line.empty()) continue;
    if (line.front() == '[' && line.back() == ']' && line.size() > 1) {
      section = &file.need(Meant(line.substr(1, line.size() - 2)));
      continue;
    }
    const bool remark = line.front() == ';' || line.front() == '#' || line.front() == '[';
    auto entry = remark ? std::nullopt : KeyAndValue(line);
    if (!entry) {
      here().lines.push_back({std::string(line), {}, true});
      file.bytes_ += line.size();
    } else if (Section& in = here();
               in.byKey.try_emplace(base::LowerCase(entry->first), in.lines.size()).second) {
      file.bytes_ += entry->first.size() + entry->second.size();
      in.lines.push_back({std::move(entry->first), std::move(entry->second), false});
    }
  }
  return file;
}

std::string IniFile::format() const {
  std::string out;
  for (const Section& section : sections_) {
    if (!section.name.empty()) {
      if (!out.empty()) out += '\n';
      out += '[' + (PlainText(section.name) ? section.name : Quoted(section.name)) + "]\n";
    }
    for (const Line& line : section.lines) {
      if (line.remark) {
        out += line.key;
      } else {
        out += PlainKey(line.key) ? line.key : Quoted(line.key);
        out += '=';
        out += PlainText(line.value) ? line.value : Quoted(line.value);
      }
      out += '\n';
    }
  }
  return out;
}

const std::string* IniFile::find(std::string_view section, std::string_view key) const {
  const Section* in = look(section);
  if (in == nullptr) return nullptr;
  const auto found = in->byKey.find(base::LowerCase(key));
  return found == in->byKey.end() ? nullptr : &in->lines[found->second].value;
}

void IniFile::set(std::string_view section, std::string_view key, std::string value) {
  Section& in = need(section);
  const auto [found, fresh] = in.byKey.try_emplace(base::LowerCase(key), in.lines.size());
  bytes_ += value.size();
  if (fresh) {
    bytes_ += key.size();
    in.lines.push_back({std::string(key), std::move(value), false});
  } else {
    bytes_ -= in.lines[found->second].value.size();
    in.lines[found->second].value = std::move(value);
  }
}

void IniFile::clear(std::string_view section) {
  const auto found = byName_.find(base::LowerCase(section));
  if (found == byName_.end()) return;
  bytes_ -= found->second->name.size();
  for (const Line& line : found->second->lines) bytes_ -= line.key.size() + line.value.size();
  sections_.erase(found->second);
  byName_.erase(found);
}

std::vector<std::string> IniFile::entries(std::string_view section) const {
  std::vector<std::string> out;
  const Section* in = look(section);
  if (in == nullptr) return out;
  for (const Line& line : in->lines) {
    if (!line.remark) out.push_back(line.key + "=" + line.value);
  }
  return out;
}

}  // namespace standin
