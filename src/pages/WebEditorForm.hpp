#pragma once
#include <array>
#include <functional>
#include <string>

#include "catalogue/MediaCatalogue.hpp"
#include "pages/WebSetupForm.hpp"
#include "web/PageForm.hpp"

namespace pages {

/// What the editor is built on.
struct EditorParts {
  catalogue::MediaCatalogue& catalogue;
  catalogue::NameXref& xref;
  player::WMPPlayer& form;
  player::StaleMarks& stale;
  plugin::HostServices& host;
  plugin::Loggers& loggers;
  WebSetupForm& setup;
};

/// The working state of the editor, kept from post to post. There is one for all users: whoever posts last
/// sets it.
struct EditorFields {
  std::string Add_from;   ///< the category chosen on the add page
  std::string PlayLists;  ///< the chosen sources of the add page, by category
  std::string Albums;
  std::string Artists;
  std::string Genres;
  std::string Title;         ///< the title chosen on the add page
  std::string New_PlayList;  ///< the text fields of the main page
  std::string Renamed_PlayList;
  std::string PlayList;       ///< the playlist that is edited
  std::string PlayListItems;  ///< the item chosen on the main page
  std::string wmp_page;       ///< the page that posted
  std::string button;         ///< the button that was pressed, "None" without one
};

/// A category that titles are added from, and the field that keeps its choice.
struct EditorSource {
  const char* category;
  const char* label;  ///< also the field's name on the page
  std::string EditorFields::*chosen;
};

/// All sources in the order of the page.
const std::array<EditorSource, 4>& EditorSources();

/// The playlist editor on the web: a page that shows one playlist, and a page that adds titles to it. Every
/// change is made on the player at once. No operation throws: a failure ends it with a line in the log and an
/// empty answer. While one waits for the host, a further post may come in; each is answered for itself.
class WebEditorForm {
 public:
  explicit WebEditorForm(const EditorParts& parts);

  std::string GenPage(const std::string& lnk);
  /// The main page with the first playlist.
  std::string BuildPage(const std::string& lnk);
  /// The answer to a post of either page of the plug-in: the setup page's posts come through here as well.
  std::string MyPagePut(const std::string& data);

  std::string BuildMainPage();
  std::string BuildAddPage();
  std::string AddTitleToPlayList();
  std::string NewWebPlayList();
  std::string RenamePlayList();
  std::string DeletePlayList();
  std::string DeleteFromPlayList();
  /// The titles of the chosen source, sorted. A status of the catalogue: -1 without a source, or for one
  /// without titles. Forgets what is chosen in the other categories.
  std::int32_t GetFileDropList(base::TextListRef& titles);

  [[nodiscard]] const EditorFields& fields() const { return fields_; }

 private:
  /// Runs an operation that may have something to say, and answers with the page behind it.
  std::string operation(const char* name, const std::function<std::string()>& change,
                        std::string (WebEditorForm::*page)());
  std::string dispatch();
  std::string beginAdding();
  /// The drop list of a source.
  std::string sourceList(const EditorSource& source, const std::string& chosen);

  EditorParts in_;
  web::PageForm page_;
  EditorFields fields_;
};

}  // namespace pages
