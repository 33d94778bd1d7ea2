// What the pages ask of the house's scripts. They are nothing for guests.
#include <utility>

#include "standin/house/HouseJson.hpp"
#include "standin/http/WebApi.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestScript = std::size_t{256} << 10U;

WebAnswer badName() {
  return Refusal(400, "A script's name has up to 50 letters, digits, blanks, “-” and “_”");
}

}  // namespace

WebAnswer WebApi::askOwner(const std::string& token, std::function<WebAnswer()> work) {
  return askNow(token, [work = std::move(work)](const User& user) {
    return user.guest ? Refusal(403, "Guests can't use scripts") : work();
  });
}

WebAnswer WebApi::scripts(const std::string& token) {
  return askOwner(token, [this] { return WebAnswer{.body = Dump({{"scripts", scripts_.store.names()}})}; });
}

WebAnswer WebApi::script(const std::string& token, const std::string& name) {
  return askOwner(token, [this, name] {
    const std::optional<std::string> text = scripts_.store.read(name);
    if (!text) return Refusal(404, "There is no such script");
    return WebAnswer{.body = Dump({{"name", name}, {"text", *text}})};
  });
}

WebAnswer WebApi::saveScript(const std::string& token, const Json& json) {
  const auto name = json.at("name").get<std::string>();
  const auto text = json.at("text").get<std::string>();
  return askOwner(token, [this, name, text] {
    if (!ScriptStore::isName(name)) return badName();
    if (text.size() > kLongestScript) return Refusal(413, "The script is too long");
    scripts_.store.write(name, text);
    return WebAnswer();
  });
}

WebAnswer WebApi::deleteScript(const std::string& token, const Json& json) {
  const auto name = json.at("name").get<std::string>();
  return askOwner(token, [this, name] {
    return scripts_.store.remove(name) ? WebAnswer() : Refusal(404, "There is no such script");
  });
}

WebAnswer WebApi::runScript(const std::string& token, const Json& json) {
  const auto name = json.at("name").get<std::string>();
  const auto given = json.contains("text") ? std::optional(json.at("text").get<std::string>()) : std::nullopt;
  return askOwner(token, [this, name, given] {
    if (!ScriptStore::isName(name)) return badName();
    const std::optional<std::string> text = given ? given : scripts_.store.read(name);
    if (!text) return Refusal(404, "There is no such script");
    if (text->size() > kLongestScript) return Refusal(413, "The script is too long");
    if (!scripts_.runner.start(name, *text)) return Refusal(409, "A script is running; stop it first");
    return WebAnswer{.body = Dump({{"run", scripts_.runner.number()}})};
  });
}

WebAnswer WebApi::stopScript(const std::string& token) {
  return askOwner(token, [this] {
    scripts_.runner.stop();
    return WebAnswer();
  });
}

WebAnswer WebApi::scriptRun(const std::string& token, std::size_t from) {
  return askOwner(token, [this, from] {
    const std::optional<ScriptRun::Report> report = scripts_.runner.report(from);
    if (!report) return WebAnswer{.body = Dump({{"run", 0}, {"running", false}})};
    return WebAnswer{.body = Dump({{"run", scripts_.runner.number()},
                                   {"name", report->name},
                                   {"running", report->running},
                                   {"output", report->output},
                                   {"next", report->next},
                                   {"error", report->outcome.error},
                                   {"line", report->outcome.line}})};
  });
}

}  // namespace standin
