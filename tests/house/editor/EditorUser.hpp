#pragma once
#include <string>
#include <utility>
#include <vector>

#include "support/RealHouse.hpp"
#include "support/desktop/ScreenReader.hpp"
#include "support/desktop/WindowManager.hpp"
#include "support/desktop/XServer.hpp"

namespace support {

/// A screen with a window manager, which this process's own tools see, too.
class ManagedScreen {
 public:
  ManagedScreen() { screen_.use(); }
  [[nodiscard]] const std::string& display() const { return screen_.display(); }

 private:
  struct Used : XServer {
    Used() { use(); }
  };
  Used screen_;
  WindowManager manager_;
};

/// Somebody at the desktop who uses the playlist editor of a house by mouse and keyboard. What stands where
/// is read from the window itself.
class EditorUser {
 public:
  using Names = std::vector<std::string>;
  using Thing = ScreenReader::Thing;

  explicit EditorUser(RealHouse& house, const ScreenReader& reader) : house_(house), reader_(reader) {}

  /// Chooses the menu's item, and waits until the window can be used.
  bool open() {
    // The popup controls stand before everything, and are where the editor opens the first time.
    if (house_.text("Display Controls") != "Hide" && !hidePopup()) return false;
    return house_.choose("PlayList Editor") == 200 && isBefore("Vantorix PlayList Editor") &&
           Eventually([&] { return !entries("Sources").empty(); });
  }
  static void close() {
    key("alt+c");
    Eventually([] {
      Process look({"xdotool", "search", "--onlyvisible", "--name", "^Vantorix PlayList Editor$"});
      return look.wait() != 0;
    });
  }
  /// The entries of a pane: "Sources", or "Playlist " and the name of the list that is shown.
  Names entries(const std::string& pane) {
    const auto found = in(pane);
    return found ? reader_.names(*found) : Names{};
  }
  bool shows(const std::string& pane, const Names& wanted) {
    return Eventually([&] { return entries(pane) == wanted; });
  }
  bool has(const std::string& pane, const std::string& entry) {
    return Eventually([&] { return thing(pane, entry).has_value(); });
  }
  /// Presses the mouse on an entry of a pane, or on a button where `entry` is empty.
  void click(const std::string& pane, const std::string& entry = {}) {
    const auto [x, y] = middle(pane, entry);
    mouse({"mousemove", std::to_string(x), std::to_string(y), "click", "1"});
  }
  /// Chooses the playlist anew that the box above the list shows.
  void chooseAgain(const std::string& name) {
    click(name);
    key("Return");
  }
  /// Shows what an entry of the sources holds.
  void unfold(const std::string& entry) {
    click("Sources", entry);
    key("Right");
  }
  /// Takes an entry from one pane and lets it go over an entry of another.
  bool drag(const std::string& from, const std::string& entry, const std::string& to,
            const std::string& target) {
    const Dot start = middle(from, entry);
    const Dot end = middle(to, target);
    mouse({"mousemove", std::to_string(start.x), std::to_string(start.y)});
    const std::string before = colourAt(end);
    mouse({"mousedown", "1"});
    // Moves that come together may be taken for one.
    const bool marked = Eventually([&] {
      mouse({"mousemove", std::to_string(start.x + 8), std::to_string(start.y + 1)});
      mouse({"mousemove", std::to_string(start.x + 20), std::to_string(start.y + 2)});
      mouse({"mousemove", std::to_string(end.x), std::to_string(end.y)});
      return colourAt(end) != before;
    });
    mouse({"mouseup", "1"});
    return marked;
  }
  static void key(const std::string& name) { mouse({"key", name}); }
  static void type(const std::string& text) { mouse({"type", text}); }
  /// Waits for a window of that title, and for the keyboard to be its own.
  static bool isBefore(const std::string& title) {
    return Eventually([&] { return activeTitle() == title; });
  }

 private:
  struct Dot {
    int x;
    int y;
  };

  bool hidePopup() {
    return isBefore("Vantorix Media Player") && house_.textBecomes("Display Controls", "Show") &&
           house_.press("Display Controls", "Show/Hide Controls") == 200 &&
           house_.textBecomes("Display Controls", "Hide");
  }
  std::optional<Thing> in(const std::string& name) {
    const auto window = reader_.window("Vantorix PlayList Editor");
    return window ? reader_.child(*window, name) : std::nullopt;
  }
  std::optional<Thing> thing(const std::string& pane, const std::string& entry) {
    const auto found = in(pane);
    return found && !entry.empty() ? reader_.child(*found, entry) : found;
  }
  /// Where it stands, once it does.
  Dot middle(const std::string& pane, const std::string& entry) {
    ScreenReader::Place place;
    const bool seen = Eventually([&] {
      const auto found = thing(pane, entry);
      if (found) place = reader_.place(*found);
      return place.width > 0;
    });
    if (!seen) throw std::runtime_error("no " + entry + " in " + pane);
    return {place.x + place.width / 2, place.y + place.height / 2};
  }
  /// The colour of one dot of the screen.
  static std::string colourAt(const Dot& dot) {
    Process look({"import", "-silent", "-window", "root", "-crop",
                  "1x1+" + std::to_string(dot.x) + "+" + std::to_string(dot.y), "-depth", "8", "txt:-"});
    look.wait();
    return look.output();
  }
  static std::string activeTitle() {
    Process look({"xdotool", "getactivewindow", "getwindowname"});
    look.wait();
    std::string title = look.output();
    if (title.ends_with('\n')) title.pop_back();
    return title;
  }
  static void mouse(std::vector<std::string> words) {
    words.insert(words.begin(), "xdotool");
    Process tool(words);
    if (tool.wait() != 0) throw std::runtime_error(tool.output());
  }

  RealHouse& house_;
  const ScreenReader& reader_;
};

}  // namespace support
