#pragma once
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/Value.hpp"

namespace vxcall {

/// The command line can't be understood.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

enum class Action { kHelp, kVersion, kCall, kGet, kPut, kList };

/// What the command line asks for.
struct Request {
  Action action = Action::kHelp;
  std::string bus;   ///< empty: the house's bus
  std::string name;  ///< of the target
  std::string path;
  std::vector<std::string> steps{};  ///< from the object at that path to the target itself
  std::string member;
  std::vector<std::string> arguments{};
};

/// Reads the command line without the program's name. Throws UsageError.
Request ParseArguments(const std::vector<std::string>& words);

/// Makes the object that "o:" names; the name is empty for one of the target's own process.
using ObjectMaker = std::function<base::ObjectRef(const std::string& name, const std::string& path)>;

/// An argument as a value: by its prefix ("n:5") if it has one, else by the D-Bus type that the operation
/// declares, else text. Throws UsageError for what can't be converted.
base::Value ParseValue(const std::string& word, const std::string& type, const ObjectMaker& objects);

/// The text of `vxcall --help`.
extern const char* const kUsage;

}  // namespace vxcall
