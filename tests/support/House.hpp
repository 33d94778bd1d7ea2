#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plugin/Plugin.hpp"
#include "support/FakeHost.hpp"
#include "support/FakePlayer.hpp"
#include "support/VirtualLoop.hpp"

namespace support {

class FakePlatform : public base::Platform {
 public:
  explicit FakePlatform(Journal& journal) : journal_(journal) {}
  std::int32_t osMajor = 6;
  bool ended = false;
  std::set<std::string> readOnly;

  std::int32_t osMajorVersion() override { return osMajor; }
  void setPriorityClass(std::int32_t value) override { journal_.add("priority " + std::to_string(value)); }
  void end() override {
    journal_.add("End");
    ended = true;
  }
  void messageBox(base::BoxKind kind, const std::string& title, const std::string& text) override {
    journal_.add((kind == base::BoxKind::kCritical ? "critical box " : "box ") + title + ": " + text);
  }
  void emptyFile(const std::string& path) override {
    journal_.add("empty " + path);
    if (readOnly.count(path) > 0) throw base::Failure(base::number::kPermissionDenied);
  }

 private:
  Journal& journal_;
};

class FakePopup : public player::PopupView {
 public:
  explicit FakePopup(Journal& journal) : journal_(journal) {}
  bool isVisible = false;
  float topTwips = 0;
  float leftTwips = 0;

  [[nodiscard]] float top() const override { return topTwips; }
  void top(float value) override {
    journal_.add("popup: top " + std::to_string(int(value)));
    topTwips = value;
  }
  [[nodiscard]] float left() const override { return leftTwips; }
  void left(float value) override {
    journal_.add("popup: left " + std::to_string(int(value)));
    leftTwips = value;
  }
  [[nodiscard]] float screenHeight() const override { return 10000; }
  [[nodiscard]] float screenWidth() const override { return 20000; }
  [[nodiscard]] bool visible() const override { return isVisible; }
  void setWindowPos(std::int32_t insertAfter, std::int32_t flags) override {
    journal_.add("popup: SetWindowPos " + std::to_string(insertAfter) + " " + std::to_string(flags));
  }
  void windowHeight(std::int32_t value) override { journal_.add("popup: height " + std::to_string(value)); }
  void image(const std::string& bytes) override { journal_.add("popup: Image1 = " + bytes); }
  void clearImage() override { journal_.add("popup: clear Image1"); }
  void LayoutControls() override { journal_.add("popup: layout"); }
  void check(const std::string& item, bool value) override {
    journal_.add("popup: " + item + (value ? " checked" : " unchecked"));
  }
  void armVisibility() override { journal_.add("popup: Visibility enabled"); }

 private:
  Journal& journal_;
};

class FakeNeighbours : public plugin::LibraryCalls,
                       public plugin::MediaEvents,
                       public plugin::MediaMenus,
                       public plugin::Desktop,
                       public plugin::WebForms,
                       public plugin::ObjectFactory {
 public:
  explicit FakeNeighbours(Journal& journal) : journal_(journal) {}
  base::Value addResult;
  std::map<std::string, std::string> menus;  ///< captions by "Album 0"

  std::int32_t WMPPlay(const std::string& category, const std::string& name,
                       const std::string& title) override {
    journal_.add("WMPPlay(" + category + ", " + name + ", " + title + ")");
    return 0;
  }
  base::Value AddMediaToPlayList(const std::string& name) override {
    journal_.add("AddMediaToPlayList(" + name + ")");
    return addResult;
  }
  void LoadNameTable() override { journal_.add("LoadNameTable"); }
  void UpdateControlEvent() override { journal_.add("UpdateControlEvent"); }
  void UpdateMediaEvents(const std::string& category) override {
    journal_.add("UpdateMediaEvents(" + category + ")");
  }
  void load(const std::string& category, std::int16_t element) override {
    if (!menus.emplace(category + " " + std::to_string(element), "").second) throw base::Failure(360);
  }
  void caption(const std::string& category, std::int16_t element, const std::string& text) override {
    menus.at(category + " " + std::to_string(element)) = text;
  }
  void ShowTrayIcon(bool show) override { journal_.add(show ? "ShowTrayIcon" : "HideTrayIcon"); }
  void unloadTray() override { journal_.add("unload SysTrayForm"); }
  void showPlayListEditor() override { journal_.add("show PlayListEditor"); }
  std::int16_t ShowTimedMessage(const std::string& title, const std::string& text,
                                std::int16_t seconds) override {
    journal_.add("ShowTimedMessage(" + title + ", " + text + ", " + std::to_string(seconds) + ")");
    return 2;
  }
  void loadSetupForm() override { journal_.add("load WebSetupForm"); }
  void loadEditorForm() override { journal_.add("load WebEditorForm"); }
  std::string GenPage(const std::string& link) override { return "page of " + link; }
  std::string PagePut(const std::string& data) override {
    if (data == "fail") throw base::Failure(base::number::kDeviceIo);
    return "answer to " + data;
  }
  base::ObjectRef create(const std::string& name) override {
    journal_.add("create " + name);
    return std::make_shared<FieldObject>();
  }

 private:
  Journal& journal_;
};

/// A whole plug-in in a house of fakes that share one journal.
class House : public ::testing::Test {
 protected:
  static constexpr const char* kIcon =
      "<img align=absmiddle src=\"images\\Media Player\\WMP_Icon.gif\"  width=\"16\" height=\"16\" "
      "border=\"0\" >";

