#include "standin/http/WebApi.hpp"

#include <memory>

#include "base/Failure.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {
namespace {

constexpr const char* kScripts = "/api/";  // below it are answers for scripts, everything else is a page
constexpr const char* kRest = "/*";

}  // namespace

WebApi::WebApi(Visitors& visitors, LoopGate& gate, Routes routes)
    : visitors_(visitors), gate_(gate), routes_(std::move(routes)) {
  for (const Route& route : routes_) {
    if (!byAddress_.try_emplace({route.method, route.path}, &route).second)
      throw base::Failure(base::number::kKeyInUse, "Two lines of the table are for " + route.path);
  }
}

const Route* WebApi::find(Method method, const std::string& path) const {
  auto found = byAddress_.find({method, path});
  if (found == byAddress_.end() && !path.starts_with(kScripts)) found = byAddress_.find({method, kRest});
  return found == byAddress_.end() ? nullptr : found->second;
}

WebAnswer WebApi::signIn() const {
  const bool byKey = visitors_.byKey();
  WebAnswer answer =
      Told({{"error", byKey ? kWayByKey : "Please sign in"}, {"way", byKey ? "key" : "password"}});
  answer.status = 401;
  return answer;
}

std::optional<WebAnswer> WebApi::admit(const Route& route, WebCall& call) {
  const std::optional<User> user = visitors_.of(call.token);
  if (user) call.user = *user;
  if (route.role == Role::kAnyone) return std::nullopt;
  if (!user) return signIn();
  if (route.role == Role::kOwner && user->guest) return Refusal(403, route.refused);
  return std::nullopt;
}

std::optional<WebAnswer> WebApi::refusal(const Route& route, const std::string& token) {
  if (route.role == Role::kAnyone) return std::nullopt;
  return letIn(route, token, [](const User&) {});
}

std::optional<WebAnswer> WebApi::letIn(const Route& route, const std::string& token,
                                       std::function<void(const User& user)> work) {
  const auto call = std::make_shared<WebCall>();
  call->token = token;
  const auto refused = std::make_shared<std::optional<WebAnswer>>();
  WebAnswer asked = AskLoop(gate_, [this, &route, call, refused, work = std::move(work)](const Reply& reply) {
    *refused = admit(route, *call);
    if (!*refused) work(call->user);
    reply({});
  });
  if (asked.status != 200) return asked;
  return *refused;
}

std::optional<User> WebApi::visitor(const std::string& token) {
  const auto user = std::make_shared<std::optional<User>>();
  const WebAnswer asked = AskLoop(gate_, [this, token, user](const Reply& reply) {
    *user = visitors_.of(token);
    reply({});
  });
  return asked.status == 200 ? *user : std::nullopt;
}

WebAnswer WebApi::answer(const Route& route, WebCall given) {
  // The loop may still be at work on it when nobody waits for it here any more.
  const auto call = std::make_shared<WebCall>(std::move(given));
  const bool fields =
      route.method == Method::kPost && route.path.starts_with(kScripts) && route.type == Route::kJson;
  if (fields) call->json = ReadJson(call->body.empty() ? "{}" : call->body);
  const bool malformed = fields && !call->json.is_object();
  WebAnswer answer = AskLoop(gate_, [this, &route, call, malformed](const Reply& reply) {
    if (const std::optional<WebAnswer> refused = admit(route, *call)) return reply(*refused);
    if (malformed) return reply(Refusal(400, "The request is no JSON object"));
    if (const auto* now = std::get_if<Now>(&route.handler)) return reply(now->answer(*call));
    if (const auto* later = std::get_if<Later>(&route.handler)) return later->answer(*call, reply);
    reply({});
  });
  const auto* aside = std::get_if<Aside>(&route.handler);
  if (aside == nullptr || answer.status != 200) return answer;
  try {
    return aside->answer(*call);
  } catch (...) {
    return RefusalOfFailure();
  }
}

}  // namespace standin
