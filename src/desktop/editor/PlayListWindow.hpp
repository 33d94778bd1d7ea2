#pragma once
#include <QtCore/QPoint>

#include "desktop/QtWindows.hpp"
#include "ui/editor/EditorWindow.hpp"

class QWidget;

namespace desktop {

class EditorPane;

/// The playlist editor's window. When the desktop has gone, it keeps its place, and its questions are
/// answered by their defaults.
class PlayListWindow : public ui::editor::EditorWindow {
 public:
  using Control = ui::editor::Control;

  explicit PlayListWindow(QtWindows& windows);
  ~PlayListWindow() override;
  PlayListWindow(const PlayListWindow&) = delete;
  PlayListWindow& operator=(const PlayListWindow&) = delete;
  PlayListWindow(PlayListWindow&&) = delete;
  PlayListWindow& operator=(PlayListWindow&&) = delete;

  void serve(ui::editor::EditorEvents* events, ui::editor::EditorModels* models) override;
  [[nodiscard]] float top() const override;
  void top(float value) override;
  [[nodiscard]] float left() const override;
  void left(float value) override;
  void show() override;
  void close() override;
  [[nodiscard]] std::int32_t handle() const override;
  void enabled(bool value) override;
  void repaint() override;
  void screenPointer(std::int16_t pointer) override;
  void visible(Control control, bool value) override;
  void enabled(Control button, bool value) override;
  void focus(Control pane) override;
  ui::editor::NodeRef nodeAt(float x, float y) override;
  ui::editor::ItemRef itemAt(float x, float y) override;
  void ensureVisible(const ui::editor::NodeRef& node) override;
  void ensureVisible(const ui::editor::ItemRef& item) override;
  void startLabelEdit() override;
  void beginDrag(Control pane) override;
  void endDrag(Control pane) override;
  void dragIcon(Control pane, const char* image) override;
  void mousePointer(Control pane, std::int16_t pointer) override;

  ui::editor::MessageAnswer message(ui::editor::MessageKind kind, const std::string& text) override;
  std::string inputBox(const std::string& prompt, const std::string& title,
                       const std::string& typed) override;
  std::string openFile(const ui::editor::FileDialog& how) override;

  [[nodiscard]] EditorPane& pane() { return *pane_.get(); }

 private:
  void keepPlace() const;
  void moveThere();
  void unload();
  /// The window that a question is asked before; null where it is hidden.
  QWidget* asking();

  QtWindows& windows_;
  Owned<EditorPane> pane_;
  ui::editor::EditorEvents* events_ = nullptr;
  mutable QPoint place_;  // of the frame
  bool shown_ = false;
  bool hourglass_ = false;
};

}  // namespace desktop
