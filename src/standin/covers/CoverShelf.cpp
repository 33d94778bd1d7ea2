#include "standin/covers/CoverShelf.hpp"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <vector>

#include "base/Failure.hpp"
#include "files/ReadFile.hpp"
#include "files/WriteFile.hpp"

namespace standin {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kKeyLength = 32;
constexpr std::int64_t kLargestFile = std::int64_t{16} << 20U;

/// How far the order of use may be wrong after a start.
constexpr std::chrono::hours kNoted{24};

/// The time of the file tells the next start when it was last looked at.
void NoteUse(const fs::path& file) {
  std::error_code ignored;
  const fs::file_time_type now = fs::file_time_type::clock::now();
  if (now - fs::last_write_time(file, ignored) > kNoted) fs::last_write_time(file, now, ignored);
}

std::string NameOf(const std::string& key, int size) { return key + "-" + std::to_string(size) + ".jpg"; }

}  // namespace

void CoverShelf::Written(const std::string& path, const std::string& bytes) {
  files::WriteFile(path, bytes, {.mode = files::kForOwner});
}

std::string CoverShelf::ReadBack(const std::string& path) { return files::ReadFile(path, kLargestFile).text; }

CoverShelf::CoverShelf(fs::path folder, Limits limits, Write write, Read read)
    : folder_(std::move(folder)), limits_(limits), write_(std::move(write)), read_(std::move(read)) {
  files::ClearLeftovers(folder_);
  std::error_code problem;
  std::vector<std::pair<fs::file_time_type, fs::directory_entry>> found;
  for (const auto& entry : fs::directory_iterator(folder_, problem)) {
    std::error_code ignored;
    if (entry.path().extension() == ".jpg" && entry.is_regular_file(ignored))
      found.emplace_back(entry.last_write_time(ignored), entry);
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [time, entry] : found) {
    std::error_code gone;
    const std::uintmax_t bytes = entry.file_size(gone);
    if (!gone) know(entry.path().filename().string(), bytes);
  }
}

bool CoverShelf::isKey(const std::string& text) {
  return text.size() == kKeyLength && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

std::string CoverShelf::keyOf(const std::string& picture) {
  std::array<unsigned char, kKeyLength / 2> hash{};
  crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char*>(picture.data()),
                     picture.size(), nullptr, 0);
  std::array<char, kKeyLength + 1> text{};
  sodium_bin2hex(text.data(), text.size(), hash.data(), hash.size());
  return text.data();
}

bool CoverShelf::has(const std::string& key, int size) {
  const std::lock_guard lock(mutex_);
  const std::string name = NameOf(key, size);
  return entries_.count(name) != 0 ||
         std::any_of(held_.begin(), held_.end(), [&](const Held& each) { return each.name == name; });
}

std::optional<std::string> CoverShelf::take(const std::string& key, int size) {
  const std::string name = NameOf(key, size);
  {
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(name);
    if (found != entries_.end()) turns_.splice(turns_.begin(), turns_, found->second.turn);
    const auto held =
        std::find_if(held_.begin(), held_.end(), [&](const Held& each) { return each.name == name; });
    if (held != held_.end()) {
      held_.splice(held_.begin(), held_, held);
      return held_.front().bytes;
    }
    if (found == entries_.end()) return std::nullopt;
  }
  // Outside of the lock: a disk may take its time, and others only want to know what is here.
  const fs::path file = folder_ / name;
  try {
    std::string bytes = read_(file.string());
    NoteUse(file);
    const std::lock_guard lock(mutex_);
    hold(name, bytes);
    // Somebody may have changed the file, or taken it away meanwhile.
    if (const auto known = entries_.find(name); known != entries_.end()) {
      used_ += bytes.size() - known->second.bytes;
      known->second.bytes = bytes.size();
    }
    return bytes;
  } catch (const base::Failure&) {
    std::error_code unknown;
    const bool there = fs::exists(file, unknown);
    const std::lock_guard lock(mutex_);
    if (!there) forget(name);  // somebody has cleared the folder
    return std::nullopt;
  }
}

void CoverShelf::put(const std::string& key, int size, const std::string& bytes) {
  const std::string name = NameOf(key, size);
  {
    const std::lock_guard lock(mutex_);
    hold(name, bytes);
  }
  try {
    // Outside of the lock: a disk may take its time. Two who write the same write the same bytes.
    files::MakeFolder(folder_);
    write_((folder_ / name).string(), bytes);
  } catch (const base::Failure&) {
    return;
  }
  const std::lock_guard lock(mutex_);
  know(name, bytes.size());
  makeRoom();
}

std::uint64_t CoverShelf::used() {
  const std::lock_guard lock(mutex_);
  return used_;
}

void CoverShelf::know(const std::string& name, std::uint64_t bytes) {
  forget(name);
  turns_.push_front(name);
  entries_[name] = {bytes, turns_.begin()};
  used_ += bytes;
}

void CoverShelf::forget(const std::string& name) {
  const auto found = entries_.find(name);
  if (found == entries_.end()) return;
  used_ -= found->second.bytes;
  turns_.erase(found->second.turn);
  entries_.erase(found);
}

void CoverShelf::hold(const std::string& name, const std::string& bytes) {
  if (bytes.size() > limits_.memory) return;
  const auto same =
      std::find_if(held_.begin(), held_.end(), [&](const Held& each) { return each.name == name; });
  if (same != held_.end()) {
    heldBytes_ -= same->bytes.size();
    held_.erase(same);
  }
  held_.push_front({name, bytes});
  heldBytes_ += bytes.size();
  while (heldBytes_ > limits_.memory) {
    heldBytes_ -= held_.back().bytes.size();
    held_.pop_back();
  }
}

void CoverShelf::makeRoom() {
  while (used_ > limits_.disk && !turns_.empty()) {
    const std::string oldest = turns_.back();
    std::error_code ignored;
    fs::remove(folder_ / oldest, ignored);
    forget(oldest);
  }
}

}  // namespace standin
