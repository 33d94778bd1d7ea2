#include "standin/hostobjects/HostSettings.hpp"

#include <optional>

#include "base/MemberWords.hpp"
#include "base/Text.hpp"

namespace standin {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

/// The host's own settings, when a call names no file.
constexpr const char* kOwnFile = "server.ini";

std::string FileOf(const Value& argument) {
  const std::string file = base::ToText(argument);
  return file.empty() ? kOwnFile : file;
}

/// A text as it was given: this is called by the thousand.
const std::string& Given(const Value& text) { return std::get<std::string>(text.held()); }

std::optional<std::string> Read(House& house, const std::string& file, const std::string& section,
                                const std::string& key) {
  // The port is what this run listens on, whatever was written down.
  const bool port = base::SameText(file, kOwnFile) && base::SameText(section, "Settings") &&
                    base::SameText(key, "svrport") && house.webPort != 0;
  return port ? std::to_string(house.webPort) : house.settings.get(file, section, key);
}

}  // namespace

std::vector<Member> SettingsMembers(House& house) {
  const Param file = Text("file", "");
  return {
      Operation("GetINISetting", {Text("section"), Text("key"), Any("fallback", ""), file}, Type::kAny,
                [&house](Args& args) {
                  const auto stored = Read(house, FileOf(args[3]), TextAt(args, 0), TextAt(args, 1));
                  return stored ? Value(*stored) : args[2];
                }),
      Command("SaveINISetting", {Text("section"), Text("key"), Text("value"), file},
              [&house](Args& args) {
                house.settings.save(FileOf(args[3]), Given(args[0]), Given(args[1]), Given(args[2]));
              }),
      Operation("GetINISection", {Text("section"), file}, Type::kText,
                [&house](Args& args) { return house.settings.section(FileOf(args[1]), TextAt(args, 0)); }),
      Command("ClearINISection", {Text("section"), file},
              [&house](Args& args) { house.settings.clear(FileOf(args[1]), TextAt(args, 0)); }),
  };
}

}  // namespace standin
