#include "standin/coverservices/DiscCovers.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/Failure.hpp"
#include "pictures/Picture.hpp"
#include "standin/coverservices/DiscContents.hpp"
#include "standin/hostobjects/PublicWeb.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr const char* kFile = "covers.ini";
constexpr const char* kSection = "services";
constexpr std::uint64_t kMostKept = std::uint64_t{64} << 20U;
constexpr std::size_t kLargestAnswer = std::size_t{1} << 20U;
constexpr std::chrono::seconds kPatience{5};      ///< to wait for a turn
constexpr std::chrono::hours kAfterNone{1};       ///< what nobody knows
constexpr std::chrono::minutes kAfterTrouble{1};  ///< what nobody could be asked for, or would answer now
constexpr long kNotFound = 404;
constexpr std::size_t kMostFailed = 1000;
constexpr int kOneSize = 1;  ///< what is kept here comes in one size

/// There is no turn for this question now, and nobody has been asked.
struct NoTurn {};

/// Such as "3f2504e0-4f89-11d3-9a0c-0305e82c3301".
bool IsRelease(const std::string& text) {
  constexpr std::size_t kLength = 36;
  return text.size() == kLength && text.find_first_not_of("0123456789abcdefABCDEF-") == std::string::npos;
}

/// The release that the disc is, before all others one that has a front; empty without one.
std::string ReleaseIn(const std::string& answer) {
  const Json json = ReadJson(answer);
  if (!json.is_object() || !json.contains("releases") || !json["releases"].is_array()) return {};
  std::string first;
  for (const Json& release : json["releases"]) {
    if (!release.is_object() || !release.contains("id") || !release["id"].is_string()) continue;
    auto id = release["id"].get<std::string>();
    if (!IsRelease(id)) continue;
    const auto front = release.find("cover-art-archive");
    if (front != release.end() && front->is_object() && front->value("front", Json()) == true) return id;
    if (first.empty()) first = std::move(id);
  }
  return first;
}

std::string WithoutSlash(std::string address) {
  while (address.ends_with('/')) address.pop_back();
  return address;
}

}  // namespace

DiscCovers::DiscCovers(House& house, std::filesystem::path folder, std::chrono::milliseconds pause)
    : house_(house),
      pause_(pause),
      answers_(std::move(folder), {.disk = kMostKept, .memory = 0}, &CoverShelf::Written) {
  const auto setting = [&](const char* key, const char* otherwise) {
    return house.settings.get(kFile, kSection, key).value_or(otherwise);
  };
  setup_ = {.on = setting("on", "no") == "yes",
            .metadata = WithoutSlash(setting("metadata", "https://musicbrainz.org")),
            .covers = WithoutSlash(setting("covers", "https://coverartarchive.org")),
            .userAgent = "Vantorix-Media-Player/" VANTORIX_VERSION " ( " +
                         setting("contact", "a house of its own") + " )"};
}

bool DiscCovers::on() { return setup().on; }

void DiscCovers::switchTo(bool on) {
  house_.settings.save(kFile, kSection, "on", on ? "yes" : "no");
  const std::lock_guard lock(mutex_);
  setup_.on = on;
  failed_.clear();
}

DiscCovers::Setup DiscCovers::setup() {
  const std::lock_guard lock(mutex_);
  return setup_;
}

bool DiscCovers::wait() {
  const Time now = std::chrono::steady_clock::now();
  std::unique_lock lock(mutex_);
  const Time turn = std::max(now, next_);
  if (turn - now > kPatience) return false;
  next_ = turn + pause_;
  return !ending_.wait_until(lock, turn, [this] { return ended_.load(); });
}

void DiscCovers::end() {
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
  }
  ending_.notify_all();
}

template <class Ask>
std::optional<std::string> DiscCovers::kept(const std::string& question, Ask&& ask) {
  const std::string key = CoverShelf::keyOf(question);
  if (std::optional<std::string> known = answers_.take(key, kOneSize)) return known;
  const Time now = std::chrono::steady_clock::now();
  {
    const std::lock_guard lock(mutex_);
    const auto found = failed_.find(question);
    if (found != failed_.end() && now < found->second) return std::nullopt;
  }
  std::string answer;
  std::chrono::seconds rest = kAfterNone;
  // Nobody is told: without a cover the music plays as well.
  try {
    answer = std::forward<Ask>(ask)();
  } catch (const NoTurn&) {
    return std::nullopt;
  } catch (const RefusedByServer& refusal) {
    if (refusal.status() != kNotFound) rest = kAfterTrouble;
  } catch (const base::Failure&) {
    rest = kAfterTrouble;
  }
  if (!answer.empty()) {
    answers_.put(key, kOneSize, answer);
    return answer;
  }
  const std::lock_guard lock(mutex_);
  if (failed_.size() >= kMostFailed) failed_.clear();
  failed_[question] = std::chrono::steady_clock::now() + rest;
  return std::nullopt;
}

std::optional<std::string> DiscCovers::about(const std::string& contents) {
  const Setup now = setup();
  const std::optional<std::string> toc = TocOf(contents);
  if (!now.on || !toc) return std::nullopt;
  return kept(now.metadata + " " + *toc, [&]() -> std::string {
    if (!wait()) throw NoTurn();
    const std::string release =
        ReleaseIn(FetchPublic(now.metadata + "/ws/2/discid/-?toc=" + *toc + "&cdstubs=no&fmt=json",
                              {.userAgent = now.userAgent, .mostBytes = kLargestAnswer, .stop = &ended_}));
    if (release.empty()) return {};
    return "<METADATA><MDR-CD><largeCoverParams>?large=" + release +
           "</largeCoverParams><smallCoverParams>?small=" + release +
           "</smallCoverParams></MDR-CD></METADATA>";
  });
}

std::optional<std::string> DiscCovers::cover(const std::string& release, bool large) {
  const Setup now = setup();
  if (!now.on || !IsRelease(release)) return std::nullopt;
  const std::string address = now.covers + "/release/" + release + (large ? "/front-1200" : "/front-250");
  return kept(address, [&]() -> std::string {
    if (!wait()) throw NoTurn();
    std::string picture = FetchPublic(
        address, {.userAgent = now.userAgent, .mostBytes = pictures::kMostBytes, .stop = &ended_});
    return pictures::CanBeShown(picture) ? std::move(picture) : std::string();
  });
}

}  // namespace standin
