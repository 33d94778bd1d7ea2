#pragma once
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "support/Journal.hpp"
#include "ui/editor/EditorWindow.hpp"

namespace support {

namespace editor = ui::editor;
using editor::Control;
using editor::MessageAnswer;
using editor::MessageKind;

/// An editor window that records what it is told and asks, and answers as a test wants.
class FakeEditorWindow : public editor::EditorWindow {
 public:
  Journal* journal = nullptr;  ///< nothing is recorded without
  editor::EditorEvents* events = nullptr;
  editor::EditorModels* models = nullptr;

  // What is under the mouse, and what is answered.
  editor::NodeRef node;
  editor::ItemRef item;
  std::deque<MessageAnswer> answers;  ///< the form's default behind them
  std::function<void()> onMessage = [] {};
  std::function<void()> onRepaint = [] {};
  std::string typed;
  std::string chosenFile;  ///< empty for Cancel
  editor::FileDialog fileDialog;

  float topTwips = 0;
  float leftTwips = 0;
  bool isShown = false;
  bool isEnabled = true;
  std::int16_t pointer = 0;
  std::set<Control> hidden;
  std::set<Control> disabled;
  std::vector<std::string> messages;  ///< of all kinds
  std::set<std::string> failing;      ///< calls that fail with number 57

  void serve(editor::EditorEvents* to, editor::EditorModels* of) override {
    events = to;
    models = of;
  }
  [[nodiscard]] float top() const override { return topTwips; }
  void top(float value) override {
    told("top " + std::to_string(int(value)));
    topTwips = value;
  }
  [[nodiscard]] float left() const override { return leftTwips; }
  void left(float value) override {
    told("left " + std::to_string(int(value)));
    leftTwips = value;
  }
  void show() override {
    if (!isShown) told("show");
    isShown = true;
  }
  void close() override {
    told("close");
    if (isShown) events->Form_Unload();
    isShown = false;
  }
  [[nodiscard]] std::int32_t handle() const override { return 77; }
  void enabled(bool value) override {
    told(value ? "enabled" : "disabled");
    isEnabled = value;
  }
  void repaint() override {
    told("repaint");
    onRepaint();
  }
  void screenPointer(std::int16_t value) override {
    told("screen pointer " + std::to_string(value));
    pointer = value;
  }
  void visible(Control control, bool value) override {
    told((value ? "shows " : "hides ") + nameOf(control));
    if (value)
      hidden.erase(control);
    else
      hidden.insert(control);
  }
  void enabled(Control button, bool value) override {
    if (value)
      disabled.erase(button);
    else
      disabled.insert(button);
  }
  void focus(Control pane) override { told("focus " + nameOf(pane)); }
  editor::NodeRef nodeAt(float /*x*/, float /*y*/) override {
    failWhereWanted("hit test");
    return node;
  }
  editor::ItemRef itemAt(float /*x*/, float /*y*/) override {
    failWhereWanted("hit test");
    return item;
  }
  void ensureVisible(const editor::NodeRef& shown) override { told("brings into sight " + shown->key()); }
  void ensureVisible(const editor::ItemRef& shown) override { told("brings into sight " + shown->text()); }
  void startLabelEdit() override { told("label edit"); }
  void beginDrag(Control pane) override { told("drag begins in " + nameOf(pane)); }
  void endDrag(Control pane) override { told("drag ends in " + nameOf(pane)); }
  void dragIcon(Control pane, const char* image) override { told(nameOf(pane) + " drags " + image); }
  void mousePointer(Control pane, std::int16_t value) override {
    told(nameOf(pane) + " pointer " + std::to_string(value));
  }

  MessageAnswer message(MessageKind kind, const std::string& text) override {
    static const char* const kNames[] = {"plain", "warning", "confirmation", "report"};
    told(std::string(kNames[static_cast<int>(kind)]) + ": " + text);
    messages.push_back(text);
    onMessage();
    if (answers.empty()) return editor::FormOf(kind).byDefault;
    const MessageAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  std::string inputBox(const std::string& prompt, const std::string& title,
                       const std::string& before) override {
    told("asks \"" + title + "\": " + prompt + " [" + before + "]");
    return typed;
  }
  std::string openFile(const editor::FileDialog& how) override {
    fileDialog = how;
    told("file dialog");
    if (chosenFile.empty()) throw base::Failure(editor::FileDialog::kCancelled);
    return chosenFile;
  }

 private:
  static std::string nameOf(Control control) { return editor::layout::Of(control).name; }
  void told(const std::string& what) {
    if (journal != nullptr) journal->add("window: " + what);
    failWhereWanted(what);
  }
  void failWhereWanted(const std::string& what) const {
    if (failing.count(what) > 0) throw base::Failure(base::number::kDeviceIo);
  }
};

}  // namespace support
