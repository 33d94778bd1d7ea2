#include "standin/settings/SettingsJournal.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <utility>

#include "files/FileError.hpp"
#include "files/WriteFile.hpp"

namespace standin {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20U;  ///< what is read at once

std::string Escaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\t': out += "\\t"; break;
      default: out += c;
    }
  }
  return out;
}

std::string Unescaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const char next = text[++i];
    out += next == 'n' ? '\n' : next == 't' ? '\t' : next;
  }
  return out;
}

std::string CheckSum(std::string_view text) {
  std::uint64_t sum = 14695981039346656037ULL;  // FNV-1a
  for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
  std::string out(16, '0');
  for (std::size_t i = 0; i < out.size(); ++i) out[15 - i] = "0123456789abcdef"[(sum >> (4 * i)) & 15U];
  return out;
}

}  // namespace

SettingsJournal::SettingsJournal(std::filesystem::path path)
    : path_(std::move(path)), file_(::open(path_.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
  if (!file_.valid()) throw files::FileFailure(errno, path_, "Can't write ");
  size_ = static_cast<std::size_t>(std::max<off_t>(0, ::lseek(file_.get(), 0, SEEK_END)));
}

std::string SettingsJournal::lineOf(const SettingChange& change) {
  std::string line = change.kind == SettingChange::Kind::kSet ? "set" : "clear";
  for (const std::string* field : {&change.file, &change.section, &change.key, &change.value}) {
    line += '\t' + Escaped(*field);
  }
  return line + '\t' + CheckSum(line) + '\n';
}

bool SettingsJournal::readLine(std::string_view line, SettingChange& change) {
  const std::size_t last = line.rfind('\t');
  if (last == std::string_view::npos || line.substr(last + 1) != CheckSum(line.substr(0, last))) return false;
  line = line.substr(0, last);
  std::array<std::string_view, 5> fields;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::size_t end = line.find('\t');
    if ((end == std::string_view::npos) != (i + 1 == fields.size())) return false;
    fields[i] = line.substr(0, end);
    if (end != std::string_view::npos) line.remove_prefix(end + 1);
  }
  if (fields[0] != "set" && fields[0] != "clear") return false;
  change.kind = fields[0] == "set" ? SettingChange::Kind::kSet : SettingChange::Kind::kClear;
  change.file = Unescaped(fields[1]);
  change.section = Unescaped(fields[2]);
  change.key = Unescaped(fields[3]);
  change.value = Unescaped(fields[4]);
  return true;
}

void SettingsJournal::replay(const std::function<void(const SettingChange&)>& apply) {
  std::string piece(kPiece, '\0');
  std::string line;  // as far as it has been read
  bool tooLong = false;
  std::size_t read = 0;
  std::size_t whole = 0;  // where the last whole line ends
  for (;;) {
    const ssize_t got = ::pread(file_.get(), piece.data(), piece.size(), static_cast<off_t>(read));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw files::FileFailure(errno, path_, "Can't read ");
    if (got == 0) break;
    read += static_cast<std::size_t>(got);
    for (auto rest = std::string_view(piece).substr(0, static_cast<std::size_t>(got)); !rest.empty();) {
      const std::size_t end = std::min(rest.find('\n'), rest.size());
      tooLong = tooLong || line.size() + end > kLongestLine;
      if (!tooLong) line += rest.substr(0, end);
      if (end == rest.size()) break;
      rest.remove_prefix(end + 1);
      whole = read - rest.size();
      SettingChange change;
      if (!tooLong && readLine(line, change)) apply(change);
      line.clear();
      tooLong = false;
    }
  }
  torn_ = read != whole;
  size_ = whole;
}

void SettingsJournal::sync() {
  if (::fsync(file_.get()) != 0) throw files::FileFailure(errno, path_, "Can't write ");
}

void SettingsJournal::append(const SettingChange& change) {
  const std::string line = lineOf(change);
  cutWhatIsTorn();
  torn_ = true;
  files::WriteAll(file_.get(), line, path_);
  torn_ = false;
  size_ += line.size();
}

void SettingsJournal::cutWhatIsTorn() {
  if (torn_ && ::ftruncate(file_.get(), static_cast<off_t>(size_)) != 0)
    throw files::FileFailure(errno, path_, "Can't write ");
  torn_ = false;
}

void SettingsJournal::empty() {
  if (::ftruncate(file_.get(), 0) != 0) throw files::FileFailure(errno, path_, "Can't write ");
  size_ = 0;
  torn_ = false;
}

}  // namespace standin
