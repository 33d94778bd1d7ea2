#pragma once
#include <QtCore/QPointer>

#include "desktop/editor/EditorPane.hpp"
#include "desktop/editor/PlayListWindow.hpp"
#include "support/desktop/PopupScene.hpp"

namespace support {

namespace editor = ui::editor;
using editor::Control;
using editor::DragState;

/// Records what the editor's window reports, and lets entries be dragged.
class EditorReports : public editor::EditorEvents {
 public:
  EditorReports(Journal& journal, editor::EditorModels& models) : journal_(journal), models_(models) {}
  desktop::PlayListWindow* window = nullptr;
  bool editable = true;      ///< labels
  bool acceptsLabel = true;  ///< that was edited
  std::function<void()> onTreePress = [] {};
  std::function<void()> onLabel = [] {};  ///< one was edited
  std::function<void()> onUnload = [] {};

  void Form_Unload() override {
    journal_.add("unload");
    onUnload();
  }
  void TreeView1_NodeClick(const editor::NodeRef& node) override { journal_.add("click " + node->text()); }
  void TreeView1_Expand(const editor::NodeRef& node) override { journal_.add("expand " + node->text()); }
  void TreeView1_GotFocus() override { journal_.add("tree focus"); }
  void TreeView1_KeyDown(std::int16_t code, std::int16_t shift) override { key("tree key", code, shift); }
  void TreeView1_KeyUp(std::int16_t code, std::int16_t /*shift*/) override { key("tree key up", code, 0); }
  void TreeView1_MouseDown(std::int16_t button, std::int16_t shift, float x, float y) override {
    const editor::NodeRef node = window->nodeAt(x, y);
    key("tree press " + (node ? node->text() : std::string("nothing")), button, shift);
    onTreePress();
  }
  void TreeView1_MouseMove(std::int16_t button, std::int16_t /*shift*/, float x, float y) override {
    const editor::NodeRef node = window->nodeAt(x, y);
    key("tree move " + (node ? node->text() : std::string("nothing")), button, 0);
    window->dragIcon(Control::kTreeView1, "No");
    window->beginDrag(Control::kTreeView1);
  }
  void TreeView1_DragOver(Control source, float /*x*/, float /*y*/, DragState state) override {
    over("tree over", source, state);
    window->dragIcon(source, "No");
  }
  void TreeView1_DragDrop(Control source, float /*x*/, float /*y*/) override {
    journal_.add(std::string("tree drop ") + editor::layout::Of(source).name);
  }
  void TreeView1_BeforeLabelEdit(std::int16_t& Cancel) override {
    journal_.add("before edit");
    if (!editable) Cancel = 1;
  }
  void TreeView1_AfterLabelEdit(std::int16_t& Cancel, std::string& NewString) override {
    journal_.add("after edit " + NewString);
    onLabel();
    if (acceptsLabel)
      NewString += "!";
    else
      Cancel = 1;
  }
  void ListView1_ItemClick(const editor::ItemRef& item) override { journal_.add("click " + item->text()); }
  void ListView1_ColumnClick() override { journal_.add("column"); }
  void ListView1_GotFocus() override { journal_.add("list focus"); }
  void ListView1_KeyDown(std::int16_t code, std::int16_t shift) override { key("list key", code, shift); }
  void ListView1_KeyUp(std::int16_t code, std::int16_t /*shift*/) override { key("list key up", code, 0); }
  void ListView1_MouseDown(std::int16_t button, std::int16_t shift, float x, float y) override {
    const editor::ItemRef item = window->itemAt(x, y);
    key("list press " + (item ? item->text() : std::string("nothing")), button, shift);
  }
  void ListView1_MouseMove(std::int16_t button, std::int16_t /*shift*/, float /*x*/, float /*y*/) override {
    key("list move", button, 0);
    window->dragIcon(Control::kListView1, "Drag");
    window->beginDrag(Control::kListView1);
  }
  void ListView1_DragOver(Control source, float x, float y, DragState state) override {
    over("list over", source, state);
    window->dragIcon(source, "Drag");
    const editor::ItemRef hit = window->itemAt(x, y);
    models_.ListView1.dropHighlight(state == DragState::kLeave ? nullptr : hit);
    // As far as its edge goes.
    const bool below = y > editor::layout::Of(Control::kListView1).height - 375;
    if (hit && below && models_.ListView1.indexOf(*hit) < models_.ListView1.count())
      window->ensureVisible(models_.ListView1.item(models_.ListView1.indexOf(*hit) + 1));
  }
  void ListView1_DragDrop(Control source, float x, float y) override {
    const editor::ItemRef item = window->itemAt(x, y);
    journal_.add(std::string("list drop ") + editor::layout::Of(source).name + " on " +
                 (item ? item->text() : std::string("nothing")));
    models_.ListView1.dropHighlight(nullptr);
    window->endDrag(source);
  }
  void New_PlayList_Click() override { journal_.add("new"); }
  void Rename_Button_Click() override { journal_.add("rename"); }
  void Delete_Button_Click() override { journal_.add("delete"); }
  void MoveUp_Button_Click() override { journal_.add("up"); }
  void MoveDown_Button_Click() override { journal_.add("down"); }
  void Close_Button_Click() override { window->close(); }

