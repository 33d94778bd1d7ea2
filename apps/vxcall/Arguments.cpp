#include "vxcall/Arguments.hpp"

#include <algorithm>
#include <array>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace vxcall {

const char* const kUsage = R"(Calls any object on the bus of the house.

  vxcall [--bus ADDRESS] TARGET OPERATION [ARGUMENT...]
  vxcall [--bus ADDRESS] TARGET --get FIELD
  vxcall [--bus ADDRESS] TARGET --put FIELD VALUE
  vxcall [--bus ADDRESS] TARGET --list
  vxcall --help | --version

TARGET    vxif, scriptclass (the plug-in), host, callback (the server), or bus.name:/path; behind dots the
          fields or operations without arguments that lead on: scriptclass.WMPObject.settings
ARGUMENT  as the operation declares it; or with its kind in front:
          s:text  b:true  n:5 (16 bits)  i:5 (32 bits)  d:1.5  e: (empty)  o:/path or o:bus.name:/path

Without --bus: the address in VANTORIX_BUS, else the house's own bus if it runs, else the session bus.
Exit code: 0 done, 1 the operation failed, 2 wrong usage, 3 no bus or no such target.
)";

namespace {

struct Alias {
  const char* word;
  const char* name;
  const char* path;
};

constexpr std::array kAliases{
    Alias{"vxif", "org.vantorix.vxif_WMP9", "/vxif"},
    Alias{"scriptclass", "org.vantorix.vxif_WMP9", "/scriptclass"},
    Alias{"host", "org.vantorix.Host", "/host"},
    Alias{"callback", "org.vantorix.Host", "/callback"},
};

/// Splits "bus.name:/path"; unique names hold a colon themselves.
bool SplitTarget(const std::string& text, std::string& name, std::string& path) {
  const auto colon = text.find(":/");
  if (colon == std::string::npos) return false;
  name = text.substr(0, colon);
  path = text.substr(colon + 1);
  return true;
}

/// Cuts the steps behind the first dot off a path or a short name, neither of which holds one.
std::string CutSteps(const std::string& text, std::vector<std::string>& steps) {
  steps = base::Split(text, '.');
  std::string first = steps.empty() ? std::string() : steps.front();
  if (!steps.empty()) steps.erase(steps.begin());
  return first;
}

void ReadTarget(const std::string& word, Request& request) {
  const std::string first = CutSteps(word, request.steps);
  const auto alias = std::find_if(kAliases.begin(), kAliases.end(),
                                  [&](const Alias& each) { return base::SameText(first, each.word); });
  if (alias != kAliases.end()) {
    request.name = alias->name;
    request.path = alias->path;
  } else if (SplitTarget(word, request.name, request.path) && !request.name.empty()) {
    request.path = CutSteps(request.path, request.steps);
  } else {
    throw UsageError("'" + word + "' is no target");
  }
  if (std::find(request.steps.begin(), request.steps.end(), "") != request.steps.end())
    throw UsageError("'" + word + "' has a dot with nothing behind it");
}

Action ActionOf(const std::string& word) {
  if (word == "--get") return Action::kGet;
  if (word == "--put") return Action::kPut;
  if (word == "--list") return Action::kList;
  if (word.starts_with("--")) throw UsageError("'" + word + "' is no option");
  return Action::kCall;
}

base::Value ByType(const std::string& text, const std::string& type) {
  if (type == "b") return base::ToBoolean(text);
  if (type == "n" || type == "y" || type == "q") return base::ToInt16(text);
  if (type == "i" || type == "u" || type == "x" || type == "t") return base::ToInt32(text);
  if (type == "d") return base::ToDouble(text);
  if (type == "as") {
    base::Array lines;
    for (auto& line : base::Split(text, '\n')) lines.emplace_back(std::move(line));
    return lines;
  }
  return text;
}

base::Value ByPrefix(char kind, const std::string& text, const ObjectMaker& objects) {
  switch (kind) {
    case 's': return text;
    case 'e': return {};
    case 'o': {
      std::string name;
      std::string path = text;
      SplitTarget(text, name, path);
      return objects(name, path);
    }
    default: return ByType(text, std::string(1, kind));
  }
}

bool HasPrefix(const std::string& word) {
  return word.size() >= 2 && word[1] == ':' && std::string_view("sbnideo").find(word[0]) != std::string::npos;
}

}  // namespace

Request ParseArguments(const std::vector<std::string>& words) {
  Request request;
  auto word = words.begin();
  const auto next = [&](const char* missing) {
    if (word == words.end()) throw UsageError(std::string("There is no ") + missing);
    return *word++;
  };
  if (word != words.end() && *word == "--bus") {
    ++word;
    request.bus = next("address after --bus");
  }
  const std::string target = next("target");
  if (target == "--help" || target == "-h") return request;
  if (target == "--version") {
    request.action = Action::kVersion;
    return request;
  }
  ReadTarget(target, request);
  request.member = next("operation");
  request.action = ActionOf(request.member);
  if (request.action == Action::kGet || request.action == Action::kPut) request.member = next("field");
  if (request.action == Action::kPut) request.arguments.push_back(next("value"));
  if (request.action == Action::kCall)
    request.arguments.assign(std::exchange(word, words.end()), words.end());
  if (word != words.end()) throw UsageError("'" + *word + "' is too much");
  return request;
}

base::Value ParseValue(const std::string& word, const std::string& type, const ObjectMaker& objects) {
  try {
    return HasPrefix(word) ? ByPrefix(word[0], word.substr(2), objects) : ByType(word, type);
  } catch (const base::Failure& failure) {
    throw UsageError("'" + word + "': " + failure.description());
  }
}

}  // namespace vxcall
