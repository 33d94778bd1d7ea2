#include "support/PagesHouse.hpp"

using support::PagesHouse;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

/// A button, what is posted with it, and what it does and says.
struct Pressed {
  const char* page;
  const char* button;
  support::Fields fields;
  const char* change;
  const char* says;
};

/// A button whose operation waits for the host while another post comes in.
class EditorReEntry : public PagesHouse, public ::testing::WithParamInterface<Pressed> {
 protected:
  void SetUp() override {
    PagesHouse::SetUp();
    const auto river = library.addTrack("River", "Joni", "Blue", "Folk");
    const auto carey = library.addTrack("Carey", "Joni", "Blue", "Folk");
    // A name that needs a key is stored through the host as soon as it is read.
    const auto keyed = library.addTrack("A/B", "Joni", "Blue", "Folk");
    library.addPlaylist("Mine", {river, keyed});
    library.addPlaylist("Yours", {river, carey});
  }
  /// What has been changed in the player.
  [[nodiscard]] std::vector<std::string> changes() const {
    std::vector<std::string> all;
    for (const char* kind : {"append ", "rename ", "remove ", "newPlaylist "})
      for (const std::string& line : journal.with(std::string("library: ") + kind)) all.push_back(line);
    return all;
  }
};

const Pressed kPressed[] = {
    {"Add_Page",
     "Add Item",
     {{"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", "Blue"}, {"Title", "River"}},
     "library: append River to Mine",
     "Added: 'River' to PlayList: 'Mine'"},
    {"Main_Page",
     "Rename",
     {{"PlayList", "Mine"}, {"Renamed_PlayList", "Late"}},
     "library: rename Mine to Late",
     "PlayList 'Mine' Renamed to: 'Late'"},
    {"Main_Page", "Delete List", {{"PlayList", "Mine"}}, "library: remove Mine", "Deleted PlayList: 'Mine'"},
    {"Main_Page",
     "Delete Item",
     {{"PlayList", "Mine"}, {"PlayListItems", "River"}},
     "library: remove River from Mine",
     "Deleted: 'River', from PlayList: 'Mine'"},
    {"Main_Page",
     "New List",
     {{"PlayList", "Mine"}, {"New_PlayList", "Late!"}},
     "library: newPlaylist Late!",
     "Added new PlayList: 'Late!'"},
};

INSTANTIATE_TEST_SUITE_P(Buttons, EditorReEntry, ::testing::ValuesIn(kPressed), [](const auto& button) {
  std::string name = button.param.button;
  std::erase(name, ' ');
  return name;
});

}  // namespace

TEST_P(EditorReEntry, ActsOnWhatWasAskedForEvenWhenAnotherPostComesMeanwhile) {
  std::string inner;
  bool first = true;
  host->answers["SaveINISetting"] = [&](base::Args&) {
    if (std::exchange(first, false))
      inner = post({{"wmp_page", "Main_Page"},
                    {"PlayList", "Yours"},
                    {"PlayListItems", "Carey"},
                    {"New_PlayList", "Wrong"},
                    {"Renamed_PlayList", "Wrong"},
                    {"Add_from", "Genre"},
                    {"Albums", ""},
                    {"Title", "Carey"}});
    return base::Value();
  };
  support::Fields fields = GetParam().fields;
  fields.insert(fields.begin(), {{"wmp_page", GetParam().page}, {"button", GetParam().button}});
  EXPECT_THAT(post(support::Body(fields)), HasSubstr(support::Bold(GetParam().says)));
  EXPECT_THAT(inner, HasSubstr("<option selected value=\"Yours\">"));
  EXPECT_THAT(changes(), ElementsAre(GetParam().change));
}
