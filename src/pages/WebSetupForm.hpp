#pragma once
#include <string>

#include "base/Members.hpp"
#include "pages/WebSetupOptions.hpp"
#include "player/WMPCalls.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Neighbours.hpp"
#include "web/PageForm.hpp"

namespace pages {

/// What the setup page reads and changes.
struct SetupParts {
  plugin::HostServices& host;
  plugin::Settings& settings;
  plugin::PluginState& state;
  player::WMPCalls& calls;
  plugin::Desktop& desktop;
};

/// The setup page: one form with a choice and a column of boxes. It is a public object, which the host reads
/// its link from, and it lives as long as the plug-in. Nothing carries over from one post to the next.
class WebSetupForm : public base::TableObject, public std::enable_shared_from_this<WebSetupForm> {
 public:
  explicit WebSetupForm(const SetupParts& parts);

  /// Loading the form gives its link and registers it with the host. Throws what the host throws.
  void Form_Load();
  /// The page's text; guests are turned away. A failure leaves an empty text.
  std::string GenPage(const std::string& lnk);
  std::string PagePut(const std::string& data) { return MyPagePut(data); }
  /// The answer to a post, which is not asked who sends it. Never throws: a failure leaves a line in the log
  /// and an empty answer.
  std::string MyPagePut(const std::string& data);

 private:
  base::MemberTable table();
  std::string BuildSetupPage();
  std::string UpdateConfig(const SetupPost& post);

  SetupParts in_;
  web::PageForm page_;
  std::string Link_;
  std::string LinkText_;
  std::string Page_Title_;
};

}  // namespace pages
