// Measures how long a house of 1,000 albums takes from the end of a spoken sentence until it has done it, all
// of it real processes: sentences are sent while they are "spoken", piece by piece as a page does, and their
// end is told 0.2 s behind the last sound, as somebody lets go of the button. Prints figures; judges none.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "Brief.hpp"
#include "Times.hpp"
#include "ear/Corpus.hpp"
#include "ear/Voices.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using bench::Clock;
using bench::Milliseconds;
using bench::Percentile;
using bench::Sound;
using Json = support::RealHouse::Json;

constexpr std::size_t kRate = 16000;
constexpr std::size_t kPiece = kRate / 4;  // as a page sends them
constexpr std::size_t kLetGo = kRate / 5;

const std::string kPlayAlbum = "Play Album ";

std::vector<std::string> AlbumsOf(const bench::Corpus& corpus) {
  std::vector<std::string> names;
  for (const std::string& pattern : corpus.patterns) {
    if (!pattern.starts_with(kPlayAlbum)) continue;
    std::size_t at = kPlayAlbum.size() + 1;
    while (at < pattern.size()) {
      const std::size_t end = pattern.find_first_of("|)", at);
      names.push_back(pattern.substr(at, end - at));
      at = end + 1;
    }
  }
  return names;
}

std::size_t LengthOf(const std::vector<std::string>& names) {
  std::size_t all = 0;
  for (const std::string& name : names) all += name.size();
  return all;
}

void FillWith(const support::SmallMusic& music, const std::vector<std::string>& albums) {
  for (std::size_t i = 0; i < albums.size(); ++i) {
    engine::TrackTags tags;
    tags.title = "Song " + std::to_string(i);
    tags.artist = "Artist " + std::to_string(i / 10);
    tags.album = albums[i];
    tags.track = 1;
    music.add("song " + std::to_string(i), 1, tags);
  }
}

/// Until the button is let go of.
Sound Held(Sound sound) {
  constexpr int kSilent = 100;
  while (!sound.empty() && std::abs(int{sound.back()}) < kSilent) sound.pop_back();
  sound.resize(sound.size() + kLetGo);
  return sound;
}

class Speaker {
 public:
  explicit Speaker(const support::RealHouse& house)
      : client_(house.client()), origin_({{"Origin", house.url()}}) {
    client_.set_keep_alive(true);
    client_.set_tcp_nodelay(true);
  }

  struct Answer {
    double milliseconds = 0;  ///< from when the button was let go of
    int status = 0;
    Json told;
  };
  /// Takes as long as it takes to speak.
  Answer speak(const Sound& sound) {
    const Json begun = post("/api/voice/listen/begin", "{}", "application/json").told;
    const auto id = begun.value("id", std::uint64_t{0});
    const auto begin = Clock::now();
    for (std::size_t at = 0; at < sound.size(); at += kPiece) {
      const std::size_t count = std::min(kPiece, sound.size() - at);
      std::this_thread::sleep_until(begin + std::chrono::microseconds((at + count) * 1'000'000 / kRate));
      std::string bytes(count * sizeof(std::int16_t), '\0');
      std::memcpy(bytes.data(), sound.data() + at, bytes.size());
      post("/api/voice/listen/more?id=" + std::to_string(id) + "&at=" + std::to_string(at), bytes,
           "audio/l16;rate=16000");
    }
    const auto letGo = begin + std::chrono::microseconds(sound.size() * 1'000'000 / kRate);
    Answer answer =
        post("/api/voice/listen/end", Json{{"id", id}, {"samples", sound.size()}}.dump(), "application/json");
    answer.milliseconds = Milliseconds(Clock::now() - letGo);
    return answer;
  }
  /// The same house without an ear: the command is typed.
  Answer type(const std::string& text) {
    const auto begin = Clock::now();
    Answer answer = post("/api/voice", Json{{"text", text}}.dump(), "application/json");
    answer.milliseconds = Milliseconds(Clock::now() - begin);
    return answer;
  }

 private:
  Answer post(const std::string& path, const std::string& body, const char* type) {
    const auto answer = client_.Post(path, origin_, body, type);
    if (!answer) return {};
    return {.status = answer->status, .told = Json::parse(answer->body, nullptr, false)};
  }

  httplib::Client client_;
  httplib::Headers origin_;
};

void Print(const char* words, const std::vector<double>& times) {
  if (times.empty()) return std::printf("%s: none\n", words), void();
  std::printf("%-44s %3zu: median %6.0f ms, 95%% within %6.0f ms, longest %6.0f ms\n", words, times.size(),
              Percentile(times, 0.5), Percentile(times, 0.95), Percentile(times, 1));
}

int Measure(int albums, std::size_t sentences) {
  const bench::Corpus corpus = bench::CorpusOf(bench::Which::kHeldOut, static_cast<std::size_t>(albums), 140);
  const std::vector<std::string> albumNames = AlbumsOf(corpus);
  const support::SmallMusic music(1);
  FillWith(music, albumNames);
  support::RealHouse house({.music = music.path()});
  if (!house.startReady()) return 1;
  const bool heard = support::Eventually([&] {
    const Json state = Json::parse(house.get("/api/voice"), nullptr, false);
    if (!state.is_object() || state["recogniser"].value("state", "") != "ready") return false;
    const auto all = std::count_if(state["events"].begin(), state["events"].end(), [&](const Json& event) {
      return event.value("length", std::size_t{0}) >= LengthOf(albumNames);
    });
    return all > 0;
  });
  if (!heard) return std::printf("the ear doesn't get ready: %s\n", house.get("/api/voice").c_str()), 1;

  const bench::Voices voices(bench::Which::kHeldOut);
  Speaker speaker(house);
  std::vector<double> done;
  std::vector<double> asked;
  std::vector<double> other;
  std::vector<double> typed;
  std::size_t voice = 0;
  for (const bench::Sentence& each : corpus.inside) {
    if (!each.command.starts_with(kPlayAlbum) || voice >= sentences) continue;
    const Speaker::Answer answer = speaker.speak(Held(voices.say(voice++ % voices.count(), each.said)));
    (answer.status == 200 ? done : answer.status == 409 ? asked : other).push_back(answer.milliseconds);
    typed.push_back(speaker.type(each.command).milliseconds);
  }
  Print("done, from when the button was let go of", done);
  Print("asked back", asked);
  Print("not understood", other);
  Print("the same sentences typed, until done", typed);
  if (!done.empty()) std::printf("ratio: %.1f\n", Percentile(done, 0.5) / Percentile(typed, 0.5));
  return 0;
}

}  // namespace

int main(int count, char** words) {
  const int albums = count > 1 ? std::atoi(words[1]) : bench::Amount(1000, 20);
  return Measure(albums, static_cast<std::size_t>(bench::Amount(60, 2)));
}
