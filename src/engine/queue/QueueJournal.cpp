#include "engine/queue/QueueJournal.hpp"

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "files/FileError.hpp"
#include "files/ReadFile.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kHeader = "vantorix queue 1\n";
constexpr std::string_view kName = "queue.";
constexpr std::size_t kFrame = 8;                             // length and checksum, before each record
constexpr std::int64_t kMostBytes = std::int64_t{64} << 20U;  // of a whole queue
constexpr std::int64_t kMostChangeBytes = std::int64_t{1} << 20U;
constexpr int kMostChanges = 2000;  // each moves the places of all items behind it when it is read

std::uint32_t Checksum(std::string_view record) {
  return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(record.data()), record.size()));
}

void AddFramed(std::string& text, std::string_view record) {
  const std::uint32_t head[2] = {
      static_cast<std::uint32_t>(record.size()),  // NOLINT(modernize-avoid-c-arrays)
      Checksum(record)};
  text.append(reinterpret_cast<const char*>(head), sizeof head);
  text += record;
}

/// The record at that place; none when it is not all there or is not what was written. Moves on behind it.
std::optional<std::string_view> NextRecord(std::string_view text, std::size_t& at) {
  std::uint32_t head[2];  // NOLINT(modernize-avoid-c-arrays)
  if (text.size() - at < kFrame) return std::nullopt;
  std::memcpy(head, text.data() + at, sizeof head);
  if (head[0] == 0 || text.size() - at - kFrame < head[0]) return std::nullopt;
  const std::string_view record = text.substr(at + kFrame, head[0]);
  if (Checksum(record) != head[1]) return std::nullopt;
  at += kFrame + record.size();
  return record;
}

/// Whether what stands behind the last record may be the beginning of another, or room for one.
bool IsCutRecord(std::string_view rest) {
  std::uint32_t length = 0;
  if (rest.size() < kFrame || rest.find_first_not_of('\0') == std::string_view::npos) return true;
  std::memcpy(&length, rest.data(), sizeof length);
  return rest.size() - kFrame <= length;
}

std::optional<std::uint64_t> NumberOf(const std::string& name) {
  if (name.rfind(kName, 0) != 0 || name.size() > kName.size() + 18) return std::nullopt;
  std::uint64_t number = 0;
  const char* const end = name.data() + name.size();
  const auto read = std::from_chars(name.data() + kName.size(), end, number);
  return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

}  // namespace

QueueJournal::QueueJournal(std::string folder, std::function<void(const std::string&)> message,
                           files::WriteCall write)
    : folder_(std::move(folder)),
      message_(std::move(message)),
      write_(std::move(write)),
      sync_([this](const std::string& reason) {
        message_("What is played may not be known at the next start: " + reason);
      }) {}

std::vector<QueueJournal::Known> QueueJournal::known() const {
  std::vector<Known> all;
  std::error_code failed;
  for (fs::directory_iterator entry(folder_, failed), end; !failed && entry != end; entry.increment(failed)) {
    if (const auto number = NumberOf(entry->path().filename().string()))
      all.push_back({*number, entry->path().string()});
  }
  if (failed && failed != std::errc::no_such_file_or_directory && failed != std::errc::not_a_directory)
    files::FailOn(folder_, failed.value());
  std::sort(all.begin(), all.end(), [](const Known& a, const Known& b) { return a.number > b.number; });
  return all;
}

void QueueJournal::moveAside(const std::string& path, const std::string& why) {
  std::string aside = path + ".damaged";
  for (int number = 2; fs::exists(aside); ++number) aside = path + ".damaged" + std::to_string(number);
  std::error_code failed;
  fs::rename(path, aside, failed);
  message_("The kept queue " + why + (failed ? "" : "; its file was moved to " + aside));
}

