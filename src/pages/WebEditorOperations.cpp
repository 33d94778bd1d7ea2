#include "base/Text.hpp"
#include "pages/WebEditorForm.hpp"
#include "web/UtilityModule.hpp"

// What the editor's buttons change. An operation's message is shown by the page that it ends in. A failure
// that the player raises leaves the operation and its page; the words "Unable to" are for one that it tells
// of without raising it. What was asked for is copied at the start: while the catalogue calls the host, a
// further post may change the fields.
namespace pages {

using catalogue::kDone;
using catalogue::kPlayListCategory;

namespace {

std::string Quoted(const std::string& name) { return "'" + name + "'"; }

}  // namespace

std::string WebEditorForm::operation(const char* name, const std::function<std::string()>& change,
                                     std::string (WebEditorForm::*page)()) {
  return page_.Logged(name, [&] {
    const std::string said = change();
    if (!said.empty()) page_.Message = said;
    return (this->*page)();
  });
}

std::string WebEditorForm::AddTitleToPlayList() {
  return operation(
      "AddTitleToPlayList",
      [&]() -> std::string {
        EditorFields asked = fields_;
        if (asked.Title.empty()) return "Error: A title must be selected before adding!";
        player::PlaylistRef target;
        if (in_.catalogue.GetGroupItems(kPlayListCategory, asked.PlayList, target) != kDone)
          return "Error: PlayList " + Quoted(asked.PlayList) + " does not exist";
        player::PlaylistRef source;
        std::int32_t status = catalogue::kNotFound;
        for (const EditorSource& each : EditorSources())
          if (asked.Add_from == each.category)
            status = in_.catalogue.GetGroupItems(each.category, asked.*each.chosen, source);
        if (status != kDone) return "Error: The " + Quoted(asked.Add_from) + " cannot be found";
        // The title is replaced by the library's own, in the message and on the page as well.
        player::MediaRef item;
        status = in_.catalogue.GetMediaItem(asked.Title, source, item);
        fields_.Title = asked.Title;
        if (status != kDone) return "Error: " + Quoted(asked.Title) + " cannot be found in the Media Library";
        target->appendItem(item);
        return "Added: " + Quoted(asked.Title) + " to PlayList: " + Quoted(asked.PlayList);
      },
      &WebEditorForm::BuildAddPage);
}

std::string WebEditorForm::NewWebPlayList() {
  return operation(
      "NewWebPlayList",
      [&]() -> std::string {
        std::string wanted = base::TrimBlanks(fields_.New_PlayList);
        // The cross-reference knows the name as typed, the player gets the filtered one.
        std::string key;
        in_.xref.AddNameXref(kPlayListCategory, wanted, key);
        web::FilterString(wanted, "HTML", " ");
        fields_.New_PlayList = wanted;
        if (wanted.empty()) return "Error: The new PlayList name must be entered!";
        player::PlaylistRef list;
        if (in_.catalogue.CreatePlayList(wanted, list) != kDone)
          return "Error: Unable to add PlayList: " + Quoted(wanted);
        fields_.PlayList = wanted;
        fields_.New_PlayList.clear();
        return "Added new PlayList: " + Quoted(wanted);
      },
      &WebEditorForm::BuildMainPage);
}

std::string WebEditorForm::RenamePlayList() {
  return operation(
      "RenamePlayList",
      [&]() -> std::string {
        fields_.Renamed_PlayList = base::TrimBlanks(fields_.Renamed_PlayList);
        const std::string wanted = fields_.Renamed_PlayList;
        const std::string edited = fields_.PlayList;
        if (wanted.empty()) return "Error: A new PlayList name must be entered!";
        player::PlaylistRef list;
        if (in_.catalogue.GetGroupItems(kPlayListCategory, edited, list) != kDone)
          return "Error: Unable to rename PlayList: " + Quoted(edited) + ", PlayList does not exist!";
        list->name(wanted);
        std::string key;
        in_.xref.RemoveNameXref(kPlayListCategory, edited);
        in_.xref.AddNameXref(kPlayListCategory, wanted, key);
        fields_.PlayList = wanted;
        fields_.Renamed_PlayList.clear();
        return "PlayList " + Quoted(edited) + " Renamed to: " + Quoted(wanted);
      },
      &WebEditorForm::BuildMainPage);
}

std::string WebEditorForm::DeletePlayList() {
  return operation(
      "DeletePlayList",
      [&]() -> std::string {
        const std::string edited = fields_.PlayList;
        if (edited.empty()) return {};
        player::PlaylistRef list;
        if (in_.catalogue.GetGroupItems(kPlayListCategory, edited, list) != kDone)
          return "Error: Unable to delete Playlist: " + Quoted(edited) + ", PlayList does not exist!";
        in_.stale.PlayListsStale = true;
        in_.form.wmp9().playlistCollection().remove(list);
        in_.xref.RemoveNameXref(kPlayListCategory, edited);
        // The page behind it selects the first list.
        fields_.PlayList.clear();
        return "Deleted PlayList: " + Quoted(edited);
      },
      &WebEditorForm::BuildMainPage);
}

std::string WebEditorForm::DeleteFromPlayList() {
  return operation(
      "DeleteFromPlayList",
      [&]() -> std::string {
        const std::string edited = fields_.PlayList;
        std::string wanted = fields_.PlayListItems;
        if (wanted.empty()) return "Error: An item to be deleted must be selected!";
        player::PlaylistRef list;
        if (in_.catalogue.GetGroupItems(kPlayListCategory, edited, list) != kDone)
          return "Error: Unable to delete, PlayList: " + Quoted(edited) + " does not exist";
        player::MediaRef item;
        const std::int32_t status = in_.catalogue.GetMediaItem(wanted, list, item);
        fields_.PlayListItems = wanted;  // the library's own name
        if (status != kDone)
          return "Error: " + Quoted(wanted) + " does not exist in PlayList: " + Quoted(edited);
        list->removeItem(item);
        fields_.PlayListItems.clear();
        return "Deleted: " + Quoted(wanted) + ", from PlayList: " + Quoted(edited);
      },
      &WebEditorForm::BuildMainPage);
}

}  // namespace pages
