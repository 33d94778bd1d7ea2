#include "engine/scan/Scanner.hpp"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "base/Failure.hpp"
#include "engine/common/GiveBack.hpp"
#include "engine/scan/TagReader.hpp"

namespace engine {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kBatch = 256;
constexpr auto kFlushInterval = 250ms;

bool IsBelow(const std::string& path, const std::string& folder) {
  return path.size() > folder.size() && path[folder.size()] == '/' &&
         path.compare(0, folder.size(), folder) == 0;
}

void Wake(const files::Descriptor& wake) {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = ::write(wake.get(), &one, sizeof one);
}

}  // namespace

Scanner::Scanner(Settings settings, std::unique_ptr<LibraryStore> store, const std::vector<FileRecord>& known,
                 Deliver deliver)
    : settings_(std::move(settings)),
      store_(std::move(store)),
      deliver_(std::move(deliver)),
      lastFlush_(std::chrono::steady_clock::now()),
      wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  for (const FileRecord& record : known) {
    known_.put(record.path, {record.stamp, 0, record.added});
  }
  for (const std::string& path : settings_.roots) roots_.push_back({path});
  thread_ = std::thread([this] { run(); });
}

Scanner::~Scanner() {
  stopping_ = true;
  Wake(wake_);
  thread_.join();
}

void Scanner::remember(FileRecord record) {
  {
    const std::lock_guard lock(mutex_);
    toRemember_.push_back(std::move(record));
  }
  Wake(wake_);
}

void Scanner::run() {
  pool_ = std::make_unique<TagPool>(settings_.reading);
  scanAll();
  pool_.reset();
  GiveBackMemory();
  while (!stopping_) wait();
  takeAdded();
  flush();
}

void Scanner::wait() {
  std::array<pollfd, 2> waited{{{wake_.get(), POLLIN, 0}, {watch_.descriptor(), POLLIN, 0}}};
  const bool missing = !away_.empty() || std::any_of(roots_.begin(), roots_.end(),
                                                     [](const Root& root) { return !root.usable; });
  ::poll(waited.data(), waited.size(), missing ? static_cast<int>(settings_.retry.count()) : -1);
  if (stopping_) return;

  std::uint64_t count = 0;
  [[maybe_unused]] const auto got = ::read(wake_.get(), &count, sizeof count);
  takeAdded();

  std::set<std::string> changed;
  bool complete = watch_.read(changed);
  const auto limit = std::chrono::steady_clock::now() + settings_.quiet * 8;
  pollfd more{watch_.descriptor(), POLLIN, 0};
  while (!stopping_ && (!changed.empty() || !complete) && std::chrono::steady_clock::now() < limit &&
         ::poll(&more, 1, static_cast<int>(settings_.quiet.count())) > 0) {
    complete = watch_.read(changed) && complete;
  }

  std::map<std::string, bool> wasUsable;
  for (const Root& root : roots_) wasUsable[root.path] = root.usable;
  pool_ = std::make_unique<TagPool>(settings_.reading);
  if (!complete) {
    scanAll();
  } else {
    for (const std::string& folder : changed) lookAgain(folder);
    bool back = anyBack();
    for (Root& root : roots_) {
      if (wasUsable[root.path]) continue;
      if (!root.usable) scanRoot(root);
      back = back || root.usable;
    }
    if (back) {
      scanAll();
    } else {
      finishReading();
    }
  }
  pool_.reset();
}

void Scanner::takeAdded() {
  std::vector<FileRecord> added;
  {
    const std::lock_guard lock(mutex_);
    added.swap(toRemember_);
  }
  for (FileRecord& record : added) {
    known_.put(record.path, {record.stamp, scan_, record.added});
    pending_.changed.push_back(std::move(record));
  }
}

void Scanner::scanAll() {
  ++scan_;
  unreadable_.clear();
  for (Root& root : roots_) {
    if (!stopping_) scanRoot(root);
  }
  finishReading();
  if (stopping_) return;
  removeUnseen();
  pending_.scanComplete = true;
  flush();
}

