#include <gtest/gtest.h>

#include "base/Failure.hpp"
#include "standin/scripts/ScriptStore.hpp"
#include "support/TempFolder.hpp"

namespace {

using base::Failure;

TEST(ScriptStore, KeepsScriptsUnderGoodNames) {
  const support::TempFolder folder;
  const standin::ScriptStore store(folder.path() / "scripts");
  ASSERT_EQ(store.names().size(), standin::ScriptExamples().size());
  store.write("My own-1", "print(1)");
  EXPECT_EQ(store.read("My own-1"), "print(1)");
  EXPECT_EQ(store.names().size(), standin::ScriptExamples().size() + 1);
  for (const char* bad : {"", ".", "..", "../house", "a/b", "a.lua", " a", "a ", "\xC3\xA4"}) {
    EXPECT_THROW(store.write(bad, "x"), Failure) << bad;
    EXPECT_FALSE(store.read(bad)) << bad;
    EXPECT_FALSE(store.remove(bad)) << bad;
  }
  EXPECT_TRUE(store.remove("My own-1"));
  EXPECT_FALSE(store.remove("My own-1"));
  const standin::ScriptStore again(folder.path() / "scripts");
  EXPECT_EQ(again.names(), store.names());
}

TEST(ScriptStore, DeletedExamplesStayAway) {
  const support::TempFolder folder;
  {
    const standin::ScriptStore store(folder.path() / "scripts");
    for (const std::string& name : store.names()) EXPECT_TRUE(store.remove(name));
  }
  EXPECT_TRUE(standin::ScriptStore(folder.path() / "scripts").names().empty());
}

}  // namespace