  /// Whose pages the plug-in shows.
  enum class Pages { kFakes, kOwn };

  /// With a window, the popup controls are the plug-in's own too.
  explicit House(Pages pages = Pages::kFakes, ui::PopupWindow* popupWindow = nullptr,
                 ui::editor::EditorWindow* editorWindow = nullptr)
      : pages_(pages),
        popupWindow_(popupWindow),
        editorWindow_(editorWindow),
        host(std::make_shared<FakeHost>(journal)) {
    // The host hands out itself as its second object; the test breaks the circle at its end.
    host->self = host;
  }
  ~House() override { host->self.reset(); }

  /// Hands the host over without a start.
  void connect() { callVxif("RegisterCallback", base::Value(base::ObjectRef(host))); }

  template <class... T>
  base::Value callVxif(const std::string& name, T&&... values) {
    return plugin.vxif()->invoke(name, std::forward<T>(values)...);
  }

  std::string initIO() { return base::ToText(callVxif("InitIO", 0)); }

  /// The whole start, both halves; the journal begins behind it.
  void start() {
    connect();
    ASSERT_EQ(initIO(), "");
    loop.advance(base::Milliseconds(2));
    ASSERT_TRUE(plugin.state.Initialized);
    settle();
  }

  /// Works off what waits, and begins a new journal.
  void settle() {
    loop.advance(base::Milliseconds(5));
    journal.clear();
  }

  [[nodiscard]] std::vector<std::string> playerCalls() const { return journal.with("player: "); }
  [[nodiscard]] bool logged(const std::string& type, const std::string& text) const {
    return journal.has("WriteLog(\"" + type + "\", \"" + text + "\")");
  }
  /// A device text as it is published.
  [[nodiscard]] bool published(const std::string& device, const std::string& text) const {
    return journal.has("SetDeviceStringByName(\"Media Player " + device + "\", \"" + kIcon + text +
                       "\", True)");
  }

  const Pages pages_;
  ui::PopupWindow* const popupWindow_;
  ui::editor::EditorWindow* const editorWindow_;
  Journal journal;
  VirtualLoop loop;
  std::shared_ptr<FakeHost> host;
  FakePlatform platform{journal};
  FakePopup popup{journal};
  FakeNeighbours neighbours{journal};
  FakePlayer* wmp9 = nullptr;  ///< exists once the form is loaded
  bool playerCanBeCreated = true;
  std::function<void(FakePlayer&)> preparePlayer = [](FakePlayer&) {};

  plugin::Plugin plugin{{loop,
                         platform,
                         [this](player::WMP9Events& events) -> std::unique_ptr<player::WMP9> {
                           if (!playerCanBeCreated) throw base::Failure(base::number::kCannotCreate);
                           auto made = std::make_unique<FakePlayer>(journal, events);
                           wmp9 = made.get();
                           preparePlayer(*made);
                           return made;
                         },
                         {neighbours, neighbours},
                         popupWindow_ == nullptr ? &popup : nullptr,
                         popupWindow_,
                         popupWindow_ == nullptr ? &neighbours : nullptr,
                         &neighbours,
                         nullptr,
                         pages_ == Pages::kFakes ? &neighbours : nullptr,
                         &neighbours,
                         nullptr,
                         {},
                         editorWindow_}};
};

}  // namespace support
