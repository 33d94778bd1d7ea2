#include "pages/WebEditorForm.hpp"

#include <algorithm>
#include <iterator>

#include "base/Text.hpp"
#include "pages/UnknownArgument.hpp"

// The door of the editor: posts, their fields and the operation that each button stands for.
namespace pages {

namespace {

struct Argument {
  const char* name;
  std::string EditorFields::*field;
};

const Argument kArguments[] = {
    {"Add_from", &EditorFields::Add_from},
    {"PlayLists", &EditorFields::PlayLists},
    {"New_PlayList", &EditorFields::New_PlayList},
    {"Renamed_PlayList", &EditorFields::Renamed_PlayList},
    {"PlayList", &EditorFields::PlayList},
    {"Albums", &EditorFields::Albums},
    {"Artists", &EditorFields::Artists},
    {"Genres", &EditorFields::Genres},
    {"Title", &EditorFields::Title},
    {"wmp_page", &EditorFields::wmp_page},
    {"button", &EditorFields::button},
    {"PlayListItems", &EditorFields::PlayListItems},
};

/// The argument of that name, or null.
const Argument* FindArgument(const std::string& name) {
  const auto* found = std::find_if(std::begin(kArguments), std::end(kArguments),
                                   [&](const Argument& argument) { return name == argument.name; });
  return found == std::end(kArguments) ? nullptr : found;
}

}  // namespace

const std::array<EditorSource, 4>& EditorSources() {
  static const std::array<EditorSource, 4> kSources{{
      {"Album", "Albums", &EditorFields::Albums},
      {"Artist", "Artists", &EditorFields::Artists},
      {"Genre", "Genres", &EditorFields::Genres},
      {"PlayList", "PlayLists", &EditorFields::PlayLists},
  }};
  return kSources;
}

WebEditorForm::WebEditorForm(const EditorParts& parts)
    : in_(parts), page_("WMP_PListEdit", web::EditorPageLog(parts.loggers)) {}

std::string WebEditorForm::GenPage(const std::string& lnk) { return BuildPage(lnk); }

std::string WebEditorForm::BuildPage(const std::string& /*lnk: there is one page to begin with*/) {
  fields_.button.clear();
  fields_.wmp_page.clear();
  fields_.PlayList.clear();
  return BuildMainPage();
}

std::string WebEditorForm::MyPagePut(const std::string& data) {
  return page_.Logged("MyPagePut", [&]() -> std::string {
    // A plain search in the body: the class has one door for the posts of both pages.
    if (base::LowerCase(data).find("wmp_page=setup_page") != std::string::npos)
      return in_.setup.MyPagePut(data);
    const web::FormArgs args = page_.Posted(data);
    // First what the host is told, as it may let a further post in meanwhile: from the first field on,
    // nothing comes between this post and its operation.
    for (const auto& [name, value] : args)
      if (FindArgument(name) == nullptr && name != "ref_page" && name != "Dummy")
        LogUnknownArgument(in_.host, name, value);
    fields_.button = "None";
    for (const auto& [name, value] : args)
      if (const Argument* argument = FindArgument(name)) fields_.*argument->field = value;
    return dispatch();
  });
}

std::string WebEditorForm::dispatch() {
  struct Row {
    const char* page;
    const char* button;
    std::string (WebEditorForm::*action)();
  };
  static constexpr Row kRows[] = {
      {"Main_Page", "Add Item", &WebEditorForm::beginAdding},
      {"Main_Page", "Refresh", &WebEditorForm::BuildMainPage},
      {"Main_Page", "None", &WebEditorForm::BuildMainPage},  // a choice in the drop list
      {"Main_Page", "New List", &WebEditorForm::NewWebPlayList},
      {"Main_Page", "Rename", &WebEditorForm::RenamePlayList},
      {"Main_Page", "Delete List", &WebEditorForm::DeletePlayList},
      {"Main_Page", "Delete Item", &WebEditorForm::DeleteFromPlayList},
      {"Add_Page", "Refresh", &WebEditorForm::BuildAddPage},
      {"Add_Page", "None", &WebEditorForm::BuildAddPage},
      {"Add_Page", "Add Item", &WebEditorForm::AddTitleToPlayList},
      {"Add_Page", "Return", &WebEditorForm::BuildMainPage},
  };
  for (const Row& row : kRows)
    if (fields_.wmp_page == row.page && fields_.button == row.button) return (this->*row.action)();
  return {};
}

std::string WebEditorForm::beginAdding() {
  for (std::string EditorFields::*field :
       {&EditorFields::Add_from, &EditorFields::PlayLists, &EditorFields::Artists, &EditorFields::Albums,
        &EditorFields::Genres, &EditorFields::Title})
    (fields_.*field).clear();
  return BuildAddPage();
}

}  // namespace pages
