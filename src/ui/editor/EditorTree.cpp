#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// What stands in the tree of sources, and when it is read from the player.
namespace ui::editor {

using base::Attempt;

/// A root whose children are named by a list of the catalogue.
struct PlayListEditor::Branch {
  const char* category;  ///< also the root's key and text
  const char* image;
  bool sortsMembers;
};

namespace {

constexpr const char* kLibraryRoot = "All Audio";

/// Nodes that are never filled from the player. No node bears the key "None".
bool NeverFilled(const std::string& key) {
  for (const char* each : {"Album", "Artist", "Genre", "PlayList", "URL", "None", "URLURL", "URLBrowse"})
    if (key == each) return true;
  return false;
}

}  // namespace

NodeRef PlayListEditor::addNode(const std::string& parent, const std::string& key, const std::string& text,
                                const char* image) {
  now_.CurrentNode = models_.TreeView1.add(parent, key, text, image);
  return now_.CurrentNode;
}

void PlayListEditor::addRoot(const char* key, const char* image, bool sorted) {
  KeyedTree& tree = models_.TreeView1;
  now_.CurrentNode = tree.add(key, key, image);
  tree.bold(now_.CurrentNode, true);
  tree.sorted(now_.CurrentNode, sorted);
}

void PlayListEditor::FillTreeView() {
  reported("FillTreeView", [&] {
    models_.TreeView1.clear();
    const KeyedTree::Filling filling(models_.TreeView1);
    addRoot(kLibraryRoot, image::kDrive, true);
    fillCategory({"Album", image::kAlbum, false});  // an album's members keep the player's order
    fillCategory({"Artist", image::kArtist, true});
    fillCategory({"Genre", image::kGenre, true});
    addRoot("PlayList", image::kList, true);
    fillPlayLists();
    addRoot("URL", image::kGlobe, false);
    addNode("URL", "URLURL", "Enter URL Here", image::kGlobe);
    addNode("URL", "URLBrowse", "Browse", image::kFolder);
  });
}

void PlayListEditor::fillCategory(const Branch& branch) {
  addRoot(branch.category, branch.image, true);
  base::TextListRef names;
  {
    const Reading reading(*this);
    in_.catalogue.GetGroupList(branch.category, names, "");
  }
  for (std::size_t i = 1; i <= Present(names).size(); ++i)
    if (addName(branch, names->item(static_cast<std::int32_t>(i))) && branch.sortsMembers)
      models_.TreeView1.sorted(now_.CurrentNode, true);
}

bool PlayListEditor::addName(const Branch& branch, const std::string& name) {
  Attempt step;
  if (step([&] { addNode(branch.category, branch.category + name, name, branch.image); })) return true;
  if (step.number() != base::number::kKeyNotUnique) throw base::Failure(step.number(), step.text());
  warn("Warning: \"" + name + "\" is a duplicate " + branch.category + " name and will be skipped");
  return false;
}

void PlayListEditor::fillPlayLists() {
  const Branch branch{"PlayList", image::kList, false};
  base::TextListRef names;
  std::int32_t status = catalogue::kDone;
  {
    const Reading reading(*this);
    status = in_.catalogue.GetGroupList(branch.category, names, "");
  }
  if (status != catalogue::kDone && status != catalogue::kNotFound)
    ReportEditorError(status, "", "GetPlayLists");
  const std::size_t count = Present(names).size();
  if (count == 0) return;
  DropBox& box = models_.PlayListDropBox;
  {
    const DropBox::Filling filling(box);
    for (std::size_t i = 1; i <= count; ++i) {
      if (i % 50 == 0) in_.host.WaitEvents();
      const std::string name = names->item(static_cast<std::int32_t>(i));
      if (addName(branch, name)) box.add(name);
    }
  }
  // Which the box's own order makes the first of the alphabet.
  box.listIndex(0);
}

// Whoever calls holds the playlist: a report of a failure lets other events in.
void PlayListEditor::FillTreeBranch(const player::PlaylistRef& playlist, const std::string& Parent) {
  std::string ListName;
  base::Handled(
      [&] {
        if (Parent != kLibraryRoot) ListName = Present(playlist).name();
        const player::Playlist& group = Present(playlist);
        const std::int32_t count = group.count();
        const KeyedTree::Filling filling(models_.TreeView1);
        for (std::int32_t i = 0; i < count; ++i) addMember(group, i, count, Parent + ListName, ListName);
      },
      [&](const base::Failure& failure) {
        ReportEditorError(failure.number(), failure.description(), "FillTreeBranch " + ListName);
      });
}

void PlayListEditor::addMember(const player::Playlist& playlist, std::int32_t index, std::int32_t count,
                               const std::string& group, const std::string& ListName) {
  Attempt step;
  std::string title;
  step([&] {
    const player::MediaRef media = playlist.item(index);
    const std::string url = Present(media).sourceURL();
    title = media->name();
    addNode(group, group + title, title, IsURL(url) ? image::kGlobe : image::kSound)->tag = url;
  });
  // A title that stands twice in a group shows once, and nothing is said of it here.
  if (!step.failed() || step.number() == base::number::kKeyNotUnique) return;
  ReportEditorError(step.number(), step.text(), "FillTreeBranch-2 " + ListName);
  const auto log = [&](const std::string& line) {
    step([&] { in_.host.WriteLog("Error", "Media Player " + line); });
  };
  log("Parent: '" + group + "'");
  log("Child:  '" + group + title + "'");
  log("Text:  '" + title + "'");
  log("Index: " + std::to_string(index) + " Count: " + std::to_string(count));
  log("Playlist: '" + ListName + "'");
}

void PlayListEditor::ExpandNode(const NodeRef& node) {
  if (!node) return;
  reported("ExpandNode: " + node->text(), [&] {
    if (node->tag == "Refresh") {
      models_.TreeView1.removeChildren(node);
      node->tag.clear();
    }
    if (!node->tag.empty()) return;
    // The fill leaves its own nodes there. A failure does not put it back.
    const NodeRef current = now_.CurrentNode;
    if (node->key() == kLibraryRoot)
      readLibrary(node);
    else if (!NeverFilled(node->key()))
      readGroup(node, node->parent());
    if (node->held()) now_.CurrentNode = current;
  });
}

void PlayListEditor::readLibrary(const NodeRef& node) {
  Please_Wait(true);
  const auto read = [&] {
    std::int32_t status = catalogue::kDone;
    if (!now_.LibraryPlayList) {
      player::PlaylistRef library;
      const Reading reading(*this);
      status = in_.catalogue.GetGroupItems(catalogue::kMediaLibraryCategory, "", library);
      if (!node->held()) return;  // the window has gone meanwhile
      if (library) library->name(kLibraryRoot);
      now_.LibraryPlayList = library;
    }
    const player::PlaylistRef held = now_.LibraryPlayList;
    if (status == catalogue::kDone) FillTreeBranch(held, kLibraryRoot);
    node->tag = "OK";
    models_.TreeView1.expanded(node, true);
  };
  base::Handled(read, [&](const base::Failure& failure) {
    Please_Wait(false);
    throw failure;
  });
  Please_Wait(false);
}

void PlayListEditor::readGroup(const NodeRef& node, const NodeRef& parent) {
  node->tag = "OK";
  models_.TreeView1.expanded(node, true);
  const std::string category = Present(parent).key();
  const bool isPlayList = category == "PlayList";
  if (!isPlayList && category != "Album" && category != "Artist" && category != "Genre") {
    plain("ERROR Unknown parent:" + category);
    return;
  }
  player::PlaylistRef group;
  std::int32_t status = catalogue::kDone;
  {
    const Reading reading(*this);
    status = in_.catalogue.GetGroupItems(category, node->text(), group);
  }
  if (!node->held()) return;  // the window has gone while it was read
  now_.TreePlayList = group;
  note(group);
  // What the player makes of a category has a name of its own, and the branch is found by the group's.
  if (!isPlayList) Present(group).name(node->text());
  if (status == catalogue::kDone) FillTreeBranch(group, category);
}

}  // namespace ui::editor
