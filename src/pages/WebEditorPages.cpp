#include <algorithm>

#include "base/Text.hpp"
#include "pages/WebEditorForm.hpp"
#include "web/Concatenate.hpp"
#include "web/HtmlFields.hpp"
#include "web/UtilityModule.hpp"

// The texts of the editor's two pages.
namespace pages {

using base::TextListRef;
using web::ConcatAdd;

namespace {

constexpr const char* kLineEnd = "\r\n";
constexpr const char* kSubmitOnChange = R"(onChange="form.submit();")";
constexpr const char* kWidth = R"(style="width: 200")";
constexpr std::int16_t kOneRow = 1;
constexpr std::int16_t kItemRows = 5;

/// Adds the names of a group's members in their order. Throws what the player throws.
void AddNames(const player::Playlist& group, base::TextList& names) {
  const std::int32_t count = group.count();
  for (std::int32_t i = 0; i < count; ++i) {
    const player::MediaRef member = group.item(i);
    if (!member) throw base::Failure(base::number::kObjectMissing);
    names.add(member->name());
  }
}

/// A new list with the empty text in front, so that a choice has to be made.
base::TextList WithEmptyFirst(const base::TextList& list) {
  base::TextList longer;
  longer.reserve(list.size() + 1);
  longer.add({});
  for (const std::string& text : list) longer.add(text);
  return longer;
}

/// The source that is chosen from, or null. A change of the category forgets what was chosen in the others.
const EditorSource* ForgetOthers(EditorFields& fields) {
  const auto& sources = EditorSources();
  const auto* from = std::find_if(sources.begin(), sources.end(), [&](const EditorSource& source) {
    return fields.Add_from == source.category;
  });
  if (from == sources.end()) return nullptr;
  for (const EditorSource& source : sources)
    if (&source != from) (fields.*source.chosen).clear();
  return from;
}

/// A button that makes a change, beside the text field with the name that it takes.
std::string ButtonWithName(const char* button, const char* field) {
  return "<p>" + web::FormSubmit("button", button, "") + "&nbsp" + web::FormText("", field, "", "") + "</p>" +
         kLineEnd;
}

}  // namespace

std::string WebEditorForm::BuildMainPage() {
  return page_.Logged("BuildMainPage", [&] {
    TextListRef lists;
    const std::int32_t status = in_.catalogue.GetGroupList(catalogue::kPlayListCategory, lists, "");
    web::SortCollection(lists);
    if (fields_.PlayList.empty() && status == catalogue::kDone) fields_.PlayList = lists->item(1);
    const std::string edited = fields_.PlayList;
    player::PlaylistRef group;
    base::TextList items;
    if (in_.catalogue.GetGroupItems(catalogue::kPlayListCategory, edited, group) == catalogue::kDone)
      AddNames(*group, items);
    else
      page_.Message = "Error: PlayList '" + edited + "' does not exist";

    web::StringAccumulator text;
    web::ConcatInit(text);
    ConcatAdd(text, page_.PageHeader("Edit PlayList", "Main_Page"));
    ConcatAdd(text, page_.FormDropDown(catalogue::kPlayListCategory, "PlayList", "Selected PlayList", kOneRow,
                                       edited, *lists, std::string(kSubmitOnChange) + " " + kWidth));
    ConcatAdd(text, std::string("<br>") + kLineEnd);
    ConcatAdd(text, page_.FormDropDown(catalogue::kPlayListCategory, "PlayListItems", "", kItemRows, "",
                                       items, kWidth));
    ConcatAdd(text, web::FormSubmit("button", "Refresh", ""));
    ConcatAdd(text, "<p>");
    for (const char* button : {"Add Item", "Delete Item", "Delete List"})
      ConcatAdd(text, web::FormSubmit("button", button, ""));
    ConcatAdd(text, std::string("</p>") + kLineEnd);
    ConcatAdd(text, ButtonWithName("New List", "New_PlayList"));
    ConcatAdd(text, ButtonWithName("Rename", "Renamed_PlayList"));
    ConcatAdd(text, std::string("<BR clear=all><hr noshade></form>") + kLineEnd);
    return web::ConcatResult(text);
  });
}

std::string WebEditorForm::BuildAddPage() {
  return page_.Logged("BuildAddPage", [&] {
    // The page of this post: while the lists are read, another may change the fields.
    EditorFields shown = fields_;
    ForgetOthers(shown);
    web::StringAccumulator text;
    web::ConcatInit(text);
    ConcatAdd(text, page_.PageHeader("Add to PlayList", "Add_Page"));
    TextListRef found;
    base::TextList titles;
    if (GetFileDropList(found) == catalogue::kDone) titles = WithEmptyFirst(*found);
    base::TextList categories;
    for (const EditorSource& source : EditorSources()) categories.add(source.category);
    ConcatAdd(text, web::FormHidden("PlayList", shown.PlayList));
    ConcatAdd(text, web::FormText("Add to PlayList", "Dummy", shown.PlayList, "DISABLED"));
    ConcatAdd(text, "<br><br>");
    ConcatAdd(text, page_.FormDropDown("", "Add_from", "Add from", kOneRow, shown.Add_from, categories,
                                       kSubmitOnChange));
    bool chosen = false;
    const std::string category = shown.Add_from.empty() ? "Album" : shown.Add_from;
    for (const EditorSource& source : EditorSources()) {
      if (category != source.category) continue;
      ConcatAdd(text, "<br><br>");
      ConcatAdd(text, sourceList(source, shown.*source.chosen));
      chosen = !(shown.*source.chosen).empty();
    }
    const char* greyed = chosen ? "" : "Disabled";
    ConcatAdd(text, "<br><br>");
    ConcatAdd(text,
              page_.FormDropDown(shown.Add_from, "Title", "Title", kOneRow, shown.Title, titles, greyed));
    ConcatAdd(text, "<br><br>");
    ConcatAdd(text, web::FormSubmit("button", "Refresh", ""));
    ConcatAdd(text, web::FormSubmit("button", "Add Item", greyed));
    ConcatAdd(text, web::FormSubmit("button", "Return", ""));
    ConcatAdd(text, std::string("</form>") + kLineEnd);
    return web::ConcatResult(text);
  });
}

std::string WebEditorForm::sourceList(const EditorSource& source, const std::string& chosen) {
  TextListRef names;
  in_.catalogue.GetGroupList(source.category, names, "");
  // The sorted list is a new one: the empty text must not get into the catalogue's own.
  web::SortCollection(names);
  return page_.FormDropDown(source.category, source.label, source.label, kOneRow, chosen,
                            WithEmptyFirst(*names), kSubmitOnChange);
}

std::int32_t WebEditorForm::GetFileDropList(TextListRef& titles) {
  titles = std::make_shared<base::TextList>();
  std::int32_t status = catalogue::kDone;
  page_.Logged("GetFileDropList", [&] {
    const EditorSource* from = ForgetOthers(fields_);
    if (from == nullptr) {
      status = catalogue::kNotFound;
      return;
    }
    player::PlaylistRef list;
    const std::string name = fields_.*from->chosen;
    status = in_.catalogue.GetGroupItems(from->category, name, list);
    if (status != catalogue::kDone) return;
    AddNames(*list, *titles);
    if (titles->empty())
      status = catalogue::kNotFound;
    else
      web::SortCollection(titles);
  });
  return status;
}

}  // namespace pages
