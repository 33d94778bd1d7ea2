// How long a browser has the dialog to itself.
#include <gtest/gtest.h>

#include <memory>

#include "standin/dialogs/OpenDialog.hpp"
#include "standin/dialogs/PluginTexts.hpp"
#include "standin/fakes/FakeDialogs.hpp"
#include "standin/fakes/FakePlugin.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"
#include "support/VirtualLoop.hpp"

namespace {

using standin::DialogAnswer;
using Kind = DialogAnswer::Kind;

/// The dialog in this process and in virtual time, with a plug-in on a real bus.
class DialogLease : public testing::Test {
 protected:
  DialogLease() {
    dialogs->trigger = support::TriggerText();
    support::FakePlugin::Manner manner;
    manner.more = dialogs->members();
    plugin.emplace(bus.address(), manner);
    keeper.start();
    EXPECT_TRUE(support::TurnUntil(loop, [this] { return keeper.state() == standin::PluginPhase::kReady; }));
  }
  void TearDown() override { keeper.stop(); }
  DialogAnswer open(const std::string& session, bool take = false) {
    std::optional<DialogAnswer> answer;
    dialog.open(standin::DialogKind::kTrigger, "", {session, "owner"}, take,
                [&](const DialogAnswer& given) { answer = given; });
    EXPECT_TRUE(support::TurnUntil(loop, [&] { return answer.has_value(); }));
    return answer.value_or(DialogAnswer());
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::shared_ptr<support::FakeDialogs> dialogs = std::make_shared<support::FakeDialogs>();
  std::optional<support::FakePlugin> plugin;
  bus::PollLoop loop;
  bus::Connection connection{loop, bus.address()};
  standin::House house{folder.path()};
  standin::PluginKeeper keeper{
      loop, connection, house,
      std::make_shared<support::TableOf>(
          "Callback",
          std::vector<base::Member>{
              {"GetVXIface", base::MemberKind::kOperation, {}, base::Type::kObject, [](base::Args&) {
                 return base::Value(std::make_shared<support::TableOf>("Host", std::vector<base::Member>()));
               }}})};
  support::VirtualLoop time;
  standin::OpenDialog dialog{time, keeper, house};
};

}  // namespace

TEST_F(DialogLease, EndsWhenItsBrowserIsNotSeenForTwoMinutes) {
  const DialogAnswer first = open("a");
  ASSERT_EQ(first.kind, Kind::kDone);
  time.advance(std::chrono::seconds(110));
  EXPECT_EQ(open("b").kind, Kind::kHeld);
  time.advance(std::chrono::seconds(30));
  EXPECT_EQ(open("b").kind, Kind::kDone);
  EXPECT_EQ(dialog.look(first.dialog).kind, Kind::kClosed);
}

TEST_F(DialogLease, LastsWhileItsBrowserListensOrAsks) {
  const DialogAnswer first = open("a");
  {
    const standin::LiveFeed::Reader page(house.live, "a");
    time.advance(std::chrono::minutes(20));
    EXPECT_EQ(open("b").kind, Kind::kHeld);
  }
  for (int i = 0; i < 10; ++i) {
    time.advance(std::chrono::seconds(100));
    EXPECT_EQ(dialog.look(first.dialog).kind, Kind::kDone);
  }
  EXPECT_EQ(open("b").kind, Kind::kHeld);
}

TEST_F(DialogLease, IsHeldByANameAndATime) {
  open("a");
  const DialogAnswer held = open("b");
  EXPECT_EQ(held.who.substr(0, 13), "owner, since ");
  EXPECT_EQ(open("b", true).kind, Kind::kDone);
  EXPECT_EQ(open("a").kind, Kind::kHeld);
}

TEST_F(DialogLease, OfAClosedDialogIsNobodys) {
  dialog.close(open("a").dialog);
  EXPECT_EQ(open("b").kind, Kind::kDone);
}
