#include "plugin/host/HostServices.hpp"

using base::Deref;
using base::ObjectRef;
using base::Value;

namespace plugin {

namespace {

/// One call by name. The object is kept while the call lasts: shutting down within it clears the reference.
template <class... T>
Value Ask(const ObjectRef& target, std::string_view name, T&&... arguments) {
  const ObjectRef kept = target;  // NOLINT(performance-unnecessary-copy-initialization)
  return Deref(kept).invoke(name, std::forward<T>(arguments)...);
}

}  // namespace

ObjectRef HostServices::GetVXIface() { return base::ToObject(Ask(HostCallback, "GetVXIface")); }

void HostServices::writesplash(const std::string& text) { Ask(HostCallback, "writesplash", text); }

void HostServices::registermenu(const std::string& section, const std::string& item) {
  Ask(HostCallback, "registermenu", section, item);
}

void HostServices::checktrigger(const std::string& trigger) { Ask(HostCallback, "checktrigger", trigger); }

void HostServices::forcefront(std::int32_t windowHandle) { Ask(HostCallback, "forcefront", windowHandle); }

std::int16_t HostServices::GetNextFreeIOCode() {
  const Value answer = Ask(HostCallback, "GetNextFreeIOCode");
  // Some hosts hand over the bit pattern of -1 as an unsigned number.
  return base::ToDouble(answer) == 65535 ? std::int16_t{-1} : base::ToInt16(answer);
}

std::string HostServices::Version() { return base::ToText(Ask(Host, "Version")); }

std::string HostServices::GetAppPath() { return base::ToText(Ask(Host, "GetAppPath")); }

void HostServices::Launch(const std::string& url) { Ask(Host, "Launch", url); }

std::string HostServices::WEBLoggedInUser() { return base::ToText(Ask(Host, "WEBLoggedInUser")); }

void HostServices::RegisterEventCB(std::int16_t mask, const ObjectRef& plugin) {
  Ask(Host, "RegisterEventCB", mask, plugin);
}

void HostServices::RegisterLink(const ObjectRef& page) { Ask(Host, "RegisterLink", page); }

void HostServices::WriteLog(const std::string& type, const std::string& text) {
  Ask(Host, "WriteLog", type, text);
}

void HostServices::WriteLog(const std::string& type, const std::string& text, const std::string& more) {
  Ask(Host, "WriteLog", type, text, more);
}

void HostServices::Speak(const std::string& text, bool wait) { Ask(Host, "Speak", text, wait); }

std::string HostServices::GetUrl(const std::string& host, const std::string& page, bool stripTags,
                                 std::int16_t port) {
  return base::ToText(Ask(Host, "GetUrl", host, page, stripTags, port));
}

Value HostServices::GetINISetting(const std::string& section, const std::string& key, const Value& fallback,
                                  const std::string& file) {
  return Ask(Host, "GetINISetting", section, key, fallback, file);
}

Value HostServices::GetINISetting(const std::string& section, const std::string& key, const Value& fallback) {
  return Ask(Host, "GetINISetting", section, key, fallback);
}

void HostServices::SaveINISetting(const std::string& section, const std::string& key, const Value& value,
                                  const std::string& file) {
  Ask(Host, "SaveINISetting", section, key, value, file);
}

std::string HostServices::GetINISection(const std::string& section, const std::string& file) {
  return base::ToText(Ask(Host, "GetINISection", section, file));
}

void HostServices::ClearINISection(const std::string& section, const std::string& file) {
  Ask(Host, "ClearINISection", section, file);
}

std::int32_t HostServices::DeviceCount() { return base::ToInt32(Ask(Host, "DeviceCount")); }

ObjectRef HostServices::GetDevice(const Value& key) { return base::ToObject(Ask(Host, "GetDevice", key)); }

ObjectRef HostServices::GetDeviceEx(const std::string& name) {
  return base::ToObject(Ask(Host, "GetDeviceEx", name));
}

std::string HostServices::GetDeviceCode(const std::string& name) {
  return base::ToText(Ask(Host, "GetDeviceCode", name));
}

Value HostServices::NewDevice(const std::string& name) { return Ask(Host, "NewDevice", name); }

void HostServices::DeleteIODevices(const std::string& interface) { Ask(Host, "DeleteIODevices", interface); }

void HostServices::DeviceButtonAdd(const std::string& code, const std::string& interface,
                                   const std::string& caption) {
  Ask(Host, "DeviceButtonAdd", code, interface, caption);
}

void HostServices::DeviceValuesAdd(const std::string& code, const std::string& values, bool flag) {
  Ask(Host, "DeviceValuesAdd", code, values, flag);
}

void HostServices::SetDeviceStatus(const std::string& code, std::int16_t status) {
  Ask(Host, "SetDeviceStatus", code, status);
}

void HostServices::SetDeviceString(const std::string& code, const std::string& text, bool update) {
  Ask(Host, "SetDeviceString", code, text, update);
}

void HostServices::SetDeviceString(const std::string& code, const std::string& text) {
  Ask(Host, "SetDeviceString", code, text);
}

void HostServices::SetDeviceStringByName(const std::string& name, const std::string& text, bool update) {
  Ask(Host, "SetDeviceStringByName", name, text, update);
}

void HostServices::SetDeviceValueByName(const std::string& name, std::int32_t value) {
  Ask(Host, "SetDeviceValueByName", name, value);
}

ObjectRef HostServices::GetEvent(std::int32_t index) { return base::ToObject(Ask(Host, "GetEvent", index)); }

ObjectRef HostServices::GetEventEx(const std::string& name) {
  return base::ToObject(Ask(Host, "GetEventEx", name));
}

std::int32_t HostServices::NewEvent(const std::string& name) {
  return base::ToInt32(Ask(Host, "NewEvent", name));
}

ObjectRef HostServices::NewDevFunc() { return base::ToObject(Ask(Host, "NewDevFunc")); }

std::string HostServices::LastVoiceCommand() {
  const ObjectRef system = base::ToObject(Ask(Host, "System"));
  return base::ToText(Deref(system).get("LastVoiceCommand"));
}

// Both waits are the plug-in's way of staying responsive: its own timers, player events and windows run
// as well as calls from the host.
void HostServices::WaitEvents() {
  loop_.whileOpen([&] { Ask(Host, "WaitEvents"); });
  loop_.pump();
}

void HostServices::WaitSecs(std::int16_t seconds) {
  loop_.whileOpen([&] { Ask(Host, "WaitSecs", seconds); });
}

}  // namespace plugin