void Scanner::scanRoot(Root& root) {
  FolderListing listing;
  try {
    listing = ListFolder(root.path);
  } catch (const base::Failure& failure) {
    keepRoot(root, failure.description());
    return;
  }
  // An emptied folder looks like one whose disc is not mounted, unless we have seen this very one in use.
  const std::size_t met = walk(root.path, listing.identity);
  if (met == 0 && root.identity != listing.identity && known_.countBelow(root.path) > 0 && !stopping_) {
    keepRoot(root, SafeName(root.path) + " is empty, perhaps not mounted");
    return;
  }
  root.usable = true;
  root.told = false;
  root.identity = listing.identity;
}

void Scanner::keepRoot(Root& root, const std::string& reason) {
  root.usable = false;
  watch_.forgetTree(root.path);
  if (root.told) return;
  root.told = true;
  const std::size_t kept = known_.countBelow(root.path);
  pending_.messages.push_back(
      "The music folder can't be read: " + reason +
      (kept > 0 ? "; its " + std::to_string(kept) + " files stay in the library" : ""));
}

void Scanner::noteMounts(const FolderListing& listing) {
  for (const ListedFolder& sub : listing.folders) {
    if (sub.identity.first != listing.identity.first) mounts_.insert(sub.path);
  }
}

bool Scanner::perhapsNotMounted(const std::string& folder, const FolderListing& listing) {
  if (!listing.files.empty() || !listing.folders.empty() || !listing.unreachable.empty()) return false;
  return mounts_.contains(folder) && known_.countBelow(folder) > 0;
}

void Scanner::keepFolder(const std::string& folder) {
  unreadable_.push_back(folder);
  watch_.forgetTree(folder);
  if (!away_.insert(folder).second) return;
  pending_.messages.push_back("The folder " + SafeName(folder) + " is empty, perhaps not mounted; its " +
                              std::to_string(known_.countBelow(folder)) + " files stay in the library");
}

bool Scanner::anyBack() {
  return std::erase_if(away_, [&](const std::string& folder) {
           try {
             const FolderListing listing = ListFolder(folder);
             return !perhapsNotMounted(folder, listing);
           } catch (const base::Failure& failure) {
             return failure.number() == base::number::kPathNotFound;
           }
         }) > 0;
}

std::size_t Scanner::walk(const std::string& folder, const FolderIdentity& identity) {
  std::size_t met = 0;
  std::vector<ListedFolder> open{{folder, identity}};
  while (!open.empty() && !stopping_) {
    const auto [current, currentIdentity] = std::move(open.back());
    open.pop_back();
    try {
      if (!claim(currentIdentity, current)) continue;
      watch(current);  // before it is read, so that nothing falls between
      FolderListing listing = ListFolder(current);
      noteMounts(listing);
      if (perhapsNotMounted(current, listing)) keepFolder(current);
      for (std::string& path : listing.unreachable) {
        pending_.messages.push_back(SafeName(path) + " can't be reached");
        unreadable_.push_back(std::move(path));
      }
      visit(listing);
      met += listing.files.size();
      std::move(listing.folders.rbegin(), listing.folders.rend(), std::back_inserter(open));
    } catch (const base::Failure& failure) {
      unreadable_.push_back(current);
      if (current != folder && failure.number() != base::number::kPathNotFound) {
        pending_.messages.push_back("A folder can't be read: " + failure.description());
      }
    }
    collect(0ms);
  }
  return met;
}

void Scanner::watch(const std::string& folder) {
  if (!settings_.watch || watch_.add(folder) || watchesShort_) return;
  watchesShort_ = true;
  pending_.messages.emplace_back(
      "Some folders can't be watched: changes of the music in them are only seen at the next start");
}

bool Scanner::claim(const FolderIdentity& identity, const std::string& folder) {
  const auto [place, fresh] = folders_.try_emplace(identity, folder);
  if (fresh || place->second == folder) return true;
  try {
    if (IdentityOf(place->second) == identity) return false;
  } catch (const base::Failure&) {  // the other path leads nowhere any more
  }
  place->second = folder;
  return true;
}

