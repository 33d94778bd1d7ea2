#include "catalogue/MediaKey.hpp"
#include "support/LibraryHouse.hpp"
#include "support/faults/ShortOfMemory.hpp"

using support::LibraryHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class NameXref : public LibraryHouse {
 protected:
  void SetUp() override {
    LibraryHouse::SetUp();
    host->answers["GetINISection"] = [this](base::Args& args) {
      return base::Value(sections[base::ToText(args[0])]);
    };
  }
  std::string add(const std::string& category, const std::string& name) {
    std::string key = "left over";
    EXPECT_TRUE(xref.AddNameXref(category, name, key));
    return key;
  }
  void section(const std::string& name, const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      if (!sections[name].empty()) sections[name] += '\0';
      sections[name] += line;
    }
  }
  static std::string saved(const std::string& category, const std::string& key, const std::string& value) {
    return "SaveINISetting(\"" + category + "\", \"" + key + "\", \"" + value + "\", \"vxif_WMP.ini\")";
  }
  std::map<std::string, std::string> sections;
};

}  // namespace

TEST_F(NameXref, ANameThatIsItsOwnKeyIsNotEntered) {
  EXPECT_EQ(add("Album", "Blue"), "Blue");
  EXPECT_EQ(xref.size(), 0U);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(NameXref, TheNewestSpellingOfAKeyWins) {
  EXPECT_EQ(add("Album", "Blue!"), "Blue");
  EXPECT_EQ(add("Album", "Blue?"), "Blue");
  EXPECT_EQ(xref.size(), 1U);
  EXPECT_THAT(journal.lines(),
              ElementsAre(saved("Album", "Blue", "426C756521"), saved("Album", "Blue", "426C75653F")));
  EXPECT_EQ(lookup("Album", "Blue"), "Blue?");
  EXPECT_EQ(lookup("Album", "Blue*"), "Blue?");
}

TEST_F(NameXref, AKnownSpellingIsNotSavedAgain) {
  add("Album", "Blue!");
  journal.clear();
  add("Album", "Blue!");
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(NameXref, SpellingsCompareExactlyAndKeysWithoutRegardToCase) {
  add("Album", "blue!");
  add("Album", "BLUE!");
  EXPECT_EQ(xref.size(), 1U);
  EXPECT_EQ(lookup("ALBUM", "bLuE"), "BLUE!");
}

TEST_F(NameXref, CategoriesAreKeptApartAndNotChecked) {
  add("Album", "Blue!");
  EXPECT_EQ(lookup("Artist", "Blue"), "Blue");
  add("URL", "http://x/");
  EXPECT_TRUE(journal.has(saved("URL", "http x", "687474703A2F2F782F")));
}

TEST_F(NameXref, ADoubleQuoteIsDoubledOnlyInANameThatIsKnown) {
  add("Album", "\"Heroes\"");
  EXPECT_EQ(lookup("Album", "Heroes"), "\"\"Heroes\"\"");
  EXPECT_EQ(lookup("Album", "\"Low\""), "\"Low\"");
}

TEST_F(NameXref, PunctuationAloneIsNeverEntered) {
  EXPECT_EQ(add("Album", "!!!"), "");
  EXPECT_EQ(xref.size(), 0U);
  EXPECT_EQ(lookup("Album", "???"), "???");
}

TEST_F(NameXref, ARemovedEntryLeavesAnEmptyValueInTheFile) {
  add("PlayList", "Road/Trip");
  journal.clear();
  EXPECT_TRUE(xref.RemoveNameXref("PlayList", "Road Trip"));
  EXPECT_THAT(journal.lines(), ElementsAre(saved("PlayList", "Road Trip", "")));
  EXPECT_FALSE(xref.RemoveNameXref("PlayList", "Road Trip"));
  EXPECT_EQ(lookup("PlayList", "Road Trip"), "Road Trip");
}

TEST_F(NameXref, AFailedSaveLeavesTheEntryInMemory) {
  host->failing = {"SaveINISetting"};
  add("Album", "Blue!");
  EXPECT_EQ(lookup("Album", "Blue"), "Blue!");
}

TEST_F(NameXref, ANameThatTheTableHasNoRoomForIsNotAdded) {
  constexpr std::size_t kLarge = 1U << 16U;
  const std::string name = std::string(kLarge, 'x') + "!";
  std::string key;
  {
    const support::ShortOfMemory machine(name.size() + 2);  // room for the key, none for the entry's
    EXPECT_FALSE(xref.AddNameXref("Album", name, key));
    EXPECT_EQ(xref.size(), 0U);
    EXPECT_FALSE(xref.RemoveNameXref("Album", key));
  }
  EXPECT_THAT(journal.lines(), IsEmpty());
  EXPECT_TRUE(xref.AddNameXref("Album", name, key));
  EXPECT_EQ(lookup("Album", key), name);
}

TEST_F(NameXref, AfterALoadOnlyTheGenresAreInMemory) {
  section("Album", {"Blue=426C75653F"});
  section("Genre", {"R B=52264221", "Rock Roll=526F636B2026526F6C6C"});
  xref.LoadNameTable();
  EXPECT_EQ(lookup("Album", "Blue"), "Blue");
  EXPECT_EQ(lookup("Genre", "r b"), "R&B!");
  EXPECT_EQ(xref.size(), 2U);
}

TEST_F(NameXref, AfterALoadAnAlbumsNameComesBackOnceItsListIsRead) {
  section("Album", {"Blue=426C75653F"});
  section("Genre", {"R B=522642"});
  xref.LoadNameTable();
  EXPECT_EQ(lookup("Album", "Blue"), "Blue");
  EXPECT_EQ(lookup("Genre", "R B"), "R&B");
  library.attributes["album"] = {"Blue?"};
  base::TextListRef names;
  ASSERT_EQ(catalogue.GetGroupList("Album", names, ""), 0);
  EXPECT_EQ(lookup("Album", "Blue"), "Blue?");
  EXPECT_EQ(lookup("Genre", "R B"), "R&B") << "the read adds to the table and takes nothing away";
}

TEST_F(NameXref, ALoadReadsItsSectionsInOrderAndWritesEveryEntryBack) {
  section("Media Library", {"Blue=426C75653F"});
  section("PlayList", {"Road Trip=526F61642F54726970"});
  xref.LoadNameTable();
  EXPECT_THAT(journal.with("GetINISection"), ElementsAre("GetINISection(\"Media\", \"vxif_WMP.ini\")",
                                                         "GetINISection(\"Media Library\", \"vxif_WMP.ini\")",
                                                         "GetINISection(\"Artist\", \"vxif_WMP.ini\")",
                                                         "GetINISection(\"Album\", \"vxif_WMP.ini\")",
                                                         "GetINISection(\"Genre\", \"vxif_WMP.ini\")"));
  EXPECT_THAT(journal.with("SaveINISetting"), ElementsAre(saved("Media Library", "Blue", "426C75653F")));
}

TEST_F(NameXref, AMalformedOrEmptyLineCostsOnlyItself) {
  section("Genre", {"no value", "a=b=c", "Gone=", "Bad=4Z", "R B=522642"});
  xref.LoadNameTable();
  EXPECT_EQ(xref.size(), 1U);
  EXPECT_EQ(lookup("Genre", "R B"), "R&B");
}

TEST_F(NameXref, TheOldSectionIsMovedAndCleared) {
  section("Media", {"Album:Blue=426C75653F", "nonsense", "x:y:z=1", "Genre:R B=522642"});
  xref.LoadNameTable();
  EXPECT_THAT(journal.with("SaveINISetting"),
              ElementsAre(saved("Album", "Blue", "426C75653F"), saved("Genre", "R B", "522642")));
  EXPECT_TRUE(journal.has("ClearINISection(\"Media\", \"vxif_WMP.ini\")"));
  EXPECT_THAT(progress.fractions, ElementsAre(0.25F, 0.5F, 0.75F, 1.0F));
}

TEST_F(NameXref, AnOldSectionThatCouldNotBeMovedIsKept) {
  section("Media", {"Album:Blue=426C75653F"});
  host->failing = {"SaveINISetting"};
  xref.LoadNameTable();
  EXPECT_THAT(journal.with("ClearINISection"), IsEmpty());
}

TEST_F(NameXref, ALoadYieldsEveryFiftyLines) {
  std::vector<std::string> lines;
  for (int i = 0; i < 101; ++i) lines.push_back("K" + std::to_string(i) + "=4B21");
  section("Genre", lines);
  xref.LoadNameTable();
  EXPECT_EQ(journal.count("WaitEvents()"), 3U);
  EXPECT_EQ(progress.fractions.size(), 101U);
  EXPECT_THAT(progress.calls, ElementsAre("show LoadNameTable", "hide LoadNameTable"));
}

TEST_F(NameXref, ALoadTellsItsWayOnlyWhenDebugged) {
  xref.LoadNameTable();
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
  plugin.state.DebugMessages = true;
  xref.LoadNameTable();
  std::vector<std::string> expected;
  for (const char* text : {"Loading Xref", "Loading Media Xref", "Loading Artist Xref", "Loading Album Xref",
                           "Loading Genre Xref", "Finished Loading Xref"})
    expected.push_back(std::string("WriteLog(\"Debug\", \"Media Player: ") + text + "\")");
  EXPECT_EQ(journal.with("WriteLog"), expected);
}

TEST_F(NameXref, AHostThatFailsLeavesAnEmptyTable) {
  host->failing = {"GetINISection", "WaitEvents", "WriteLog", "ClearINISection"};
  plugin.state.DebugMessages = true;
  add("Album", "Blue!");
  ASSERT_EQ(xref.size(), 1U);
  xref.LoadNameTable();
  EXPECT_EQ(xref.size(), 0U);
}
