// What the pages ask of the plug-in's dialogs. They are nothing for guests.
#include <algorithm>

#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;
using Kind = DialogAnswer::Kind;

constexpr std::size_t kLargestPage = 500;
constexpr std::size_t kMostValues = 1000;

int StatusOf(Kind kind) {
  switch (kind) {
    case Kind::kHeld: return 409;
    case Kind::kClosed: return 410;
    case Kind::kRefused: return 422;
    case Kind::kWrong: return 400;
    case Kind::kAway: return 502;
    case Kind::kDone: break;
  }
  return 200;
}

/// What the dialog answers, with what is told of it when all is well.
template <class Good>
WebAnswer AnswerOf(const DialogAnswer& answer, Good&& good) {
  if (answer.kind == Kind::kDone) return Told(good(answer));
  Json json{{"error", answer.error}};
  if (answer.kind == Kind::kHeld) json["who"] = answer.who;
  if (answer.kind == Kind::kRefused) {
    json["fields"] = Json::object();
    for (const auto& [number, text] : answer.fields) json["fields"][std::to_string(number)] = text;
  }
  WebAnswer told = Told(json);
  told.status = StatusOf(answer.kind);
  return told;
}

Json WithForm(const DialogAnswer& answer) { return {{"dialog", answer.dialog}, {"form", answer.form}}; }
Json BareForm(const DialogAnswer& answer) { return answer.form; }
Json OutcomeIn(const DialogAnswer& answer) { return {{"stored", answer.stored}, {"words", answer.words}}; }

std::int64_t DialogIn(const WebCall& call) { return call.json.at("dialog").get<std::int64_t>(); }

DialogValues ValuesIn(const WebCall& call) {
  DialogValues values;
  const Json& given = call.json.at("values");
  if (!given.is_object() || given.size() > kMostValues)
    throw Json::type_error::create(302, "values must be an object", &given);
  for (const auto& [name, value] : given.items()) {
    std::int32_t number = 0;
    std::from_chars(name.data(), name.data() + name.size(), number);
    values[number] = value.get<std::string>();
  }
  return values;
}

void Open(OpenDialog& dialog, const WebCall& call, const Reply& reply) {
  const auto kind = DialogKindOf(call.json.at("what").get<std::string>());
  if (!kind) return reply(Refusal(400, "There is no such form"));
  const auto stored = call.json.value("stored", std::string());
  if (stored.size() > OpenDialog::kLongestStored) return reply(Refusal(413, "The text is too long"));
  dialog.open(*kind, stored, {call.token, call.user.name}, call.json.value("take", false),
              [reply](const DialogAnswer& answer) { reply(AnswerOf(answer, WithForm)); });
}

void Press(OpenDialog& dialog, const WebCall& call, const Reply& reply) {
  dialog.press(DialogIn(call), call.json.at("field").get<std::int32_t>(), ValuesIn(call),
               [reply](const DialogAnswer& answer) { reply(AnswerOf(answer, BareForm)); });
}

void Submit(OpenDialog& dialog, const WebCall& call, const Reply& reply) {
  dialog.submit(DialogIn(call), ValuesIn(call),
                [reply](const DialogAnswer& answer) { reply(AnswerOf(answer, OutcomeIn)); });
}

WebAnswer OptionsFor(OpenDialog& dialog, const WebCall& call) {
  const auto page =
      dialog.options(call.number<std::int64_t>("dialog"), call.number<std::int32_t>("field"),
                     call.number<std::size_t>("from"),
                     std::min(call.number<std::size_t>("count"), kLargestPage), call.parameter("search"));
  if (!page) return Refusal(410, "This form isn't open any more");
  return Told({{"count", page->count}, {"options", page->lines}});
}

}  // namespace

Routes DialogRoutes(OpenDialog& dialog) {
  const auto owners = [](Method method, const std::string& path, auto handler) {
    return Route{method,
                 "/api/dialog" + path,
                 Role::kOwner,
                 handler,
                 "Guests see events and change nothing",
                 Route::kLargestBody};
  };
  const auto later = [&dialog](auto handle) {
    return Later{[&dialog, handle](const WebCall& call, const Reply& reply) { handle(dialog, call, reply); }};
  };
  return {owners(Method::kPost, "/open", later(Open)),
          owners(Method::kPost, "/press", later(Press)),
          owners(Method::kPost, "/submit", later(Submit)),
          owners(Method::kPost, "/close", Now{[&dialog](const WebCall& call) {
                   dialog.close(DialogIn(call));
                   return WebAnswer();
                 }}),
          owners(Method::kGet, "", Now{[&dialog](const WebCall& call) {
                   return AnswerOf(dialog.look(call.number<std::int64_t>("dialog")), WithForm);
                 }}),
          owners(Method::kGet, "/options",
                 Now{[&dialog](const WebCall& call) { return OptionsFor(dialog, call); }})};
}

}  // namespace standin
