#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "base/Attempt.hpp"
#include "catalogue/MediaCatalogue.hpp"
#include "catalogue/NameXref.hpp"
#include "player/StaleMarks.hpp"
#include "player/WMPPlayer.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/PluginState.hpp"
#include "plugin/host/Settings.hpp"
#include "ui/editor/EditorState.hpp"
#include "ui/editor/EditorWindow.hpp"

namespace ui::editor {

/// What the playlist editor is built on.
struct EditorParts {
  EditorWindow& window;
  catalogue::MediaCatalogue& catalogue;
  catalogue::NameXref& xref;
  player::WMPPlayer& form;
  player::StaleMarks& stale;
  plugin::HostServices& host;
  plugin::Settings& settings;
  plugin::PluginState& state;
};

/// The playlist editor on the desktop: a tree of sources, the list of one playlist, drags from one into the
/// other, and commands. Every change is made on the player at once; there is no save, no undo and no way back
/// for what was done before a failure. No operation throws: a failure ends it with a line in the log and a
/// message. Whatever asks the user, the catalogue or the host may let other events of the window in, so that
/// what an operation still needs it holds itself.
class PlayListEditor : public EditorEvents {
 public:
  explicit PlayListEditor(const EditorParts& parts);
  ~PlayListEditor() override;
  PlayListEditor(const PlayListEditor&) = delete;
  PlayListEditor& operator=(const PlayListEditor&) = delete;
  PlayListEditor(PlayListEditor&&) = delete;
  PlayListEditor& operator=(PlayListEditor&&) = delete;

  /// Shows the window without blocking; one that is open comes to the front.
  void show();
  [[nodiscard]] EditorModels& models() { return models_; }
  [[nodiscard]] const EditorState& state() const { return now_; }

  // The window.
  void Form_Load();
  void Form_Unload() override;
  void Close_Button_Click() override;
  void Please_Wait(bool on);
  void ReportEditorError(std::int32_t number, const std::string& description, const std::string& procedure);

  // The tree.
  void FillTreeView();
  void FillTreeBranch(const player::PlaylistRef& playlist, const std::string& Parent);
  void ExpandNode(const NodeRef& node);
  void TreeView1_NodeClick(const NodeRef& node) override;
  void TreeView1_Expand(const NodeRef& node) override;
  void TreeView1_GotFocus() override;
  void TreeView1_KeyDown(std::int16_t keyCode, std::int16_t shift) override;
  void TreeView1_KeyUp(std::int16_t keyCode, std::int16_t shift) override;
  void TreeView1_MouseDown(std::int16_t button, std::int16_t shift, float x, float y) override;
  /// Marks a member whose file is gone. False for such a one.
  bool SourceExists(const NodeRef& node);

  // The list.
  void PlayListDropBox_Click();
  void ListView1_ItemClick(const ItemRef& item) override;
  void ListView1_ColumnClick() override;
  void ListView1_GotFocus() override;
  void ListView1_KeyDown(std::int16_t keyCode, std::int16_t shift) override;
  void ListView1_KeyUp(std::int16_t keyCode, std::int16_t shift) override;
  void ListView1_MouseDown(std::int16_t button, std::int16_t shift, float x, float y) override;

  // Drags.
  [[nodiscard]] bool IsCopyable(const NodeRef& node);
  void TreeView1_MouseMove(std::int16_t button, std::int16_t shift, float x, float y) override;
  void ListView1_MouseMove(std::int16_t button, std::int16_t shift, float x, float y) override;
  void TreeView1_DragOver(Control source, float x, float y, DragState state) override;
  void ListView1_DragOver(Control source, float x, float y, DragState state) override;
  void TreeView1_DragDrop(Control source, float x, float y) override;
  void ListView1_DragDrop(Control source, float x, float y) override;
  /// Puts an entry of the source pane before the target, or at the end without one. `copy` 0 takes it from
  /// where it was.
  void MoveNode(const EntryRef& item, const ItemRef& target, std::int16_t copy, Control source);
  /// The media that was added, or none; `target` becomes the new item.
  player::MediaRef Add_Media_Item(const EntryRef& item, ItemRef& target, Control source, std::int16_t copy);

  // Commands.
  void New_PlayList_Click() override;
  void Rename_Button_Click() override;
  void Delete_Button_Click() override;
  void MoveUp_Button_Click() override;
  void MoveDown_Button_Click() override;
  void Browse_Click();
  void TreeView1_BeforeLabelEdit(std::int16_t& Cancel) override;
  void TreeView1_AfterLabelEdit(std::int16_t& Cancel, std::string& NewString) override;

 private:
  struct Branch;
  struct Addition;

