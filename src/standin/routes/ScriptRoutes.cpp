// What the pages ask of the house's scripts. They are nothing for guests.
#include <optional>

#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestScript = std::size_t{256} << 10U;

WebAnswer BadName() {
  return Refusal(400, "A script's name has up to 50 letters, digits, blanks, “-” and “_”");
}

WebAnswer Read(const ScriptStore& store, const WebCall& call) {
  const std::string name = call.parameter("name");
  const std::optional<std::string> text = store.read(name);
  if (!text) return Refusal(404, "There is no such script");
  return Told({{"name", name}, {"text", *text}});
}

WebAnswer Save(ScriptStore& store, const WebCall& call) {
  const auto name = call.json.at("name").get<std::string>();
  const auto text = call.json.at("text").get<std::string>();
  if (!ScriptStore::isName(name)) return BadName();
  if (text.size() > kLongestScript) return Refusal(413, "The script is too long");
  store.write(name, text);
  return {};
}

WebAnswer Run(const ScriptStore& store, ScriptRunner& runner, const WebCall& call) {
  const auto name = call.json.at("name").get<std::string>();
  if (!ScriptStore::isName(name)) return BadName();
  const std::optional<std::string> text =
      call.json.contains("text") ? std::optional(call.json.at("text").get<std::string>()) : store.read(name);
  if (!text) return Refusal(404, "There is no such script");
  if (text->size() > kLongestScript) return Refusal(413, "The script is too long");
  if (const std::string refused = runner.start(name, *text); !refused.empty()) return Refusal(409, refused);
  return Told({{"run", runner.number()}});
}

WebAnswer ReportOf(const ScriptRunner& runner, std::size_t from) {
  const std::optional<ScriptRun::Report> report = runner.report(from);
  if (!report) return Told({{"run", 0}, {"running", false}});
  return Told({{"run", runner.number()},
               {"name", report->name},
               {"running", report->running},
               {"output", report->output},
               {"next", report->next},
               {"error", report->outcome.error},
               {"line", report->outcome.line}});
}

}  // namespace

Routes ScriptRoutes(ScriptStore& store, ScriptRunner& runner) {
  const auto owners = [](Method method, const char* path, auto answer) {
    return Route{method, path, Role::kOwner, Now{answer}, "Guests can't use scripts", Route::kLargestBody};
  };
  return {
      owners(Method::kGet, "/api/scripts",
             [&](const WebCall&) {
               return Told({{"scripts", store.names()}});
             }),
      owners(Method::kGet, "/api/script", [&](const WebCall& call) { return Read(store, call); }),
      owners(Method::kPost, "/api/script", [&](const WebCall& call) { return Save(store, call); }),
      owners(Method::kPost, "/api/script/delete",
             [&](const WebCall& call) {
               return store.remove(call.json.at("name").get<std::string>())
                          ? WebAnswer()
                          : Refusal(404, "There is no such script");
             }),
      owners(Method::kPost, "/api/script/run", [&](const WebCall& call) { return Run(store, runner, call); }),
      owners(Method::kPost, "/api/script/stop",
             [&](const WebCall&) {
               runner.stop();
               return WebAnswer();
             }),
      owners(Method::kGet, "/api/script/run",
             [&](const WebCall& call) { return ReportOf(runner, call.number<std::size_t>("from")); })};
}

}  // namespace standin
