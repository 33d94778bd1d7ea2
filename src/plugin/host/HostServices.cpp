#include "plugin/host/HostServices.hpp"

using base::Deref;
using base::ObjectRef;
using base::Value;

namespace plugin {

/// One call by name, behind those that wait to be sent. The object is kept while the call lasts: shutting
/// down within it clears the reference.
template <class... T>
Value HostServices::ask(const ObjectRef& target, std::string_view name, T&&... arguments) {
  unwaited_.send();
  const ObjectRef kept = target;  // NOLINT(performance-unnecessary-copy-initialization)
  return Deref(kept).invoke(name, std::forward<T>(arguments)...);
}

ObjectRef HostServices::GetVXIface() { return base::ToObject(ask(HostCallback, "GetVXIface")); }

void HostServices::writesplash(const std::string& text) { ask(HostCallback, "writesplash", text); }

void HostServices::registermenu(const std::string& section, const std::string& item) {
  ask(HostCallback, "registermenu", section, item);
}

void HostServices::checktrigger(const std::string& trigger) { ask(HostCallback, "checktrigger", trigger); }

void HostServices::forcefront(std::int32_t windowHandle) { ask(HostCallback, "forcefront", windowHandle); }

std::int16_t HostServices::GetNextFreeIOCode() {
  const Value answer = ask(HostCallback, "GetNextFreeIOCode");
  // Some hosts hand over the bit pattern of -1 as an unsigned number.
  return base::ToDouble(answer) == 65535 ? std::int16_t{-1} : base::ToInt16(answer);
}

std::string HostServices::Version() { return base::ToText(ask(Host, "Version")); }

std::string HostServices::GetAppPath() { return base::ToText(ask(Host, "GetAppPath")); }

void HostServices::Launch(const std::string& url) { ask(Host, "Launch", url); }

std::string HostServices::WEBLoggedInUser() { return base::ToText(ask(Host, "WEBLoggedInUser")); }

void HostServices::RegisterEventCB(std::int16_t mask, const ObjectRef& plugin) {
  ask(Host, "RegisterEventCB", mask, plugin);
}

void HostServices::RegisterLink(const ObjectRef& page) { ask(Host, "RegisterLink", page); }

void HostServices::WriteLog(const std::string& type, const std::string& text) {
  ask(Host, "WriteLog", type, text);
}

void HostServices::WriteLog(const std::string& type, const std::string& text, const std::string& more) {
  ask(Host, "WriteLog", type, text, more);
}

void HostServices::Speak(const std::string& text, bool wait) { ask(Host, "Speak", text, wait); }

std::string HostServices::GetUrl(const std::string& host, const std::string& page, bool stripTags,
                                 std::int16_t port) {
  return base::ToText(ask(Host, "GetUrl", host, page, stripTags, port));
}

Value HostServices::GetINISetting(const std::string& section, const std::string& key, const Value& fallback,
                                  const std::string& file) {
  return ask(Host, "GetINISetting", section, key, fallback, file);
}

Value HostServices::GetINISetting(const std::string& section, const std::string& key, const Value& fallback) {
  return ask(Host, "GetINISetting", section, key, fallback);
}

void HostServices::SaveINISetting(const std::string& section, const std::string& key, const Value& value,
                                  const std::string& file) {
  ask(Host, "SaveINISetting", section, key, value, file);
}

std::string HostServices::GetINISection(const std::string& section, const std::string& file) {
  return base::ToText(ask(Host, "GetINISection", section, file));
}

void HostServices::ClearINISection(const std::string& section, const std::string& file) {
  ask(Host, "ClearINISection", section, file);
}

std::int32_t HostServices::DeviceCount() { return base::ToInt32(ask(Host, "DeviceCount")); }

ObjectRef HostServices::GetDevice(const Value& key) { return base::ToObject(ask(Host, "GetDevice", key)); }

ObjectRef HostServices::GetDeviceEx(const std::string& name) {
  return base::ToObject(ask(Host, "GetDeviceEx", name));
}

std::string HostServices::GetDeviceCode(const std::string& name) {
  return base::ToText(ask(Host, "GetDeviceCode", name));
}

Value HostServices::NewDevice(const std::string& name) { return ask(Host, "NewDevice", name); }

void HostServices::DeleteIODevices(const std::string& interface) { ask(Host, "DeleteIODevices", interface); }

void HostServices::DeviceButtonAdd(const std::string& code, const std::string& interface,
                                   const std::string& caption) {
  ask(Host, "DeviceButtonAdd", code, interface, caption);
}

void HostServices::DeviceValuesAdd(const std::string& code, const std::string& values, bool flag) {
  ask(Host, "DeviceValuesAdd", code, values, flag);
}

void HostServices::SetDeviceStatus(const std::string& code, std::int16_t status) {
  ask(Host, "SetDeviceStatus", code, status);
}

void HostServices::SetDeviceString(const std::string& code, const std::string& text, bool update) {
  ask(Host, "SetDeviceString", code, text, update);
}

void HostServices::SetDeviceString(const std::string& code, const std::string& text) {
  ask(Host, "SetDeviceString", code, text);
}

void HostServices::SetDeviceStringByName(const std::string& name, const std::string& text, bool update) {
  ask(Host, "SetDeviceStringByName", name, text, update);
}

void HostServices::SetDeviceValueByName(const std::string& name, std::int32_t value) {
  ask(Host, "SetDeviceValueByName", name, value);
}

ObjectRef HostServices::GetEvent(std::int32_t index) { return base::ToObject(ask(Host, "GetEvent", index)); }

ObjectRef HostServices::GetEventEx(const std::string& name) {
  return base::ToObject(ask(Host, "GetEventEx", name));
}

std::int32_t HostServices::NewEvent(const std::string& name) {
  return base::ToInt32(ask(Host, "NewEvent", name));
}

ObjectRef HostServices::NewDevFunc() { return base::ToObject(ask(Host, "NewDevFunc")); }

std::string HostServices::LastVoiceCommand() {
  const ObjectRef system = base::ToObject(ask(Host, "System"));
  return base::ToText(Deref(system).get("LastVoiceCommand"));
}

// Both waits are the plug-in's way of staying responsive: its own timers, player events and windows run
// as well as calls from the host.
void HostServices::WaitEvents() {
  whileWaiting([&] { ask(Host, "WaitEvents"); });
}

void HostServices::whileWaiting(const std::function<void()>& call) {
  loop_.whileOpen(call);
  loop_.pump();
}

void HostServices::WaitSecs(std::int16_t seconds) {
  loop_.whileOpen([&] { ask(Host, "WaitSecs", seconds); });
}

}  // namespace plugin
