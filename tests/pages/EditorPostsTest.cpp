#include "support/PagesHouse.hpp"

using support::Body;
using support::PagesHouse;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

class EditorPosts : public PagesHouse {
 protected:
  void SetUp() override {
    PagesHouse::SetUp();
    library.addPlaylist("Mine", {library.addTrack("River", "Joni", "Blue", "Folk")});
  }
  /// The page that an answer shows, and what it says.
  static std::string Kind(const std::string& page) {
    if (page.empty()) return "empty";
    if (page.find("<h3>Edit PlayList<") != std::string::npos) return "main";
    if (page.find("<h3>Add to PlayList<") != std::string::npos) return "add";
    if (page.find("<h3>Media Player Setup<") != std::string::npos) return "setup";
    return page;
  }
  std::string pressed(const std::string& page, const std::string& button) {
    return post({{"wmp_page", page}, {"button", button}, {"PlayList", "Mine"}});
  }
  [[nodiscard]] std::vector<std::string> unknown() const {
    std::vector<std::string> all;
    const std::string begin = "WriteLog(\"Error\", \"Media Player Unknown argument submitted to web server: ";
    for (const std::string& line : journal.with(begin))
      all.push_back(line.substr(begin.size(), line.size() - begin.size() - 2));
    return all;
  }
};

}  // namespace

TEST_F(EditorPosts, EachButtonHasItsOperation) {
  EXPECT_EQ(Kind(pressed("Main_Page", "Add Item")), "add");
  EXPECT_EQ(Kind(pressed("Main_Page", "Refresh")), "main");
  EXPECT_EQ(Kind(pressed("Main_Page", "None")), "main");
  EXPECT_THAT(pressed("Main_Page", "New List"), HasSubstr("The new PlayList name must be entered!"));
  EXPECT_THAT(pressed("Main_Page", "Rename"), HasSubstr("A new PlayList name must be entered!"));
  EXPECT_THAT(pressed("Main_Page", "Delete Item"), HasSubstr("An item to be deleted must be selected!"));
  EXPECT_EQ(Kind(pressed("Add_Page", "Refresh")), "add");
  EXPECT_EQ(Kind(pressed("Add_Page", "None")), "add");
  EXPECT_THAT(pressed("Add_Page", "Add Item"), HasSubstr("A title must be selected before adding!"));
  EXPECT_EQ(Kind(pressed("Add_Page", "Return")), "main");
  EXPECT_EQ(Kind(pressed("Main_Page", "Delete List")), "main");
  EXPECT_THAT(library.playlists, IsEmpty());
}

TEST_F(EditorPosts, APostWithoutAButtonIsAChoiceInADropList) {
  EXPECT_EQ(Kind(post({{"wmp_page", "Main_Page"}, {"PlayList", "Mine"}})), "main");
  EXPECT_EQ(Kind(post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}})), "add");
  EXPECT_EQ(fields().button, "None");
}

TEST_F(EditorPosts, AnythingElseGetsAnEmptyAnswer) {
  for (const auto& [page, button] :
       std::vector<std::pair<std::string, std::string>>{{"Main_Page", "Return"},
                                                        {"Main_Page", "refresh"},
                                                        {"Main_Page", "Explode"},
                                                        {"Main_Page", ""},
                                                        {"main_page", "Refresh"},
                                                        {"Add_Page", "New List"},
                                                        {"Add_Page", "Rename"},
                                                        {"Add_Page", "Delete List"},
                                                        {"Add_Page", "Delete Item"},
                                                        {"Other_Page", "Refresh"},
                                                        {"", "None"}}) {
    EXPECT_EQ(pressed(page, button), "") << page << " " << button;
  }
  EXPECT_EQ(post("wmp_page=Other_Page"), "");
}

TEST_F(EditorPosts, FieldsAreKeptFromPostToPost) {
  post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "Album"}});
  EXPECT_EQ(Kind(post({{"Albums", "Blue"}})), "add");  // the page that posted last
  EXPECT_EQ(fields().PlayList, "Mine");
  EXPECT_EQ(fields().Albums, "Blue");
  get();
  EXPECT_EQ(post({{"Albums", "Blue"}}), "");  // a GET empties the page, and so nothing is known of it
}

TEST_F(EditorPosts, TwoBrowsersShareOneState) {
  library.addPlaylist("Yours");
  post({{"wmp_page", "Main_Page"}, {"PlayList", "Mine"}});   // one browser
  post({{"wmp_page", "Main_Page"}, {"PlayList", "Yours"}});  // another
  EXPECT_THAT(post({{"wmp_page", "Add_Page"}, {"button", "Return"}}),
              HasSubstr("<option selected value=\"Yours\">"));
}

TEST_F(EditorPosts, AnUnknownArgumentIsLoggedAndTheRestIsRead) {
  EXPECT_EQ(Kind(post("Colour=light+blue&wmp_page=Main_Page&playlist=x&PlayList=Mine&x=")), "main");
  EXPECT_THAT(unknown(), ElementsAre("Colour=light blue", "playlist=x", "x="));
  EXPECT_EQ(fields().PlayList, "Mine");
}

