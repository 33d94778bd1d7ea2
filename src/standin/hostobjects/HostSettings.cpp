#include "standin/hostobjects/HostSettings.hpp"

#include <optional>

#include "base/Text.hpp"

namespace standin {
namespace {

using base::Args;
using base::MemberKind;
using base::Type;
using base::Value;

/// The host's own settings, when a call names no file.
constexpr const char* kOwnFile = "server.ini";

std::string FileOf(const Value& argument) {
  const std::string file = base::ToText(argument);
  return file.empty() ? kOwnFile : file;
}

std::optional<std::string> Read(House& house, const std::string& file, const std::string& section,
                                const std::string& key) {
  // The port is what this run listens on, whatever was written down.
  const bool port = base::SameText(file, kOwnFile) && base::SameText(section, "Settings") &&
                    base::SameText(key, "svrport") && house.webPort != 0;
  return port ? std::to_string(house.webPort) : house.settings.get(file, section, key);
}

}  // namespace

std::vector<base::Member> SettingsMembers(House& house) {
  const base::Param file{"file", Type::kText, Value("")};
  return {
      {"GetINISetting",
       MemberKind::kOperation,
       {{"section", Type::kText}, {"key", Type::kText}, {"fallback", Type::kAny, Value("")}, file},
       Type::kAny,
       [&house](Args& args) {
         const auto stored = Read(house, FileOf(args[3]), base::ToText(args[0]), base::ToText(args[1]));
         return stored ? Value(*stored) : args[2];
       }},
      {"SaveINISetting",
       MemberKind::kOperation,
       {{"section", Type::kText}, {"key", Type::kText}, {"value", Type::kText}, file},
       Type::kNone,
       [&house](Args& args) {
         house.settings.save(FileOf(args[3]), base::ToText(args[0]), base::ToText(args[1]),
                             base::ToText(args[2]));
         return Value();
       }},
      {"GetINISection",
       MemberKind::kOperation,
       {{"section", Type::kText}, file},
       Type::kText,
       [&house](Args& args) {
         return Value(house.settings.section(FileOf(args[1]), base::ToText(args[0])));
       }},
      {"ClearINISection",
       MemberKind::kOperation,
       {{"section", Type::kText}, file},
       Type::kNone,
       [&house](Args& args) {
         house.settings.clear(FileOf(args[1]), base::ToText(args[0]));
         return Value();
       }},
  };
}

}  // namespace standin
