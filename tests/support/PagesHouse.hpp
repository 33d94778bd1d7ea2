#pragma once
#include <cctype>
#include <functional>
#include <initializer_list>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/LibraryHouse.hpp"

namespace support {

/// A text whose lines end as those of a page do.
inline std::string Page(const std::string& text) {
  std::string page;
  for (const char c : text) page += c == '\n' ? "\r\n" : std::string(1, c);
  return page;
}

/// What a page says above its fields, as an error and otherwise.
inline std::string Red(const std::string& message) {
  return R"(<SPAN style="color: red; font-weight: bold">)" + message + "</SPAN><br><br>";
}
inline std::string Bold(const std::string& message) {
  return R"(<SPAN class="tablecellcustom" style="font-weight: bold">)" + message + "</SPAN><br><br>";
}

/// The options of a drop list, one of which may be selected.
inline std::string Options(const std::vector<std::string>& names, const std::string& selected = "") {
  std::string options;
  for (const std::string& name : names)
    options += std::string("<option ") + (!selected.empty() && name == selected ? "selected " : "") +
               "value=\"" + name + "\">" + name + "</option>\n";
  return options;
}

/// The editor's whole main page.
inline std::string MainPage(const std::string& message, const std::string& lists, const std::string& items) {
  return Page(R"(<form method="post">
<p><h3>Edit PlayList<hr noshade></h3></p>
)" + message + R"(<input type="hidden" name="ref_page" value="WMP_PListEdit">
<input type="hidden" name="wmp_page" value="Main_Page">
Selected PlayList<br><select class="formdropdown" name="PlayList" size="1" onChange="form.submit();" style="width: 200">
)" + lists + R"(</select>
<br>
<select class="formdropdown" name="PlayListItems" size="5" style="width: 200">
)" + items + R"(</select>
<input type="submit" class="formbutton" name="button" value="Refresh" >
<p><input type="submit" class="formbutton" name="button" value="Add Item" >
<input type="submit" class="formbutton" name="button" value="Delete Item" >
<input type="submit" class="formbutton" name="button" value="Delete List" >
</p>
<p><input type="submit" class="formbutton" name="button" value="New List" >
&nbsp<input type="text" name="New_PlayList" value="" size="20" class="formtext" >
</p>
<p><input type="submit" class="formbutton" name="button" value="Rename" >
&nbsp<input type="text" name="Renamed_PlayList" value="" size="20" class="formtext" >
</p>
<BR clear=all><hr noshade></form>
)");
}

constexpr const char* kSetupHead = R"(<form method="post">
<p><h3>Media Player Setup<hr noshade></h3></p>
<input type="hidden" name="ref_page" value="WMP_Setup">
<input type="hidden" name="wmp_page" value="Setup_Page">
)";
constexpr const char* kSetupFoot = R"(</p>
<p><input type="submit" class="formbutton" name="button" value="Update" >
</p>
<BR clear=all><hr noshade></form>
)";

/// The boxes of the setup page that are ticked after a first start, but for the one of the devices.
inline const std::set<std::string> kTickedAtFirst = {"AlwaysOnTop", "UpdateQuickPlay", "SpeakErrors",
                                                     "CoverArt",    "TrayIcon",        "RefreshActions"};

/// The whole setup page with that choice and those boxes ticked.
inline std::string WholeSetupPage(const std::string& choice, const std::set<std::string>& ticked) {
  std::string text = std::string(kSetupHead) + "<p>While Speaking:";
  for (const std::string value : {"No Action", "Pause", "Mute"})
    text += R"(<INPUT TYPE=Radio NAME="WhileSpeaking" VALUE=")" + value + "\"" +
            (value == choice ? "CHECKED>" : ">") + value;
  text += "<br>\n";
  const std::pair<std::string, const char*> boxes[] = {
      {"AlwaysOnTop", "Player Controls stay Always On Top"},
      {"RecreateDevices", "Recreate All Devices at next startup"},
      {"UpdateQuickPlay", "Update Quick Play &amp; VR Events on startup"},
      {"SpeakErrors", "Speak Playback Error Messages"},
      {"CoverArt", "Show Album Cover Art"},
      {"Visualizations", "Show Visualizations (CPU intensive)"},
      {"FullScreenVideo", "Show Video Full Screen"},
      {"TrayIcon", "Show Tray Icon"},
      {"RefreshActions", "Always Refresh Media Player Event Actions (Slow with large media libraries)"},
      {"VRCategoryRequired", "Require Category for Voice Recognition"},
      {"DebugMessages", "Verbose Logging (debugging)"}};
  for (const auto& [name, label] : boxes) {
    const std::string grey = name == "RecreateDevices" ? "DISABLED" : "";
    text += "<input type=\"CheckBox\" name=\"" + name + "\" value=\"TRUE\" " +
            (ticked.count(name) > 0 ? grey + " CHECKED" : "") + ">" + label + "<br>\n";
  }
  return Page(text + kSetupFoot);
}

/// Names and values of a form.
using Fields = std::vector<std::pair<std::string, std::string>>;

/// A form post as browsers encode it.
inline std::string Body(const Fields& fields) {
  const auto encoded = [](const std::string& text) {
    static const char* kDigits = "0123456789ABCDEF";
    std::string all;
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (std::isalnum(byte) != 0 || c == '_')
        all += c;
      else if (c == ' ')
        all += '+';
      else
        all += std::string("%") + kDigits[byte / 16] + kDigits[byte % 16];
    }
    return all;
  };
  std::string body;
  for (const auto& [name, value] : fields)
    body += (body.empty() ? "" : "&") + encoded(name) + "=" + encoded(value);
  return body;
}

/// An item whose name can't be read.
class NamelessMedia : public FakeMedia {
 public:
  NamelessMedia() : FakeMedia("", "", "", "") {}
  [[nodiscard]] std::string name() const override { throw Failure(base::number::kDeviceIo); }
};

/// A playlist whose player tells of its new name before the call ends.
class TellingPlaylist : public FakePlaylist {
 public:
  TellingPlaylist(Journal& journal, std::string name, std::vector<player::MediaRef> members,
                  std::function<void()> told)
      : FakePlaylist(journal, std::move(name), std::move(members)), told_(std::move(told)) {}
  using FakePlaylist::name;
  void name(const std::string& value) override {
    FakePlaylist::name(value);
    told_();
  }

 private:
  std::function<void()> told_;
};

/// A house that shows its own pages.
class PagesHouse : public LibraryHouse {
 protected:
  PagesHouse() : LibraryHouse(Pages::kOwn) {}

  /// The editor's page, asked for by the host's web server.
  std::string get() { return base::ToText(callVxif("GenPage", "WMP_PListEdit")); }
  /// The answer to a post, which both pages get through the one door.
  std::string post(const std::string& body) { return base::ToText(callVxif("PagePut", body)); }
  std::string post(std::initializer_list<std::pair<std::string, std::string>> fields) {
    return post(Body(Fields(fields)));
  }
  [[nodiscard]] const pages::EditorFields& fields() const { return plugin.editorForm.fields(); }
};

}  // namespace support
