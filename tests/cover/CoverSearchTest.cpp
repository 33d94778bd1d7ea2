#include "cover/CoverSearch.hpp"

#include "support/House.hpp"

namespace {

using base::Failure;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLarge = R"(C:\Vantorix\html\images\Media Player\WMPCoverLarge.jpg)";
constexpr const char* kSmall = R"(C:\Vantorix\html\images\Media Player\WMPCoverSmall.jpg)";
constexpr const char* kBesideLarge = R"(C:\Music\First\AlbumArt_{1234}_Large.jpg)";
constexpr const char* kBesideSmall = R"(C:\Music\First\AlbumArt_{1234}_Small.jpg)";
/// 39 characters, as the service's address is.
constexpr const char* kCoverService = "http://covers.example.invalid/x1/cover/";

/// A disk in memory, where a picture is a file whose text begins with "picture".
class FakeCoverFiles : public cover::CoverFiles {
 public:
  explicit FakeCoverFiles(support::Journal& journal) : journal_(journal) {}
  std::map<std::string, std::string> files;
  std::map<std::string, std::string> web;
  bool full = false;
  bool fullForCopies = false;

  void remove(const std::string& path) override {
    journal_.add("delete " + path);
    if (files.erase(path) == 0) throw Failure(base::number::kFileNotFound);
  }
  void makeFolder(const std::string& path) override {
    journal_.add("folder " + path);
    throw Failure(75);
  }
  void copy(const std::string& from, const std::string& to) override {
    journal_.add("copy " + from + " to " + to);
    if (full || fullForCopies) throw Failure(61);
    files[to] = files.at(from);
  }
  void overwrite(const std::string& path, const std::string& bytes) override {
    journal_.add("write " + path);
    if (full) throw Failure(61);
    std::string& file = files[path];
    file = bytes + (file.size() > bytes.size() ? file.substr(bytes.size()) : "");
  }
  void download(const std::string& url, const std::string& path) override {
    journal_.add("download " + url + " to " + path);
    if (web.count(url) > 0) files[path] = web[url];
  }
  cover::Picture load(const std::string& path) override {
    const auto file = files.find(path);
    if (file == files.end()) throw Failure(base::number::kFileNotFound);
    if (file->second.rfind("picture", 0) != 0) throw Failure(481);
    return {file->second};
  }

 private:
  support::Journal& journal_;
};

class Cover : public support::House {
 protected:
  Cover() {
    start();
    plugin.state.DebugMessages = true;
    plugin.state.CoverLargeFile = kLarge;
    plugin.state.CoverSmallFile = kSmall;
    plugin.state.CoverSmallTag = "<small>";
    host->answers["GetUrl"] = [this](base::Args& args) {
      const std::string address = base::ToText(args[0]) + base::ToText(args[1]);
      asked.push_back(address);
      const auto found = answers.find(address);
      if (found == answers.end()) throw Failure(base::number::kDeviceIo);
      return base::Value(found->second);
    };
    media = std::make_shared<support::FakeMedia>("One", "Band", "First", "Rock");
    wmp9->media = media;
    wmp9->online = true;
    journal.clear();
  }
  void search(const cover::Services& services = {"http://meta.example.invalid", kCoverService}) {
    cover::CoverSearch search({plugin.form, popup, plugin.host, plugin.loggers, plugin.state, files},
                              services);
    search.GetCoverImage();
  }
  /// The debug lines, behind the plug-in's name.
  std::vector<std::string> told() {
    std::vector<std::string> lines;
    const std::string head = "WriteLog(\"Debug\", \"Media Player";
    for (const std::string& line : journal.with(head))
      lines.push_back(line.substr(head.size(), line.size() - head.size() - 2));
    return lines;
  }
  std::vector<std::string> album() { return journal.with("SetDeviceStringByName(\"Media Player Album\""); }
  std::string metadataAddress() {
    return "http://meta.example.invalid/redir/GetMDRCD.asp?locale=409&version=" + wmp9->version +
           "&cd=" + media->info["WM/MCDI"];
  }
  /// A disc whose covers the services have: of that many bytes each.
  void disc(std::size_t large, std::size_t small) {
    media->info["WM/MCDI"] = "5+96+2D2B";
    answers[metadataAddress()] =
        "<METADATA><largeCoverParams>large.jpg</largeCoverParams><smallCoverParams>small.jpg</"
        "smallCoverParams>";
    answers["HTTP://covers.example.invalid/x1/cover/large.jpg"] = picture(large);
    answers["http://covers.example.invalid/x1/cover/small.jpg"] = picture(small);
  }
  /// An album whose covers may lie beside its music.
  void beside() {
    media->info["WM/WMCollectionID"] = "{1234}";
    media->info["SourceURL"] = R"(C:\Music\First\One.mp3)";
  }
  [[nodiscard]] std::vector<std::string> fileSteps() const {
    std::vector<std::string> steps;
    for (const std::string& line : journal.lines()) {
      for (const char* word : {"delete ", "folder ", "copy ", "write ", "download "})
        if (line.rfind(word, 0) == 0) steps.push_back(line);
    }
    return steps;
  }
  static std::string picture(std::size_t bytes) { return "picture" + std::string(bytes - 7, 'x'); }