TEST_F(EditorPosts, ArgumentsThatNobodyNeedsAreAccepted) {
  post("ref_page=WMP_PListEdit&Dummy=Mine&wmp_page=Main_Page");
  EXPECT_THAT(unknown(), IsEmpty());
  post("Ref_Page=x&dummy=y&wmp_page=Main_Page");
  EXPECT_THAT(unknown(), ElementsAre("Ref_Page=x", "dummy=y"));
}

TEST_F(EditorPosts, TheSetupPagesPostsComeThroughTheSameDoor) {
  EXPECT_EQ(Kind(post("wmp_page=Setup_Page")), "setup");
  EXPECT_EQ(Kind(post("WMP_PAGE=SETUP_PAGE")), "setup");
  // A plain search in the body, wherever the words stand.
  std::set<std::string> ticked = support::kTickedAtFirst;
  ticked.insert("RecreateDevices");
  EXPECT_EQ(post("wmp_page=Main_Page&New_PlayList=my wmp_page=setup_page list"),
            support::WholeSetupPage("Pause", ticked));
  EXPECT_EQ(Kind(post("wmp_page=setup_pages")), "setup");
  EXPECT_EQ(fields().wmp_page, "");
  // As a browser encodes it, a value can't be taken for it.
  EXPECT_EQ(Kind(post({{"wmp_page", "Main_Page"}, {"New_PlayList", "wmp_page=setup_page"}})), "main");
}

TEST_F(EditorPosts, ABodyWithoutPairsIsAPostWithoutAnything) {
  for (const std::string& body : std::vector<std::string>{"", "nonsense", "&&&", "%", std::string(3, '\0')})
    EXPECT_EQ(post(body), "");
  EXPECT_THAT(unknown(), IsEmpty());
  post({{"wmp_page", "Main_Page"}});
  EXPECT_EQ(Kind(post("nonsense")), "main");  // the page that posted last, and no button
}

TEST_F(EditorPosts, TenThousandPairsAreRead) {
  std::string body = "wmp_page=Main_Page";
  for (int i = 0; i < 5000; ++i) body += "&PlayList=n" + std::to_string(i) + "&u" + std::to_string(i) + "=1";
  body += "&PlayList=Mine";
  EXPECT_THAT(post(body), HasSubstr("<option selected value=\"Mine\">"));
  EXPECT_EQ(unknown().size(), 5000U);
  EXPECT_EQ(unknown().back(), "u4999=1");
}

TEST_F(EditorPosts, BrokenPercentCodesAreLoggedAndTakenAsTheyCame) {
  EXPECT_EQ(Kind(post("wmp_page=Main_Page&PlayList=%&New_PlayList=100%2&Title=%4g")), "main");
  EXPECT_EQ(fields().PlayList, "%");
  EXPECT_EQ(fields().New_PlayList, "100%2");
  EXPECT_EQ(fields().Title, "%4g");
  EXPECT_EQ(journal.count("WriteLog(\"Error\", \"Media Player Could not complete procedure "
                          "WebModule/UrlDecode Error # 13: Type mismatch\")"),
            3U);
}

TEST_F(EditorPosts, ACharacterOfCodeZeroIsOneAmongOthers) {
  const std::string zero("a\0b", 3);
  EXPECT_THAT(post("wmp_page=Main_Page&PlayList=a%00b"),
              HasSubstr("Error: PlayList '" + zero + "' does not"));
  EXPECT_THAT(post("wmp_page=Main_Page&PlayList=" + zero), HasSubstr(zero));
  EXPECT_EQ(fields().PlayList, zero);
}

TEST_F(EditorPosts, AnUnencodedEqualsSignLeavesASlotThatIsNoArgument) {
  EXPECT_EQ(Kind(post("wmp_page=Main_Page&Title=a=b")), "main");
  EXPECT_EQ(fields().Title, "a=b");
  EXPECT_THAT(unknown(), ElementsAre("="));
}

TEST_F(EditorPosts, APostThatComesWhileTheLogIsWrittenIsAnsweredForItself) {
  // The host may let a further post in while the plug-in waits for it.
  std::string inner;
  std::string further = "wmp_page=Main_Page&PlayList=Mine";
  host->answers["WriteLog"] = [&](base::Args&) {
    if (const std::string body = std::exchange(further, ""); !body.empty()) inner = post(body);
    return base::Value();
  };
  std::string body = "first=%zz";
  for (int i = 0; i < 50; ++i) body += "&Title=t" + std::to_string(i);
  EXPECT_EQ(Kind(post(body + "&wmp_page=Add_Page")), "add");
  EXPECT_EQ(Kind(inner), "main");
  EXPECT_EQ(fields().Title, "t49");

  further = "wmp_page=setup_page";
  EXPECT_EQ(Kind(post("Unknown=1&wmp_page=Main_Page")), "main");
  EXPECT_EQ(Kind(inner), "setup");
}

TEST_F(EditorPosts, AButtonActsOnceEvenWhenItsPostComesWhileAnotherIsRead) {
  library.addPlaylist("Yours");
  bool first = true;
  host->answers["WriteLog"] = [&](base::Args&) {
    if (std::exchange(first, false))
      post({{"wmp_page", "Main_Page"}, {"PlayList", "Mine"}, {"button", "Delete List"}});
    return base::Value();
  };
  EXPECT_EQ(Kind(post("wmp_page=Main_Page&PlayList=Yours&Unknown=1")), "main");
  EXPECT_EQ(journal.with("library: remove "), std::vector<std::string>{"library: remove Mine"});
}
