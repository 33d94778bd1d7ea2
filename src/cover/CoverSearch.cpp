#include "cover/CoverSearch.hpp"

#include <algorithm>

namespace cover {

using base::Failure;

namespace {

constexpr std::int16_t kHttpPort = 80;
constexpr std::size_t kShortestAnswer = 50;
constexpr std::size_t kShortestImage = 500;
/// The 39 characters of the service's own address, and at least four more.
constexpr std::size_t kShortestAddress = 43;
constexpr std::size_t kMarkerLength = 18;

/// What stands between a marker and the next "<", put behind the service's address. A marker that is missing
/// is not noticed: its place is 0 then, and the text begins with the eighteenth character of the answer.
std::string AddressBehind(const std::string& marker, const std::string& answer, const std::string& service) {
  const std::size_t at = answer.find(marker);
  const std::size_t place = at == std::string::npos ? 0 : at + 1;  // from 1 on, as the rest counts
  const std::size_t begin = std::min(place + kMarkerLength - 1, answer.size());
  const std::size_t end = answer.find('<', begin);
  if (end == std::string::npos)
    throw Failure(base::number::kInvalidArgument, "Invalid procedure call or argument");
  return service + answer.substr(begin, end - begin);
}

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// The address with its scheme in such letters: the large cover is asked for in capitals, the small one is
/// not.
std::string WithScheme(std::string address, char (*letter)(char)) {
  const auto end = address.begin() + static_cast<std::ptrdiff_t>(std::min(address.find(':'), address.size()));
  std::transform(address.begin(), end, address.begin(), letter);
  return address;
}

}  // namespace

void CoverSearch::log(const char* text) {
  step_([&] { in_.loggers.Debug(std::string(plugin::kName) + text); });
}

std::string CoverSearch::info(const std::string& attribute) {
  std::string value;
  step_([&] { value = in_.form.currentMedia()->getItemInfo(attribute); });
  return value;
}

std::string CoverSearch::pictureUrl() {
  std::string url;
  step_([&] { url = in_.form.currentMedia()->getItemInfoByType("WM/Picture", "", 0).url; });
  return url;
}

void CoverSearch::GetCoverImage() {
  step_.clear();
  Pictures found;
  if (!embedded(found) && !local(found) && !remote(found)) {
    step_([&] { in_.files.remove(in_.state.CoverLargeFile); });
    step_([&] { in_.files.remove(in_.state.CoverSmallFile); });
  }
  show(found);
  step_.clear();
}

bool CoverSearch::embedded(Pictures& found) {
  log(": Locating embedded cover art");
  const std::string url = pictureUrl();
  if (url.empty()) {
    log(": No embedded picture found");
    return false;
  }
  const auto fetch = [&](const std::string& from, const std::string& file, Picture& picture) {
    step_([&] { in_.files.remove(file); });
    step_([&] { in_.files.download(from, file); });
    step_([&] { picture = in_.files.load(file); });
  };
  fetch(url, in_.state.CoverSmallFile, found.small);
  // Asked again: the one picture serves as both sizes.
  fetch(pictureUrl(), in_.state.CoverLargeFile, found.large);
  if (found.large.valid() && found.small.valid()) return true;
  log(": Embedded picture failed");
  return false;
}

bool CoverSearch::local(Pictures& found) {
  log(": Locating local cover art");
  found = {};
  step_([&] { in_.files.makeFolder(in_.host.GetAppPath() + R"(\html\images\Media Player)"); });
  step_.clear();
  const std::string collection = info("WM/WMCollectionID");
  if (collection.empty()) {
    log(": No Album ID# found");
    return false;
  }
  const std::string source = info("SourceURL");
  const std::size_t folder = source.rfind('\\');
  if (folder == std::string::npos) return false;
  const std::string base = source.substr(0, folder + 1) + "AlbumArt_" + collection;

  step_([&] { found.large = in_.files.load(base + "_Large.jpg"); });
  if (step_.failed() || !found.large.valid()) {
    log(": No local file found");
    return false;
  }
  step_([&] { in_.files.remove(in_.state.CoverLargeFile); });
  step_.clear();
  step_([&] { in_.files.copy(base + "_Large.jpg", in_.state.CoverLargeFile); });
  // Whether that could be copied counts as well: a failure is still pending below.
  step_([&] { found.small = in_.files.load(base + "_Small.jpg"); });
  if (step_.failed() || !found.small.valid()) return false;
  step_([&] { in_.files.remove(in_.state.CoverSmallFile); });
  step_.clear();
  step_([&] { in_.files.copy(base + "_Small.jpg", in_.state.CoverSmallFile); });
  return true;
}

std::string CoverSearch::metadata() {
  std::string answer;
  step_([&] {
    answer = in_.host.GetUrl(services_.metadata,
                             "/redir/GetMDRCD.asp?locale=409&version=" + in_.form.wmp9().versionInfo() +
                                 "&cd=" + in_.form.currentMedia()->getItemInfo("WM/MCDI"),
                             false, kHttpPort);
  });
  step_([&] { in_.host.WaitEvents(); });
  return answer;
}

bool CoverSearch::remote(Pictures& found) {
  log(": Locating remote cover art");
  step_.clear();
  const std::string disc = info("WM/MCDI");
  bool online = false;
  step_([&] { online = in_.form.wmp9().isOnline(); });
  online = online && !services_.metadata.empty() && !services_.cover.empty();
  if (disc.empty() || !online) {
    log(disc.empty() ? ": No album ID# found" : ": No network connection");
    return false;
  }
  std::string answer = metadata();
  // A failure gets no second try.
  if (!step_.failed() && answer.size() < kShortestAnswer) answer = metadata();
  if (step_.failed() || answer.size() < kShortestAnswer) {
    log("Could not find website");
    return false;
  }
  if (!remoteLarge(answer, found)) return false;
  return remoteSmall(answer, found);
}

bool CoverSearch::remoteLarge(const std::string& answer, Pictures& found) {
  std::string url;
  step_([&] { url = AddressBehind("<largeCoverParams>", answer, WithScheme(services_.cover, Upper)); });
  if (step_.failed() || url.size() < kShortestAddress) {
    log("Could not find image location");
    return false;
  }
  std::string image;
  step_([&] { image = in_.host.GetUrl(url, "", false, kHttpPort); });
  step_([&] { in_.host.WaitEvents(); });
  if (image.size() < kShortestImage) {
    log("Could not find image");
    return false;
  }
  step_([&] { in_.files.overwrite(in_.state.CoverLargeFile, image); });
  step_([&] { found.large = in_.files.load(in_.state.CoverLargeFile); });
  if (step_.failed() || !found.large.valid()) {
    log("Could not save image");
    return false;
  }
  return true;
}

bool CoverSearch::remoteSmall(const std::string& answer, Pictures& found) {
  std::string url;
  step_([&] { url = AddressBehind("<smallCoverParams>", answer, WithScheme(services_.cover, Lower)); });
  // Longer than 43 and longer than 500 characters: for the large cover just as many do.
  if (step_.failed() || url.size() <= kShortestAddress) return false;
  std::string image;
  step_([&] { image = in_.host.GetUrl(url, "", false, kHttpPort); });
  step_([&] { in_.host.WaitEvents(); });
  if (image.size() <= kShortestImage) return false;
  step_([&] { in_.files.overwrite(in_.state.CoverSmallFile, image); });
  step_([&] { found.small = in_.files.load(in_.state.CoverSmallFile); });
  return found.small.valid();
}

void CoverSearch::show(const Pictures& found) {
  if (found.large.valid()) {
    step_([&] { in_.popup.image(found.large.bytes); });
    step_([&] { in_.popup.windowHeight(player::MediaStatus::kHeightWithCover); });
    step_([&] { in_.popup.LayoutControls(); });
    log(": Found cover art");
  } else {
    log(": Unable to retrieve cover art");
  }
  if (found.small.valid()) {
    step_([&] {
      in_.host.SetDeviceStringByName(
          plugin::DeviceName("Album"),
          in_.state.CoverSmallTag + "<br>" + in_.form.currentMedia()->getItemInfo("Album"), true);
    });
  }
}

}  // namespace cover
