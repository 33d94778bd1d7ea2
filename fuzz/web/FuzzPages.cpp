// Posts to both pages, one a line, with the state kept between them: every one is answered with a page of a
// bounded size or with nothing. A line that begins with "!" meets a host that fails, one with "?" a player
// that refuses changes, and one with ">" comes in while the next one waits for the host. A letter behind the
// mark stands for the beginning of a post that reaches an operation ("a" to "n"), or asks for both pages
// ("o").
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <iterator>
#include <string>

#include "base/Text.hpp"
#include "fuzz/Alphabet.hpp"
#include "plugin/Plugin.hpp"
#include "support/FakeLibrary.hpp"
#include "support/Quiet.hpp"
#include "support/VirtualLoop.hpp"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// The beginnings of posts, each up to the value of its last field: one for each button of the pages.
const char* const kStems[] = {
    "wmp_page=Main_Page&button=Add+Item&PlayList=",
    "wmp_page=Main_Page&button=Refresh&PlayList=",
    "wmp_page=Main_Page&PlayList=",
    "wmp_page=Main_Page&button=New+List&New_PlayList=",
    "wmp_page=Main_Page&button=Rename&PlayList=Mine&Renamed_PlayList=",
    "wmp_page=Main_Page&button=Delete+List&PlayList=",
    "wmp_page=Main_Page&button=Delete+Item&PlayList=Mine&PlayListItems=",
    "wmp_page=Add_Page&button=Refresh&PlayList=Mine&Add_from=Album&Albums=",
    "wmp_page=Add_Page&PlayList=Mine&Artists=Joni+Co&Genres=Folk&PlayLists=Mine&Add_from=",
    "wmp_page=Add_Page&button=Add+Item&PlayList=Mine&Add_from=Album&Albums=Blue&Title=",
    "wmp_page=Add_Page&button=Add+Item&PlayList=Mine&Title=River&Add_from=PlayList&PlayLists=",
    "wmp_page=Add_Page&button=Return&PlayList=",
    "wmp_page=Setup_Page&button=Update&CoverArt=TRUE&WhileSpeaking=",
    "wmp_page=Setup_Page&TrayIcon=TRUE&WhileSpeaking=",
};

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

class FuzzNeighbours : public support::QuietPlatform, public plugin::Desktop, public plugin::ObjectFactory {
 public:
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
      send(body);
    };
  }

  void line(std::string body) {
    const char mark = body.empty() ? '\0' : body.front();
    if (mark == '!' || mark == '?' || mark == '>') body.erase(0, 1);
    if (mark == '>') {
      between.push_back(body);
      return;
    }
    works = mark != '!' && mark != '?';
    host->fails = mark == '!';
    for (const auto& list : library.playlists) list->refuses = mark == '?';
    send(body);
    journal.clear();
  }

 private:
  void send(const std::string& body) {
    ++depth;
    const std::size_t stem = body.empty() ? std::size(kStems) : static_cast<std::size_t>(body.front() - 'a');
    if (stem < std::size(kStems))
      reach(kStems[stem], body.substr(1));
    else if (stem == std::size(kStems) && !body.empty())
      get();
    else
      put(body);
    --depth;
  }
  /// While the host and the player do their part, a button always gets a page.
  void reach(const std::string& begin, const std::string& value) {
    const bool isPlain = value.find('=') == std::string::npos;  // which adds no field
    if (works && isPlain) Require(!plugin.editorForm.MyPagePut(begin + value).empty());
    posted += begin.size() + value.size();
    put(begin + value);
  }
  void put(const std::string& body) {
    posted += body.size();
    check(plugin.editorForm.MyPagePut(body));
    check(plugin.setupForm->MyPagePut(body));
  }
  void get() {
    check(plugin.editorForm.GenPage(""));
    check(plugin.setupForm->GenPage(""));
  }
  void check(const std::string& page) const {
    // Beside the frame, a page holds what was posted, a few times over.
    constexpr std::size_t kFrame = 16384;
    constexpr std::size_t kTimes = 64;
    Require(page.size() <= kFrame + kTimes * posted);
    Require(page.empty() || page.rfind("<form method=\"post\">\r\n", 0) == 0);
    Require(page.empty() || page.size() - page.rfind("</form>\r\n") == 9);
  }

  support::Journal journal;
  support::FakeLibrary library{journal};
  support::VirtualLoop loop;
  std::shared_ptr<FuzzHost> host = std::make_shared<FuzzHost>();
  FuzzNeighbours neighbours;
  std::deque<std::string> between;
  std::size_t posted = 0;
  int depth = 0;
  bool works = true;  ///< host and player
  plugin::Plugin plugin{{loop,
                         neighbours,
                         [this](player::WMP9Events& events) -> std::unique_ptr<player::WMP9> {
                           auto made = std::make_unique<support::FakePlayer>(journal, events);
                           library.into(*made);
                           return made;
                         },
                         {neighbours, neighbours}}};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = support::Spelled(data, size);
  PostedPages pages;
  for (const std::string& body : base::Split(text, '\n')) pages.line(body);
  return 0;
}
