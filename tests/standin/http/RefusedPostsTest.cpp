#include "standin/http/RefusedPosts.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/house/House.hpp"
#include "support/TempFolder.hpp"
#include "support/VirtualLoop.hpp"

namespace {

using standin::PostRefusal;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class PostsRefused : public testing::Test {
 protected:
  std::vector<std::string> lines() {
    std::vector<std::string> found;
    for (const standin::LogLine& line : house.log.newest(1000)) found.push_back(line.type + ": " + line.text);
    return found;
  }
  support::TempFolder folder;
  support::VirtualLoop loop;
  standin::House house{folder.path()};
};

TEST_F(PostsRefused, AreToldOnceAMinuteHoweverManyCome) {
  standin::RefusedPosts refused(loop, house.log);
  EXPECT_THAT(lines(), IsEmpty());
  refused.count(PostRefusal::kNoSession);
  loop.advance(seconds(1));
  EXPECT_THAT(lines(), ElementsAre("Warning: 1 post refused: 1 without session"));
  for (int i = 0; i < 10; ++i) {
    refused.count(PostRefusal::kOtherOrigin);
    loop.advance(seconds(1));
  }
  refused.count(PostRefusal::kNoSession);
  refused.count(PostRefusal::kForeignHost);
  loop.advance(seconds(40));
  EXPECT_EQ(lines().size(), 1U);
  loop.advance(seconds(20));
  ASSERT_EQ(lines().size(), 2U);
  EXPECT_EQ(
      lines().back(),
      "Warning: 12 posts refused: 10 from another origin, 1 with a foreign host name, 1 without session");
  refused.count(PostRefusal::kNoSession);
  loop.advance(seconds(30));
  EXPECT_EQ(lines().size(), 2U);
  loop.advance(seconds(30));
  EXPECT_EQ(lines().size(), 3U);
}

TEST_F(PostsRefused, AreToldAtOnceAfterAQuietMinute) {
  standin::RefusedPosts refused(loop, house.log);
  refused.count(PostRefusal::kForeignHost);
  loop.advance(seconds(130));
  EXPECT_EQ(lines().size(), 1U);
  refused.count(PostRefusal::kOtherOrigin);
  loop.advance(seconds(1));
  EXPECT_THAT(lines(), ElementsAre("Warning: 1 post refused: 1 with a foreign host name",
                                   "Warning: 1 post refused: 1 from another origin"));
}

TEST_F(PostsRefused, AreToldBeforeTheServerEnds) {
  {
    standin::RefusedPosts refused(loop, house.log);
    refused.count(PostRefusal::kNoSession);
    loop.advance(seconds(1));
    refused.count(PostRefusal::kNoSession);
  }
  EXPECT_EQ(lines().size(), 2U);
}

}  // namespace
