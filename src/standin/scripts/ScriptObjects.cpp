#include "standin/scripts/ScriptObjects.hpp"

#include <memory>
#include <optional>

#include "base/Members.hpp"
#include "base/Text.hpp"
#include "scripting/ScriptHouse.hpp"

namespace standin {
namespace {

using scripting::ScriptHandle;

constexpr std::size_t kMostObjects = 100000;

/// The value with every object in it replaced.
template <class Change>
base::Value Changed(const base::Value& value, const Change& change) {
  if (value.is<base::ObjectRef>()) return change(base::ToObject(value));
  if (value.is<std::shared_ptr<const base::Array>>()) {
    base::Array list;
    for (const base::Value& each : value.array()) list.push_back(Changed(each, change));
    return list;
  }
  if (value.is<std::shared_ptr<const base::Record>>()) {
    base::Record record;
    for (const auto& [key, each] : value.record()) record.emplace_back(key, Changed(each, change));
    return record;
  }
  return value;
}

/// The names of the properties in an introspection text.
std::set<std::string> FieldsIn(const std::string& text) {
  static constexpr std::string_view kMark = "<property name=\"";
  std::set<std::string> fields;
  for (std::size_t at = text.find(kMark); at != std::string::npos; at = text.find(kMark, at)) {
    at += kMark.size();
    fields.insert(base::LowerCase(text.substr(at, text.find('"', at) - at)));
  }
  return fields;
}

}  // namespace

ScriptObjects::ScriptObjects(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin,
                             base::ObjectRef host, const PluginKeeper::Address& address)
    : loop_(loop), connection_(connection), plugin_(plugin), host_(std::move(host)) {
  objects_[scripting::kScriptClassHandle] = connection.proxy(address.name, "/scriptclass");
  objects_[scripting::kVxifHandle] = connection.proxy(address.name, address.path);
  objects_[scripting::kHostHandle] = host_;
}

std::optional<double> ScriptObjects::waitIn(const scripting::Ask& ask) const {
  if (ask.kind != scripting::MessageKind::kCall || ask.args.size() != 1) return std::nullopt;
  if (base::LowerCase(ask.name) != "waitsecs") return std::nullopt;
  const auto found = objects_.find(ask.object);
  if (found == objects_.end() || found->second != host_) return std::nullopt;
  try {
    return base::ToInt16(ask.args[0]);
  } catch (const base::Failure&) {
    return std::nullopt;  // the host says so itself
  }
}

base::Value ScriptObjects::unwrapped(const base::Value& value) const {
  return Changed(value, [this](const base::ObjectRef& object) -> base::Value {
    const auto* handle = dynamic_cast<const ScriptHandle*>(object.get());
    if (handle == nullptr) return object;
    const auto found = objects_.find(handle->id());
    return found == objects_.end() ? base::ObjectRef() : found->second;
  });
}

base::Args ScriptObjects::unwrappedAll(const base::Args& args) const {
  base::Args out;
  for (const base::Value& each : args) out.push_back(unwrapped(each));
  return out;
}

base::Value ScriptObjects::wrapped(const base::Value& value) {
  return Changed(value, [this](const base::ObjectRef& object) -> base::Value {
    if (!object) return {};
    if (objects_.size() >= kMostObjects) {
      throw base::Failure(base::number::kOverflow, "The script holds too many objects");
    }
    const std::int32_t id = objects_.rbegin()->first + 1;
    objects_[id] = object;
    return std::make_shared<ScriptHandle>(id);
  });
}

void ScriptObjects::with(std::int32_t handle, Work work, Done done) {
  const auto found = objects_.find(handle);
  if (found == objects_.end() || !found->second) {
    const base::Failure missing(base::number::kObjectMissing);
    done({}, &missing);
    return;
  }
  struct Answer {
    base::Value result;
    std::optional<base::Failure> failure;
  };
  const auto answer = std::make_shared<Answer>();
  const auto attempt = [this, answer, object = found->second, work = std::move(work)] {
    try {
      if (closed_) throw base::Failure(base::number::kHostGone, "The script has ended");
      answer->result = wrapped(work(*object));
    } catch (...) {
      answer->failure = base::CurrentFailure();
    }
  };
  const auto finish = [answer, done = std::move(done)](const std::string& failure) {
    if (!failure.empty()) answer->failure = base::Failure(base::number::kHostGone, failure);
    done(answer->result, answer->failure ? &*answer->failure : nullptr);
  };
  if (bus::Connection::peerOf(*found->second).empty()) {
    loop_.whileOpen(attempt);
    finish({});
  } else {
    plugin_.command([attempt](base::Object&) { attempt(); }, finish);
  }
}

bool ScriptObjects::isField(base::Object& object, std::int32_t handle, const std::string& name) {
  if (const base::MemberTable* table = object.members()) {
    const base::Member* member = table->find(name);
    return member != nullptr && member->kind != base::MemberKind::kOperation;
  }
  if (!fields_.contains(handle)) {
    fields_[handle] =
        FieldsIn(connection_.introspect(bus::Connection::peerOf(object), bus::Connection::pathOf(object)));
  }
  return fields_[handle].contains(base::LowerCase(name));
}

}  // namespace standin
