#pragma once
#include "base/Members.hpp"
#include "plugin/Lifecycle.hpp"
#include "plugin/VxifEvents.hpp"
#include "plugin/commands/Dispatch.hpp"

namespace plugin {

/// `vxif`, the plug-in's public object: the host creates it, hands it a callback object, asks it to start and
/// from then on calls its operations. All of them answer from one table.
class Vxif : public base::TableObject, public std::enable_shared_from_this<Vxif> {
 public:
  Vxif(Lifecycle& lifecycle, Dispatch& dispatch, HostServices& host, const PluginState& state,
       base::Platform& platform, WebForms& web, const EventParts& events);

  static constexpr std::int32_t kCapabilities = 4;

  /// Opens the setup page in the user's browser. Failures are skipped.
  static void ConfigIO(HostServices& host);

 private:
  base::MemberTable table(const EventParts& events);
  std::string GenPage(const std::string& link);
  std::string PagePut(const std::string& data);
  void ConfigDevice(const std::string& hc, const std::string& dc);

  Lifecycle& lifecycle_;
  Dispatch& dispatch_;
  HostServices& host_;
  const PluginState& state_;
  base::Platform& platform_;
  WebForms& web_;
};

}  // namespace plugin
