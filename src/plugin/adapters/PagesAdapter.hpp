#pragma once
#include <string>

#include "pages/WebEditorForm.hpp"
#include "plugin/host/Neighbours.hpp"

namespace plugin {

/// The plug-in's pages as their two forms answer. Guests are turned away before they come here.
class PagesAdapter : public WebForms {
 public:
  PagesAdapter(pages::WebSetupForm& setup, pages::WebEditorForm& editor) : setup_(setup), editor_(editor) {}

  // Loading the editor does nothing: its link is that of the plug-in's own object.
  void loadSetupForm() override {
    if (setupLoaded_) return;
    setup_.Form_Load();
    setupLoaded_ = true;
  }
  std::string GenPage(const std::string& link) override { return editor_.GenPage(link); }
  std::string PagePut(const std::string& data) override { return editor_.MyPagePut(data); }

 private:
  pages::WebSetupForm& setup_;
  pages::WebEditorForm& editor_;
  bool setupLoaded_ = false;  ///< a form is loaded once, however often the plug-in is started
};

}  // namespace plugin
