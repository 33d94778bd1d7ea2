// Posts to both pages, one a line, with the state kept between them: every one is answered with a page of a
// bounded size or with nothing. A line that begins with "!" meets a host that fails, one with "?" a player
// that refuses changes, and one with ">" comes in while the next one waits for the host.
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>

#include "base/Text.hpp"
#include "player/WindowlessPopup.hpp"
#include "plugin/Plugin.hpp"
#include "support/FakeLibrary.hpp"
#include "support/VirtualLoop.hpp"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

class FuzzHost : public base::Object {
 public:
  using base::Object::call;
  bool fails = false;
  std::function<void()> whileWaiting = [] {};

  base::Value call(std::string_view name, base::Args& args) override {
    if (name == "WriteLog" || name == "SaveINISetting" || name == "WaitEvents") whileWaiting();
    if (fails) throw base::Failure(base::number::kDeviceIo);
    return name == "GetINISetting" ? args.at(2) : base::Value();
  }
  base::Value get(std::string_view /*name*/) override { return {}; }
  void put(std::string_view /*name*/, const base::Value& /*value*/) override {}
};

class FuzzNeighbours : public base::Platform,
                       public plugin::MediaEvents,
                       public plugin::Desktop,
                       public plugin::ObjectFactory {
 public:
  std::int32_t osMajorVersion() override { return 6; }
  void setPriorityClass(std::int32_t /*value*/) override {}
  void end() override {}
  void messageBox(base::BoxKind /*kind*/, const std::string& /*title*/,
                  const std::string& /*text*/) override {}
  void emptyFile(const std::string& /*path*/) override {}
  std::int16_t ShowTimedMessage(const std::string& /*title*/, const std::string& /*text*/,
                                std::int16_t /*seconds*/) override {
    return 2;
  }
  base::ObjectRef create(const std::string& /*name*/) override { return nullptr; }
};

/// A plug-in with a small library, whose pages are posted to.
class PostedPages {
 public:
  PostedPages() {
    plugin.host.Host = host;
    plugin.stale.markCategories();
    library.attributes = {{"album", {"Blue"}}, {"artist", {"Joni & Co"}}, {"genre", {"Folk"}}};
    for (const char* title : {"River", "A/B", "<b>\"C\"</b>"})
      library.addTrack(title, "Joni & Co", "Blue", "Folk");
    library.addPlaylist("Mine", {library.tracks[0], library.tracks[1]});
    library.addPlaylist("Rock & Roll", {library.tracks[2]});
    host->whileWaiting = [this] {
      if (between.empty() || depth > 2) return;
      const std::string body = between.front();
      between.pop_front();
      put(body);
    };
  }

  void line(std::string body) {
    const char mark = body.empty() ? '\0' : body.front();
    if (mark == '!' || mark == '?' || mark == '>') body.erase(0, 1);
    if (mark == '>') {
      between.push_back(body);
      return;
    }
    host->fails = mark == '!';
    for (const auto& list : library.playlists) list->refuses = mark == '?';
    put(body);
    journal.clear();
  }

 private:
  void put(const std::string& body) {
    ++depth;
    posted += body.size();
    // Beside the frame, a page holds what was posted, a few times over.
    constexpr std::size_t kFrame = 16384;
    constexpr std::size_t kTimes = 64;
    for (const std::string& page : {plugin.editorForm.MyPagePut(body), plugin.setupForm->MyPagePut(body)}) {
      Require(page.size() <= kFrame + kTimes * posted);
      Require(page.empty() || page.rfind("<form method=\"post\">\r\n", 0) == 0);
      Require(page.empty() || page.size() - page.rfind("</form>\r\n") == 9);
    }
    --depth;
  }

  support::Journal journal;
  support::FakeLibrary library{journal};
  support::VirtualLoop loop;
  std::shared_ptr<FuzzHost> host = std::make_shared<FuzzHost>();
  FuzzNeighbours neighbours;
  player::WindowlessPopup popup;
  std::deque<std::string> between;
  std::size_t posted = 0;
  int depth = 0;
  plugin::Plugin plugin{{loop,
                         neighbours,
                         [this](player::WMP9Events& events) -> std::unique_ptr<player::WMP9> {
                           auto made = std::make_unique<support::FakePlayer>(journal, events);
                           library.into(*made);
                           return made;
                         },
                         popup,
                         {neighbours, neighbours, neighbours}}};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  PostedPages pages;
  for (const std::string& body : base::Split(text, '\n')) pages.line(body);
  return 0;
}