bool QueueJournal::read(const Known& known, KeptReplay& replay, std::string& text) {
  std::string problem;
  base::Handled([&] { text = files::ReadFile(known.path, 3 * kMostBytes).text; },
                [&](const base::Failure& failure) { problem = failure.description(); });
  if (!problem.empty()) {
    // It is there for a start that can, unless something else has been played until then.
    message_("The kept queue can't be read: " + problem);
    older_.push_back(known.path);
    unread_ = true;
    return false;
  }
  if (text.compare(0, kHeader.size(), kHeader) != 0) {
    // A kill may have come before there was anything in it.
    if (kHeader.rfind(text, 0) == 0)
      older_.push_back(known.path);
    else
      moveAside(known.path, "is none that this player has written");
    return false;
  }
  std::size_t at = kHeader.size();
  base::Handled(
      [&] {
        while (const auto record = NextRecord(text, at)) {
          replay.apply(*record);
          if (whole_ == 0) whole_ = static_cast<std::int64_t>(at);
        }
      },
      [&](const base::Failure&) {
        replay = KeptReplay();
        at = 0;
      });
  size_ = static_cast<std::int64_t>(at);
  if (at == 0) {
    moveAside(known.path, "is damaged");
    return false;
  }
  // A record that a kill has cut, or lost power, is the last one. Whatever else stands in its place is a
  // damage, and what comes behind it is lost.
  const bool cut = IsCutRecord(std::string_view(text).substr(at));
  if (!replay.any() && cut) {
    older_.push_back(known.path);
    return false;
  }
  if (!cut) moveAside(known.path, replay.any() ? "is damaged: what was changed last is lost" : "is damaged");
  broken_ = !cut;
  return replay.any();
}

std::optional<KeptQueue> QueueJournal::load() {
  std::optional<KeptQueue> kept;
  const std::vector<Known> all = known();
  looked_ = true;
  for (const Known& each : all) {
    number_ = std::max(number_, each.number);
    if (unread_) break;
    if (kept) {
      older_.push_back(each.path);
      continue;
    }
    KeptReplay replay;
    std::string text;
    whole_ = size_ = 0;
    if (!read(each, replay, text)) continue;
    kept = replay.queue();
    changes_ = replay.changes();
    if (broken_) continue;
    path_ = each.path;
    file_ = std::make_shared<files::Descriptor>(::open(path_.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    if (!file_->valid() || ::ftruncate(file_->get(), size_) != 0) broken_ = true;
  }
  return kept;
}

bool QueueJournal::wantsWhole() const {
  return !file_ || broken_ || changes_ >= kMostChanges || size_ - whole_ > whole_ + kMostChangeBytes;
}

void QueueJournal::begin(const KeptQueue& queue) {
  broken_ = true;  // unless it goes well: what is appended from now on belongs to this queue and to no other
  std::string text(kHeader);
  AddFramed(text, EncodedQueue(queue));
  if (static_cast<std::int64_t>(text.size()) > kMostBytes)
    throw base::Failure(base::number::kInvalidArgument, "The list is too long");
  if (!looked_) {  // the start couldn't
    for (const Known& each : known()) {
      number_ = std::max(number_, each.number);
      older_.push_back(each.path);
    }
    looked_ = true;
  }
  files::MakeFolder(folder_, files::kFolderForOwner);
  const std::string path = folder_ + "/" + std::string(kName) + std::to_string(++number_);
  auto file = std::make_shared<files::Descriptor>(
      ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_APPEND | O_CLOEXEC, files::kForOwner));
  if (!file->valid()) throw files::FileFailure(errno, path, "Can't write ");
  try {
    files::WriteAll(file->get(), text, path, write_);
  } catch (...) {
    ::unlink(path.c_str());
    throw;
  }
  if (file_) older_.push_back(path_);
  file_ = std::move(file);
  path_ = path;
  whole_ = size_ = static_cast<std::int64_t>(text.size());
  changes_ = 0;
  broken_ = false;
  sync(std::exchange(older_, {}));
}

void QueueJournal::append(std::string_view record) {
  std::string text;
  AddFramed(text, record);
  try {
    files::WriteAll(file_->get(), text, path_, write_);
  } catch (...) {
    broken_ = true;
    static_cast<void>(::ftruncate(file_->get(), size_) == 0);  // a part of a record is read as none anyway
    throw;
  }
  size_ += static_cast<std::int64_t>(text.size());
  ++changes_;
  sync({});
}

void QueueJournal::sync(std::vector<std::string> after) { sync_.sync({file_, folder_, std::move(after)}); }

}  // namespace engine
