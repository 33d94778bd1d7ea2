#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/Loop.hpp"
#include "base/Object.hpp"
#include "plugin/host/Unwaited.hpp"

namespace plugin {

/// The typed face of the host: one method per operation that the plug-in calls, each doing exactly one call
/// by name. Every method throws what the host's answer throws, and number 91 while the host is nothing.
/// `Unwaited` makes calls that need not be waited for one by one.
class HostServices {
 public:
  explicit HostServices(base::Loop& loop) : loop_(loop) {}

  /// The object that the host handed over, and what its `GetVXIface` returned.
  base::ObjectRef HostCallback;
  base::ObjectRef Host;

  // Operations of HostCallback.
  base::ObjectRef GetVXIface();
  void writesplash(const std::string& text);
  void registermenu(const std::string& section, const std::string& item);
  void checktrigger(const std::string& trigger);
  void forcefront(std::int32_t windowHandle);
  /// A character code, or -1 when no house code is free.
  std::int16_t GetNextFreeIOCode();

  // Operations of Host.
  std::string Version();
  /// The text last recognised: `LastVoiceCommand` of the host's `System` object.
  std::string LastVoiceCommand();
  std::string GetAppPath();
  void Launch(const std::string& url);
  std::string WEBLoggedInUser();
  void RegisterEventCB(std::int16_t mask, const base::ObjectRef& plugin);
  void RegisterLink(const base::ObjectRef& page);
  void WriteLog(const std::string& type, const std::string& text);
  /// The form with three arguments, which not every host takes.
  void WriteLog(const std::string& type, const std::string& text, const std::string& more);
  void Speak(const std::string& text, bool wait);
  /// Lets pending events be handled, here and in the host.
  void WaitEvents();
  void WaitSecs(std::int16_t seconds);
  std::string GetUrl(const std::string& host, const std::string& page, bool stripTags, std::int16_t port);
  base::Value GetINISetting(const std::string& section, const std::string& key, const base::Value& fallback,
                            const std::string& file);
  /// The host's own settings: the form without a file.
  base::Value GetINISetting(const std::string& section, const std::string& key, const base::Value& fallback);
  void SaveINISetting(const std::string& section, const std::string& key, const base::Value& value,
                      const std::string& file);
  std::string GetINISection(const std::string& section, const std::string& file);
  void ClearINISection(const std::string& section, const std::string& file);
  std::int32_t DeviceCount();
  /// By position from 1 to `DeviceCount`, or by a key from `NewDevice`.
  base::ObjectRef GetDevice(const base::Value& key);
  /// By full name; may be nothing.
  base::ObjectRef GetDeviceEx(const std::string& name);
  std::string GetDeviceCode(const std::string& name);
  base::Value NewDevice(const std::string& name);
  void DeleteIODevices(const std::string& interface);
  void DeviceButtonAdd(const std::string& code, const std::string& interface, const std::string& caption);
  void DeviceValuesAdd(const std::string& code, const std::string& values, bool flag);
  void SetDeviceStatus(const std::string& code, std::int16_t status);
  void SetDeviceString(const std::string& code, const std::string& text, bool update);
  void SetDeviceString(const std::string& code, const std::string& text);
  void SetDeviceStringByName(const std::string& name, const std::string& text, bool update);
  void SetDeviceValueByName(const std::string& name, std::int32_t value);
  base::ObjectRef GetEvent(std::int32_t index);
  base::ObjectRef GetEventEx(const std::string& name);
  std::int32_t NewEvent(const std::string& name);
  base::ObjectRef NewDevFunc();

  UnwaitedCalls& unwaited() { return unwaited_; }
  /// Runs `call` with timers, player events and windows handled while it waits, and whatever is pending
  /// behind it, as `WaitEvents` does.
  void whileWaiting(const std::function<void()>& call);

 private:
  template <class... T>
  base::Value ask(const base::ObjectRef& target, std::string_view name, T&&... arguments);

  base::Loop& loop_;
  UnwaitedCalls unwaited_{Host};
};

}  // namespace plugin