  FakeCoverFiles files{journal};
  std::shared_ptr<support::FakeMedia> media;
  std::map<std::string, std::string> answers;
  std::vector<std::string> asked;
};

TEST_F(Cover, OfTheMediaFileServesAsBothSizes) {
  media->picture = "file:///pictures/1.jpg";
  files.web["file:///pictures/1.jpg"] = "picture one";
  search();
  EXPECT_EQ(files.files[kSmall], "picture one");
  EXPECT_EQ(files.files[kLarge], "picture one");
  EXPECT_THAT(told(), ElementsAre(": Locating embedded cover art", ": Found cover art"));
  EXPECT_THAT(journal.with("popup:"),
              ElementsAre("popup: Image1 = picture one", "popup: height 6540", "popup: layout"));
  EXPECT_THAT(album(),
              ElementsAre(R"(SetDeviceStringByName("Media Player Album", "<small><br>First", True))"));
  EXPECT_THAT(asked, IsEmpty());
}

TEST_F(Cover, OfTheMediaFileThatIsNoPictureIsPassedOver) {
  media->picture = "file:///pictures/1.jpg";
  files.web["file:///pictures/1.jpg"] = "a text";
  search();
  EXPECT_THAT(told(),
              ElementsAre(": Locating embedded cover art", ": Embedded picture failed",
                          ": Locating local cover art", ": No Album ID# found", ": Locating remote cover art",
                          ": No album ID# found", ": Unable to retrieve cover art"));
  EXPECT_THAT(files.files, IsEmpty()) << "what was downloaded is deleted again";
  EXPECT_THAT(album(), IsEmpty());
}

TEST_F(Cover, BesideTheMusicTakesBothFilesAndAsksNobodyElse) {
  beside();
  media->info["WM/MCDI"] = "5+96+2D2B";
  files.files[kBesideLarge] = "picture large";
  files.files[kBesideSmall] = "picture small";
  search();
  EXPECT_EQ(files.files[kLarge], "picture large");
  EXPECT_EQ(files.files[kSmall], "picture small");
  EXPECT_THAT(told(), ElementsAre(": Locating embedded cover art", ": No embedded picture found",
                                  ": Locating local cover art", ": Found cover art"));
  EXPECT_THAT(asked, IsEmpty());
}

TEST_F(Cover, BesideTheMusicWithoutItsSmallPartnerShowsInTheWindowAlone) {
  beside();
  files.files[kBesideLarge] = "picture large";
  search();
  EXPECT_THAT(journal.with("popup: Image1"), ElementsAre("popup: Image1 = picture large"));
  EXPECT_EQ(files.files.count(kLarge), 0U);
  EXPECT_EQ(files.files.count(kSmall), 0U);
  EXPECT_THAT(album(), IsEmpty());
  EXPECT_EQ(told().back(), ": Found cover art");
}

TEST_F(Cover, OfAStreamOrAFileInARootFolderIsLookedForInTheNetworkAtOnce) {
  media->info["WM/WMCollectionID"] = "{1234}";
  for (const char* source : {"http://radio.example.invalid/stream", "C:One.mp3", ""}) {
    media->info["SourceURL"] = source;
    journal.clear();
    search();
    EXPECT_THAT(told(), ElementsAre(": Locating embedded cover art", ": No embedded picture found",
                                    ": Locating local cover art", ": Locating remote cover art",
                                    ": No album ID# found", ": Unable to retrieve cover art"))
        << source;
  }
}

TEST_F(Cover, WithoutAFileBesideTheMusicIsToldAndLookedForInTheNetwork) {
  beside();
  search();
  EXPECT_THAT(told(), ElementsAre(": Locating embedded cover art", ": No embedded picture found",
                                  ": Locating local cover art", ": No local file found",
                                  ": Locating remote cover art", ": No album ID# found",
                                  ": Unable to retrieve cover art"));
  files.files[kBesideLarge] = "a text";
  journal.clear();
  search();
  EXPECT_EQ(told().at(3), ": No local file found") << "a file that is no picture counts as none";
}

TEST_F(Cover, GoesThroughItsFilesInThisOrder) {
  beside();
  media->picture = "file:///pictures/1.jpg";
  files.web["file:///pictures/1.jpg"] = "a text";
  files.files[kBesideLarge] = "picture large";
  files.files[kBesideSmall] = "picture small";
  search();
  const std::string small = kSmall;
  const std::string large = kLarge;
  EXPECT_THAT(fileSteps(),
              ElementsAre("delete " + small, "download file:///pictures/1.jpg to " + small, "delete " + large,
                          "download file:///pictures/1.jpg to " + large,
                          R"(folder C:\Vantorix\html\images\Media Player)", "delete " + large,
                          std::string("copy ") + kBesideLarge + " to " + large, "delete " + small,
                          std::string("copy ") + kBesideSmall + " to " + small));
  files.files.clear();
  media->picture.clear();
  journal.clear();
  search();
  EXPECT_THAT(fileSteps(), ElementsAre(R"(folder C:\Vantorix\html\images\Media Player)", "delete " + large,
                                       "delete " + small))
      << "what fails takes the large one away first";
}

TEST_F(Cover, BesideTheMusicThatCantBeCopiedIsLookedForInTheNetworkAndShownAllTheSame) {
  beside();
  files.files[kBesideLarge] = "picture large";
  files.files[kBesideSmall] = "picture small";
  files.full = true;
  search();
  EXPECT_THAT(told(), ElementsAre(": Locating embedded cover art", ": No embedded picture found",
                                  ": Locating local cover art", ": Locating remote cover art",
                                  ": No album ID# found", ": Found cover art"));
  EXPECT_THAT(journal.with("popup: Image1"), ElementsAre("popup: Image1 = picture large"));
  EXPECT_EQ(album().size(), 1U) << "both were loaded before the copying failed";
}

TEST_F(Cover, BesideTheMusicThatCouldNotBeCopiedDoesNotPassForASmallOneOfTheNetwork) {
  disc(600, 400);
  beside();
  files.files[kBesideLarge] = "picture large";
  files.files[kBesideSmall] = "picture small";
  files.fullForCopies = true;
  search();
  EXPECT_EQ(asked.size(), 3U);
  EXPECT_EQ(files.files.count(kLarge), 0U) << "without a small one of its own the large one goes again";
  EXPECT_EQ(files.files.count(kSmall), 0U);
  EXPECT_THAT(journal.with("popup: Image1"), ElementsAre("popup: Image1 = " + picture(600)));
}

TEST_F(Cover, OfTheNextAlbumIsLookedForOnceTheSearchUnderWayIsDone) {
  disc(600, 600);
  plugin.playState.GetCoverImage = [this] {
    journal.add("search begins");
    search();
    journal.add("search ends");
  };
  bool begun = false;
  host->answers["WaitEvents"] = [&](base::Args&) {
    if (!std::exchange(begun, true)) {
      wmp9->media = std::make_shared<support::FakeMedia>("Two", "Band", "Second", "Rock");
      for (const std::int32_t state : {9, 3}) wmp9->events().PlayStateChange(state);
      loop.advance(base::Milliseconds(300));
    }
    return base::Value();
  };
  wmp9->state = 3;
  wmp9->events().PlayStateChange(3);
  loop.advance(base::Milliseconds(150));
  ASSERT_TRUE(begun);
  loop.advance(base::Milliseconds(150));
  EXPECT_THAT(journal.with("search "),
              ElementsAre("search begins", "search ends", "search begins", "search ends"));
}

TEST_F(Cover, FromTheNetworkIsAskedForByTheDisc) {
  disc(600, 501);
  search();
  EXPECT_THAT(asked, ElementsAre(metadataAddress(), "HTTP://covers.example.invalid/x1/cover/large.jpg",
                                 "http://covers.example.invalid/x1/cover/small.jpg"));
  EXPECT_EQ(journal.with("WaitEvents").size(), 3U) << "others get their turn after each request";
  EXPECT_EQ(files.files[kLarge], picture(600));
  EXPECT_EQ(files.files[kSmall], picture(501));
  EXPECT_EQ(told().back(), ": Found cover art");
  EXPECT_EQ(album().size(), 1U);
}

TEST_F(Cover, OfExactlyFiveHundredBytesIsEnoughForTheLargeOneAndTooShortForTheSmallOne) {
  disc(500, 500);
  search();
  EXPECT_EQ(asked.size(), 3U);
  EXPECT_THAT(journal.with("popup: Image1"), ElementsAre("popup: Image1 = " + picture(500)));
  EXPECT_THAT(files.files, IsEmpty()) << "both files are gone";
  EXPECT_THAT(album(), IsEmpty());
  disc(499, 600);
  journal.clear();
  search();
  EXPECT_EQ(told().at(told().size() - 2), "Could not find image");
}

TEST_F(Cover, AddressOfExactly43CharactersIsEnoughForTheLargeOneAndRefusedForTheSmallOne) {
  disc(600, 600);
  answers[metadataAddress()] =
      "<largeCoverParams>four</largeCoverParams><smallCoverParams>four</smallCoverParams>";
  answers["HTTP://covers.example.invalid/x1/cover/four"] = picture(600);
  search();
  EXPECT_THAT(asked, ElementsAre(metadataAddress(), "HTTP://covers.example.invalid/x1/cover/four"));
  answers[metadataAddress()] =
      "<largeCoverParams>abc</largeCoverParams><smallCoverParams>fours</smallCoverParams>";
  asked.clear();
  journal.clear();
  search();
  EXPECT_THAT(asked, ElementsAre(metadataAddress()));
  EXPECT_EQ(told().at(told().size() - 2), "Could not find image location");
}

TEST_F(Cover, AnswerOf49CharactersIsFetchedTwiceAndOneOf50Once) {
  disc(600, 600);
  answers[metadataAddress()] = std::string(49, 'x');
  search();
  EXPECT_EQ(asked.size(), 2U);
  EXPECT_EQ(told().at(told().size() - 2), "Could not find website");
  asked.clear();
  journal.clear();
  answers[metadataAddress()] = std::string(50, 'x');
  search();
  EXPECT_EQ(asked.size(), 1U);
  EXPECT_EQ(told().at(told().size() - 2), "Could not find image location");
}

TEST_F(Cover, AnswerThatFailsGetsNoSecondTry) {
  media->info["WM/MCDI"] = "5+96+2D2B";
  search();
  EXPECT_EQ(asked.size(), 1U);
  EXPECT_EQ(told().at(told().size() - 2), "Could not find website");
  EXPECT_THAT(album(), IsEmpty());
}

TEST_F(Cover, AnswerWithoutTheLargeMarkerIsReadFromItsEighteenthCharacterOn) {
  disc(600, 600);
  answers[metadataAddress()] = "12345678901234567AB<smallCoverParams>small.jpg</smallCoverParams><x/>";
  answers["HTTP://covers.example.invalid/x1/cover/AB"] = picture(600);
  search();
  EXPECT_THAT(asked, ElementsAre(metadataAddress())) << "two characters make too short an address";
  answers[metadataAddress()] = "12345678901234567ABCD<smallCoverParams>small.jpg</smallCoverParams>";
  asked.clear();
  search();
  EXPECT_EQ(asked.at(1), "HTTP://covers.example.invalid/x1/cover/ABCD");
  EXPECT_EQ(asked.size(), 2U);
  EXPECT_EQ(told().at(told().size() - 2), "Could not find image");
  EXPECT_THAT(files.files, IsEmpty());
}

TEST_F(Cover, WithoutANetworkOrServicesEndsThere) {
  disc(600, 600);
  wmp9->online = false;
  search();
  EXPECT_THAT(asked, IsEmpty());
  EXPECT_EQ(told().at(told().size() - 2), ": No network connection");
  wmp9->online = true;
  journal.clear();
  search({});
  EXPECT_THAT(asked, IsEmpty());
  EXPECT_EQ(told().at(told().size() - 2), ": No network connection");
}

TEST_F(Cover, ThatIsShorterThanTheLastOneKeepsItsTail) {
  disc(600, 600);
  files.files[kLarge] = "picture" + std::string(700, 'o');
  search();
  EXPECT_EQ(files.files[kLarge], picture(600) + std::string(107, 'o'));
}

TEST_F(Cover, ThatCantBeSavedIsTold) {
  disc(600, 600);
  files.full = true;
  search();
  EXPECT_EQ(told().at(told().size() - 2), "Could not save image");
}

TEST_F(Cover, SearchIsSilentWithoutDebugMessages) {
  plugin.state.DebugMessages = false;
  search();
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
}

}  // namespace