  /// While one lives the player is being read. A read that lasts shows its progress and so lets the user's
  /// gestures in, in the midst of an operation: they are refused, and what they have selected is put back.
  class Reading {
   public:
    explicit Reading(PlayListEditor& editor)
        : editor_(editor),
          node_(editor.models_.TreeView1.selectedItem()),
          item_(editor.models_.ListView1.selectedItem()) {
      ++editor_.readings_;
    }
    ~Reading();
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    Reading(Reading&&) = delete;
    Reading& operator=(Reading&&) = delete;

   private:
    PlayListEditor& editor_;
    NodeRef node_;
    ItemRef item_;
  };

  // The frame.
  [[nodiscard]] bool reads() const { return readings_ > 0; }
  /// Nothing while the player is being read: the operation can then only be an event that came in meanwhile.
  void reported(const std::string& procedure, const std::function<void()>& operation);
  /// The same for a command that changes playlists: some failures have words of their own. `nameInUse` are
  /// those for a name that is taken; empty where that is a failure like any other.
  void command(const std::string& procedure, const std::string& nameInUse,
               const std::function<void()>& operation);
  MessageAnswer plain(const std::string& text) { return in_.window.message(MessageKind::kPlain, text); }
  void warn(const std::string& text);
  [[nodiscard]] float storedPlace(const std::string& key) const;
  void load();
  void enable(Control button, bool& now, bool value);
  void disableButtons();
  /// The playlist of that name, into a handle that may hold it already. A status of the catalogue.
  std::int32_t readPlayList(const std::string& name, player::PlaylistRef& handle);
  /// To be done with each playlist that was read: whether it is a stored one.
  void note(const player::PlaylistRef& handle);
  /// It was a stored one and has been removed. It keeps its name, and another may bear that by now.
  [[nodiscard]] bool gone(const player::PlaylistRef& handle) const;
  /// A playlist that is to be changed. Throws 91 for none, and 53 for one that has gone: what is changed in
  /// its handle would be nowhere.
  [[nodiscard]] player::Playlist& stillThere(const player::PlaylistRef& handle) const;

  // The tree.
  NodeRef addNode(const std::string& parent, const std::string& key, const std::string& text,
                  const char* image);
  void addRoot(const char* key, const char* image, bool sorted);
  void fillCategory(const Branch& branch);
  void fillPlayLists();
  bool addName(const Branch& branch, const std::string& name);
  void addMember(const player::Playlist& playlist, std::int32_t index, std::int32_t count,
                 const std::string& group, const std::string& ListName);
  void readLibrary(const NodeRef& node);
  void readGroup(const NodeRef& node, const NodeRef& parent);
  void clickBelowRoot(const NodeRef& node, const std::string& root);

  // The list.
  /// None where the current item is not in the list any more.
  [[nodiscard]] ItemRef currentItem() const;
  void fillList();
  void addTitle(const player::Playlist& playlist, std::int32_t index, const std::string& box);
  void pasteInList();

  // Drags.
  void pickUp(std::int16_t keyCode, const EntryRef& item, Control source);
  [[nodiscard]] std::int16_t copyOfTreeDrop() const;
  void reorder(const EntryRef& item, const ItemRef& target);
  /// What takes an entry from where it was, behind its addition.
  void takeAway(const EntryRef& item, Control source, const Addition& added);
  /// False for what was not added.
  bool add(const EntryRef& item, Control source, std::int16_t copy, Addition& added);
  void findMember(const EntryRef& item, Addition& added);
  void findInLibrary(const EntryRef& item, Addition& added);
  void addAddress(const EntryRef& item, Addition& added);
  void refuse(Addition& added, const std::string& text);
  void store(const Addition& added, std::int16_t copy);

  // Commands.
  void deletePlayList();
  void deleteListItem();
  void takeFromList(const ItemRef& item);
  void renamePlayList(std::int16_t& Cancel, const std::string& wanted);
  void showRenamed(const NodeRef& node, const std::string& old, const std::string& name);

  EditorParts in_;
  EditorModels models_;
  EditorState now_;
  std::set<std::weak_ptr<player::Playlist>, std::owner_less<>> stored_;  ///< those that were read
  bool loading_ = false;
  int readings_ = 0;
};

/// What a press of the mouse makes of `CopyMode`. The mask was written as if it were the key code of Ctrl,
/// and not its bit among the held keys (2): so Shift makes a drag a copy, and a press with Ctrl down clears
/// that. It stays, since Ctrl counts by its own key events.
constexpr std::int16_t CopyModeAtPress(std::int16_t shift) {
  constexpr std::int16_t kMask = 17;
  return (shift & kMask) != 0 ? 1 : 0;
}

/// True for an address that isn't looked for on this machine. One of the secure web scheme is none.
bool IsURL(const std::string& text);

}  // namespace ui::editor