 private:
  void key(const std::string& what, std::int16_t code, std::int16_t shift) {
    journal_.add(what + " " + std::to_string(code) + (shift != 0 ? " " + std::to_string(shift) : ""));
  }
  void over(const std::string& what, Control source, DragState state) {
    static const char* const kStates[] = {" enter", " leave", " over"};
    const std::string line = what + " " + editor::layout::Of(source).name + kStates[static_cast<int>(state)];
    // It is repeated as often as the mouse moves.
    if (journal_.lines().empty() || journal_.lines().back() != line) journal_.add(line);
  }

  Journal& journal_;
  editor::EditorModels& models_;
};

/// The editor's window on a screen, over the real models.
class EditorScene : public ::testing::Test {
 protected:
  /// `prepare` comes behind the screen and before the windows.
  explicit EditorScene(const std::function<void()>& prepare = [] {}) {
    prepare();
    windows = OpenDesktop(loop);
    window = std::make_unique<desktop::PlayListWindow>(*windows);
    reports.window = window.get();
    window->serve(&reports, &models);
  }
  ~EditorScene() override { window->serve(nullptr, nullptr); }

  /// Two albums with titles, and a playlist in the list.
  void fill() {
    editor::KeyedTree& tree = models.TreeView1;
    tree.bold(tree.add("All Audio", "All Audio", "Drive"), true);
    tree.bold(tree.add("Album", "Album", "Music CD"), true);
    tree.add("Album", "AlbumBlue", "Blue", "Music CD");
    tree.add("AlbumBlue", "AlbumBlueSky", "Sky", "Sound")->tag = "/music/blue/sky.mp3";
    tree.add("AlbumBlue", "AlbumBlueSea", "Sea", "Sound")->tag = "/music/blue/sea.mp3";
    tree.add("Album", "AlbumGreen", "Green", "Music CD");
    tree.bold(tree.add("PlayList", "PlayList", "List"), true);
    tree.add("PlayList", "PlayListAutumn", "Autumn", "List");
    tree.expanded(tree.find("Album"), true);
    tree.expanded(tree.find("AlbumBlue"), true);
    models.ListView1.addColumn("Autumn", 4755);
    for (const char* title : {"One", "Two", "Three"})
      models.ListView1.add(models.ListView1.count() + 1, title, title, "Sound");
    for (const char* name : {"Winter", "Autumn"}) models.PlayListDropBox.add(name);
    models.PlayListDropBox.listIndex(0);
  }
  /// More items than the list has room for, "n0" and so on.
  void addItems(int count) {
    for (int i = 0; i < count; ++i) {
      const std::string name = "n" + std::to_string(i);
      models.ListView1.add(models.ListView1.count() + 1, name, name, "Sound");
    }
  }
  /// Brings it before the user's eyes, with the keyboard.
  void show() {
    window->show();
    ASSERT_TRUE(until([&] { return pane().isActiveWindow() && pane().windowHandle()->isExposed(); }));
    loop.pump();
    journal.clear();
  }
  void open() {
    fill();
    show();
  }

  /// Does something, once, when a question has the keyboard that nothing has been done about.
  void then(const std::function<void(QWidget&)>& act) {
    act_ = act;
    timer_ = loop.makeTimer(base::Milliseconds(1), [this] {
      QWidget* open = QApplication::activeModalWidget();
      if (act_ == nullptr || open == nullptr || open == answered_ || !open->isActiveWindow()) return;
      answered_ = open;
      const auto now = std::exchange(act_, nullptr);
      now(*open);
    });
    timer_->enabled(true);
  }
  bool until(const std::function<bool()>& done) { return TurnUntil(loop, done); }
  bool reported(const std::string& what) {
    return until([&] { return journal.has(what); });
  }
  static void tool(std::vector<std::string> words) {
    words.insert(words.begin(), "xdotool");
    Process process(words);
    ASSERT_EQ(process.wait(), 0) << process.output();
  }
  static void key(const std::string& name) { tool({"key", name}); }
  static void type(const std::string& text) { tool({"type", text}); }
  static void mouseTo(QPoint at) { tool({"mousemove", std::to_string(at.x()), std::to_string(at.y())}); }
  static void clickAt(QPoint at, const std::string& button = "1") {
    mouseTo(at);
    tool({"click", button});
  }
  /// Where an entry of a pane with that text stands on the screen.
  static QPoint placeOf(const QAbstractItemView& view, const QString& text) {
    const auto found = view.model()->match(view.model()->index(0, 0), Qt::DisplayRole, text, 1,
                                           Qt::MatchExactly | Qt::MatchRecursive);
    EXPECT_FALSE(found.empty()) << "no entry " << text.toStdString();
    if (found.empty()) return {};
    const QRect row = view.visualRect(found.front()) & view.viewport()->rect();
    EXPECT_FALSE(row.isEmpty()) << text.toStdString() << " can't be seen";
    return view.viewport()->mapToGlobal(QPoint(row.left() + 30, row.center().y()));
  }
  QPoint node(const QString& text) { return placeOf(pane().tree(), text); }
  QPoint item(const QString& text) { return placeOf(pane().list(), text); }
  QPoint middleOf(Control control) {
    QWidget& widget = pane().control(control);
    return widget.mapToGlobal(widget.rect().center());
  }
  desktop::EditorPane& pane() { return window->pane(); }

  Screen screen;
  WindowManager manager;
  Journal journal;
  editor::EditorModels models;
  EditorReports reports{journal, models};
  bus::PollLoop loop;
  std::unique_ptr<desktop::QtWindows> windows;
  std::unique_ptr<desktop::PlayListWindow> window;

 private:
  std::function<void(QWidget&)> act_;
  QPointer<QWidget> answered_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace support
