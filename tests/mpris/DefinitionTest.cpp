#include <expat.h>
#include <gmock/gmock.h>

#include <fstream>
#include <set>

#include "OnTheBus.hpp"

namespace {

/// What an introspection text says, one line a fact, whatever their order.
class Facts {
 public:
  explicit Facts(const std::string& xml) {
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser,
        [](void* self, const char* element, const char** attributes) {
          static_cast<Facts*>(self)->begin(element, attributes);
        },
        [](void* self, const char*) { static_cast<Facts*>(self)->within_.pop_back(); });
    good_ = XML_Parse(parser, xml.c_str(), static_cast<int>(xml.size()), 1) != XML_STATUS_ERROR;
    XML_ParserFree(parser);
  }
  [[nodiscard]] bool good() const { return good_; }
  [[nodiscard]] const std::set<std::string>& lines() const { return lines_; }

 private:
  void begin(const std::string& element, const char** attributes) {
    std::map<std::string, std::string> sorted;
    for (; *attributes != nullptr; attributes += 2) sorted[attributes[0]] = attributes[1];
    std::string line = within_.empty() ? "" : within_.back() + " / ";
    // The order of arguments counts, so each is told with its number.
    if (element == "arg") line += std::to_string(++arguments_[line]) + ". ";
    line += element;
    for (const auto& [key, value] : sorted) line += " " + key + "=" + value;
    lines_.insert(line);
    within_.push_back(line);
  }

  bool good_ = false;
  std::vector<std::string> within_;
  std::map<std::string, int> arguments_;
  std::set<std::string> lines_;
};

using Definition = mpris_test::OnTheBus;

}  // namespace

TEST_F(Definition, IsWhatIntrospectionTells) {
  appear();
  std::ifstream file(DEFINITION_FILE);
  const Facts defined(std::string((std::istreambuf_iterator<char>(file)), {}));
  const Facts told(user->call("org.freedesktop.DBus.Introspectable", "Introspect").text());
  ASSERT_TRUE(defined.good());
  ASSERT_TRUE(told.good());
  EXPECT_GT(defined.lines().size(), 70U);
  EXPECT_THAT(told.lines(), ::testing::ContainerEq(defined.lines()));
}

TEST_F(Definition, EveryPropertyIsReadInTheTypeThatItDeclares) {
  appear();
  const mpris::Face face({loop, player.script, [] { return true; }, [] { return false; },
                          [](const std::string&, const std::string&, const mpris::Values&) {}});
  for (const auto& interface : face.object().interfaces())
    for (const auto& property : interface.properties) {
      const auto answer = user->get(interface.name.c_str(), property.name.c_str());
      char type = 0;
      const char* contents = "";
      sd_bus_message_peek_type(answer.message.get(), &type, &contents);
      EXPECT_EQ(contents, property.type) << property.name;
    }
}
