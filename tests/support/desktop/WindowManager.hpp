#pragma once
#include <fstream>
#include <stdexcept>
#include <string>

#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// The window manager of the screen that DISPLAY names, as users have one: it is there before any window is.
class WindowManager {
 public:
  WindowManager() {
    const bool there = Eventually([] {
      Process look({"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"});
      look.wait();
      return look.output().find("window id") != std::string::npos;
    });
    if (!there) throw std::runtime_error("no window manager: " + manager_.output());
  }

 private:
  std::string configuration() const {
    const std::string path = folder_.path() / "rc.xml";
    std::ofstream(path) << R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus>
  <placement><policy>Smart</policy></placement>
  <desktops><number>1</number></desktops>
  <keyboard><keybind key="A-F4"><action name="Close"/></keybind></keyboard>
  <mouse>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
    <context name="Iconify">
      <mousebind button="Left" action="Click"><action name="Iconify"/></mousebind>
    </context>
  </mouse>
</openbox_config>
)";
    return path;
  }

  TempFolder folder_;
  Process manager_{{"openbox", "--sm-disable", "--config-file", configuration()}};
};

}  // namespace support
