#pragma once
#include <functional>
#include <map>
#include <set>

#include "base/Failure.hpp"
#include "base/Object.hpp"
#include "base/Text.hpp"
#include "support/Journal.hpp"

namespace support {

/// Arguments as a test reads them: texts in quotes, objects as <object>, empty as nothing.
inline std::string Shown(const base::Value& value) {
  if (value.is<std::string>()) return '"' + base::ToText(value) + '"';
  if (value.is<base::ObjectRef>()) return base::ToObject(value) ? "<object>" : "<nothing>";
  return base::ToText(value);
}

inline std::string Shown(const std::string& name, const base::Args& args) {
  std::string line = name + "(";
  for (std::size_t i = 0; i < args.size(); ++i) line += (i > 0 ? ", " : "") + Shown(args[i]);
  return line + ")";
}

/// An object of plain fields, such as a device of the host.
class FieldObject : public base::Object {
 public:
  using base::Object::call;
  std::map<std::string, base::Value> fields;
  Journal* journal = nullptr;
  std::set<std::string> failing;  ///< fields that can't be written

  base::Value call(std::string_view name, base::Args& /*args*/) override {
    throw base::Failure(base::number::kNoSuchMember, std::string(name));
  }
  base::Value get(std::string_view name) override {
    const auto found = fields.find(std::string(name));
    if (found == fields.end()) throw base::Failure(base::number::kNoSuchMember, std::string(name));
    return found->second;
  }
  void put(std::string_view name, const base::Value& value) override {
    if (journal != nullptr) journal->add(std::string(name) + " = " + Shown(value));
    if (failing.count(std::string(name)) > 0) throw base::Failure(base::number::kPermissionDenied);
    fields[std::string(name)] = value;
  }
};

/// A host of both objects in one: it records every call and answers like a house, unless a test gives an
/// operation an answer of its own.
class FakeHost : public base::Object {
 public:
  using base::Object::call;
  explicit FakeHost(Journal& journal) : journal_(journal) {}

  using Answer = std::function<base::Value(base::Args&)>;
  std::map<std::string, Answer> answers;
  std::set<std::string> failing;  ///< operations that fail with `failureNumber`
  std::int32_t failureNumber = base::number::kDeviceIo;
  std::set<std::string> silent;  ///< operations that are not recorded
  bool hasInterface = true;
  std::string version = "1.7.0";
  std::string appPath = "C:\\Vantorix";
  std::string lastVoiceCommand;
  std::string webUser = "admin";
  std::int16_t freeCode = 'Q';
  std::map<std::string, std::string> settings;     ///< by lower-case key of section "Settings"
  std::map<std::string, std::string> ownSettings;  ///< the host's own
  std::vector<std::shared_ptr<FieldObject>> devices;
  std::shared_ptr<base::Object> self;  ///< set by the fixture; kept weakly there
  std::size_t logArguments = 3;        ///< how many WriteLog takes at most

  base::Value call(std::string_view operation, base::Args& args) override {
    const std::string name(operation);
    if (silent.count(name) == 0) journal_.add(Shown(name, args));
    if (failing.count(name) > 0) throw base::Failure(failureNumber);
    const auto found = answers.find(name);
    return found != answers.end() ? found->second(args) : usual(name, args);
  }
  base::Value get(std::string_view name) override {
    if (name == "LastVoiceCommand") return lastVoiceCommand;
    throw base::Failure(base::number::kNoSuchMember);
  }
  void put(std::string_view /*name*/, const base::Value& /*value*/) override {
    throw base::Failure(base::number::kNoSuchMember);
  }

  /// A device that exists already.
  std::shared_ptr<FieldObject> addDevice(const std::string& name, const std::string& hc, std::int16_t dc,
                                         const std::string& interface = "Media Player",
                                         std::int16_t iotype = 3) {
    auto device = std::make_shared<FieldObject>();
    device->fields = {{"name", name},           {"location", "Media Player"}, {"hc", hc},    {"dc", dc},
                      {"interface", interface}, {"iotype", iotype},           {"Values", ""}};
    devices.push_back(device);
    return device;
  }

  std::shared_ptr<FieldObject> byName(const std::string& full) {
    for (const auto& device : devices)
      if (base::SameText(
              base::ToText(device->fields["location"]) + " " + base::ToText(device->fields["name"]), full))
        return device;
    return nullptr;
  }

 private:
  base::Value usual(const std::string& name, base::Args& args) {
    const auto text = [&](std::size_t i) { return base::ToText(args.at(i)); };
    if (name == "GetVXIface") return hasInterface ? self : base::ObjectRef();
    if (name == "System") return self;
    if (name == "Version") return version;
    if (name == "GetAppPath") return appPath;
    if (name == "WEBLoggedInUser") return webUser;
    if (name == "GetNextFreeIOCode") return freeCode;
    if (name == "WriteLog" && args.size() > logArguments) throw base::Failure(base::number::kWrongArguments);
    if (name == "GetINISetting") {
      const auto& from = args.size() > 3 ? settings : ownSettings;
      const auto found = from.find(base::LowerCase(text(1)));
      return found == from.end() ? args[2] : base::Value(found->second);
    }
    if (name == "SaveINISetting") settings[base::LowerCase(text(1))] = text(2);
    if (name == "DeviceCount") return static_cast<std::int32_t>(devices.size());
    if (name == "GetDevice") return devices.at(static_cast<std::size_t>(base::ToInt32(args[0])) - 1);
    if (name == "GetDeviceEx") return base::ObjectRef(byName(text(0)));
    if (name == "GetDeviceCode") {
      const auto device = byName(text(0));
      if (!device) return "";
      return base::ToText(device->fields["hc"]) + base::ToText(device->fields["dc"]);
    }
    if (name == "NewDevice") {
      auto device = std::make_shared<FieldObject>();
      device->journal = &journal_;
      device->fields["name"] = text(0);
      devices.push_back(device);
      return static_cast<std::int32_t>(devices.size());
    }
    if (name == "DeleteIODevices") devices.clear();
    return {};
  }

  Journal& journal_;
};

}  // namespace support
