// The covers of albums and of what plays.
#include "standin/covers/DecoderTurn.hpp"
#include "standin/covers/DrawnCover.hpp"
#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

constexpr const char* kForEver = "private, max-age=31536000, immutable";

bool SaysWhich(const WebCall& call) { return call.has("playing") || !call.parameter("album").empty(); }

CoverWish WishOf(const WebCall& call) {
  if (call.has("playing")) return {.playing = true};
  return {.album = call.parameter("album"), .artist = call.parameter("artist")};
}

WebAnswer Picture(Covers& covers, const WebCall& call) {
  const auto size = call.number<int>("size");
  if (!Covers::isSize(size)) return Refusal(400, "A cover comes in the sizes 256 and 1024");
  if (call.has("key")) {
    std::string jpeg = covers.byKey(call.parameter("key"), size);
    if (jpeg.empty()) return Refusal(404, "There is no such cover");
    return {.type = "image/jpeg", .body = std::move(jpeg), .cache = kForEver};
  }
  if (!SaysWhich(call)) return Refusal(400, "Whose cover is asked for?");
  Covers::Cover cover = covers.find(WishOf(call), size);
  if (!cover.key.empty()) return {.type = "image/jpeg", .body = std::move(cover.jpeg)};
  return {.type = "image/svg+xml", .body = DrawnCover(cover.album.empty() ? cover.title : cover.album)};
}

WebAnswer Key(Covers& covers, const WebCall& call) {
  if (!SaysWhich(call)) return Refusal(400, "Whose cover is asked for?");
  const Covers::Cover cover = covers.keyOf(WishOf(call));
  return Told({{"key", cover.key}, {"album", cover.album}, {"artist", cover.artist}, {"title", cover.title}});
}

}  // namespace

Routes CoverRoutes(Covers& covers) {
  const auto with = [&covers](auto answer) {
    return Aside{[&covers, answer](const WebCall& call) -> WebAnswer {
      try {
        return answer(covers, call);
      } catch (const DecodersBusy& busy) {  // pages ask again, and other threads of the web have other work
        return Refusal(503, busy.description());
      }
    }};
  };
  return {{Method::kGet, "/api/cover", Role::kGuest, with(Picture)},
          {Method::kGet, "/api/cover/key", Role::kGuest, with(Key)}};
}

}  // namespace standin
