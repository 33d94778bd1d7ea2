#pragma once
#include <string>

#include "ui/editor/EditorHouse.hpp"

namespace support {

/// An open editor whose user gives it commands.
class CommandsHouse : public EditorHouse {
 protected:
  void SetUp() override {
    EditorHouse::SetUp();
    open();
  }
  void makeNew(const std::string& name) {
    window.typed = name;
    window.events->New_PlayList_Click();
  }
  /// Chooses a playlist in the tree, as if by mouse.
  void choosePlayList(const std::string& name) {
    window.events->TreeView1_GotFocus();
    click("PlayList" + name);
    journal.clear();
    window.messages.clear();
  }
};

}  // namespace support
