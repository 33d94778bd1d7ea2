#pragma once
#include <gmock/gmock.h>

#include "support/FakeLibrary.hpp"
#include "support/House.hpp"

namespace support {

/// What an event of the host is tied to.
class EventDevices : public base::Object {
 public:
  using base::Object::call;
  std::vector<base::ObjectRef> entries;

  base::Value call(std::string_view name, base::Args& args) override {
    if (name == "Add") {
      entries.push_back(base::ToObject(args.at(0)));
      return {};
    }
    const auto at = static_cast<std::size_t>(base::ToInt32(args.at(0)) - 1);
    if (at >= entries.size()) throw base::Failure(base::number::kIndex);
    if (name == "item") return entries[at];
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(at));
    return {};
  }
  base::Value get(std::string_view /*name*/) override { return static_cast<std::int32_t>(entries.size()); }
  void put(std::string_view name, const base::Value& /*value*/) override {
    throw base::Failure(base::number::kNoSuchMember, std::string(name));
  }
  /// "device:function" of each entry.
  [[nodiscard]] std::vector<std::string> shown() const {
    std::vector<std::string> all;
    for (const base::ObjectRef& each : entries)
      all.push_back(base::ToText(each->get("devid")) + ":" + base::ToText(each->get("func")));
    return all;
  }
};

/// A house with a library and events; its devices have a number of their own.
class VoiceHouse : public House {
 protected:
  struct Event {
    std::shared_ptr<FieldObject> fields = std::make_shared<FieldObject>();
    std::shared_ptr<EventDevices> devices = std::make_shared<EventDevices>();
  };

  explicit VoiceHouse(ui::PopupWindow* popupWindow = nullptr) : House(Pages::kFakes, popupWindow) {}
  void SetUp() override {
    preparePlayer = [this](support::FakePlayer& made) { library.into(made); };
    plugin.form.load();
    connect();
    plugin.state.HouseCode = "Q";
    plugin.state.AlbumIconTag = kIcon;
    host->answers["GetEventEx"] = [this](base::Args& args) -> base::Value {
      const auto found = events.find(base::ToText(args.at(0)));
      return found == events.end() ? base::ObjectRef() : base::ObjectRef(found->second.fields);
    };
    host->answers["NewEvent"] = [this](base::Args& args) -> base::Value {
      addEvent(base::ToText(args.at(0)));
      made.push_back(base::ToText(args.at(0)));
      return static_cast<std::int32_t>(made.size());
    };
    host->answers["GetEvent"] = [this](base::Args& args) -> base::Value {
      return base::ObjectRef(
          events.at(made.at(static_cast<std::size_t>(base::ToInt32(args.at(0)) - 1))).fields);
    };
    host->answers["NewDevFunc"] = [](base::Args&) -> base::Value {
      auto entry = std::make_shared<FieldObject>();
      entry->fields = {{"devid", std::int32_t{0}}, {"func", std::int16_t{0}}};
      return base::ObjectRef(entry);
    };
    host->answers["NewDevice"] = [this](base::Args& args) -> base::Value {
      auto device = std::make_shared<FieldObject>();
      device->fields = {{"name", base::ToText(args.at(0))}, {"ref", nextRef++}};
      if (journaled) device->journal = &journal;
      host->devices.push_back(device);
      return static_cast<std::int32_t>(host->devices.size());
    };
    journal.clear();
  }
  Event& addEvent(const std::string& name) {
    Event& event = events[name];
    event.fields->fields = {{"vcmd", ""},
                            {"misc", std::int32_t{2}},
                            {"misc2", std::int32_t{4}},
                            {"ev_abs_time", std::int16_t{0}},
                            {"Group", ""},
                            {"ev_devices", base::ObjectRef(event.devices)}};
    if (journaled) event.fields->journal = &journal;
    return event;
  }
  std::string field(const std::string& event, const std::string& name) {
    return base::ToText(events.at(event).fields->fields.at(name));
  }
  std::string vcmd(const std::string& event) { return field(event, "vcmd"); }
  void albums(const std::vector<std::string>& names) { library.attributes["album"] = names; }
  void update(const std::string& category) { plugin.voiceEvents.UpdateMediaEvents(category); }
  /// The value table that was given to the host last: "¦" for code 2, "§" for code 1.
  std::string table() {
    const auto calls = journal.with("DeviceValuesAdd(");
    std::string text = calls.empty() ? "none" : calls.back();
    for (const auto& [code, sign] : {std::pair("\2", "¦"), std::pair("\1", "§")})
      for (std::size_t at = 0; (at = text.find(code)) != std::string::npos;) text.replace(at, 1, sign);
    return text;
  }
  /// Whether exactly that failure of a procedure is in the log.
  bool logged(const std::string& failure) {
    return journal.has("WriteLog(\"Error\", \"Media Player Could not complete procedure CommonModule/" +
                       failure + "\")");
  }
  std::vector<std::string> warnings() { return journal.with("WriteLog(\"Warning\""); }

  support::FakeLibrary library{journal};
  std::map<std::string, Event> events;
  std::vector<std::string> made;
  std::int32_t nextRef = 101;
  std::vector<std::size_t> menusAtTurn;
  bool journaled = false;  ///< whether writes of fields stand in the journal too
};

}  // namespace support