void Scanner::lookAgain(const std::string& folder) {
  Root* root = rootOf(folder);
  if (root == nullptr || stopping_) return;
  FolderListing listing;
  try {
    listing = ListFolder(folder);
  } catch (const base::Failure& failure) {
    if (folder == root->path) keepRoot(*root, failure.description());
    return;  // below a root, the folder above tells of its end
  }
  if (folder == root->path && listing.identity != root->identity) {
    scanRoot(*root);
    return;
  }
  if (folder != root->path && perhapsNotMounted(folder, listing)) {
    keepFolder(folder);
    return;
  }
  noteMounts(listing);
  std::set<std::string> present(listing.unreachable.begin(), listing.unreachable.end());
  for (const ListedFile& file : listing.files) present.insert(file.path);
  visit(listing);
  for (const ListedFolder& sub : listing.folders) {
    present.insert(sub.path);
    if (!watch_.covers(sub.path)) walk(sub.path, sub.identity);
  }
  std::vector<std::string> gone;
  const std::string below = folder + '/';
  known_.forEachBelow(folder, [&](const std::string& path, const KnownFiles::File& known) {
    const std::string entry = path.substr(0, path.find('/', below.size()));
    if (present.contains(entry) || known.added) return;
    gone.push_back(path);
    if (entry != path) watch_.forgetTree(entry);
  });
  for (const std::string& path : gone) remove(path);
}

void Scanner::visit(const FolderListing& listing) {
  for (const ListedFile& file : listing.files) {
    if (KnownFiles::File* known = known_.find(file.path)) {
      known->scan = scan_;
      if (known->stamp == file.stamp) continue;
    }
    const auto slow = slow_.find(file.path);
    if (slow != slow_.end() && slow->second == file.stamp) continue;
    FileRecord record;
    record.path = file.path;
    record.stamp = file.stamp;
    pool_->submit(std::move(record), listing.identity.first);
  }
}

void Scanner::removeUnseen() {
  std::vector<std::string> gone;
  known_.forEach([&](const std::string& path, const KnownFiles::File& known) {
    if (known.scan == scan_ || known.added) return;
    const Root* root = rootOf(path);
    if (root != nullptr && !root->usable) return;
    const bool hidden = std::any_of(unreadable_.begin(), unreadable_.end(),
                                    [&](const std::string& folder) { return IsBelow(path, folder); });
    if (!hidden) gone.push_back(path);
  });
  for (const std::string& path : gone) remove(path);
}

void Scanner::remove(const std::string& path) {
  known_.erase(path);
  pending_.removed.push_back(path);
}

Scanner::Root* Scanner::rootOf(const std::string& path) {
  const auto found = std::find_if(roots_.begin(), roots_.end(), [&](const Root& root) {
    return path == root.path || IsBelow(path, root.path);
  });
  return found != roots_.end() ? &*found : nullptr;
}

void Scanner::collect(std::chrono::milliseconds limit) {
  for (TagResult& result : pool_->collect(limit)) {
    if (!result.complaint.empty()) pending_.messages.push_back(std::move(result.complaint));
    switch (result.outcome) {
      case TagResult::Outcome::kGone: remove(result.record.path); break;
      case TagResult::Outcome::kUnreadable: break;  // looked at again next time
      case TagResult::Outcome::kSlow: slow_[result.record.path] = result.record.stamp; break;
      case TagResult::Outcome::kRead:
      case TagResult::Outcome::kNoMedia:
        known_.put(result.record.path, {result.record.stamp, scan_, false});
        pending_.changed.push_back(std::move(result.record));
    }
  }
  if (pending_.changed.size() >= kBatch || std::chrono::steady_clock::now() - lastFlush_ > kFlushInterval)
    flush();
}

void Scanner::finishReading() {
  while (pool_->outstanding() > 0 && !stopping_) collect(50ms);
  flush();
}

void Scanner::flush() {
  lastFlush_ = std::chrono::steady_clock::now();
  if (pending_.changed.empty() && pending_.removed.empty() && pending_.messages.empty() &&
      !pending_.scanComplete) {
    return;
  }
  try {
    if (!pending_.changed.empty() || !pending_.removed.empty())
      store_->apply(pending_.changed, pending_.removed);
  } catch (const base::Failure& failure) {
    pending_.messages.push_back("The library's index can't be written: " + failure.description());
  }
  deliver_(std::exchange(pending_, {}));
}

}  // namespace engine
