// The services of covers that the house offers to its own player, and their switch.
#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

/// What the player of this machine asks for comes without a session, and from nowhere else.
bool IsFromHere(const WebCall& call, const std::string& own) {
  return call.peer == own || call.peer == "::1" || call.peer.starts_with("127.") ||
         call.peer.starts_with("::ffff:127.");
}

WebAnswer About(DiscCovers& discs, const WebCall& call) {
  const std::optional<std::string> text = discs.about(call.parameter("cd"));
  if (!text) return Refusal(404, "Nothing is known of this disc");
  return {.type = "text/xml; charset=utf-8", .body = *text};
}

WebAnswer Picture(DiscCovers& discs, const WebCall& call) {
  const bool large = call.has("large");
  std::optional<std::string> picture = discs.cover(call.parameter(large ? "large" : "small"), large);
  if (!picture) return Refusal(404, "There is no such cover");
  return {.type = "application/octet-stream", .body = std::move(*picture)};
}

}  // namespace

Routes CoverServiceRoutes(DiscCovers& discs, const std::string& own) {
  const auto here = [&discs, own](auto answer) {
    return Aside{[&discs, own, answer](const WebCall& call) {
      if (!IsFromHere(call, own)) return Refusal(403, "This is for the player of this machine");
      return answer(discs, call);
    }};
  };
  const Now tell{[&discs](const WebCall&) { return Told({{"on", discs.on()}}); }};
  const Now change{[&discs](const WebCall& call) {
    discs.switchTo(call.json.at("on").get<bool>());
    return WebAnswer();
  }};
  return {{Method::kGet, "/redir/GetMDRCD.asp", Role::kAnyone, here(About)},
          {Method::kGet, "/cover/", Role::kAnyone, here(Picture)},
          {Method::kGet, "/api/covers/services", Role::kOwner, tell},
          {Method::kPost, "/api/covers/services", Role::kOwner, change}};
}

}  // namespace standin
