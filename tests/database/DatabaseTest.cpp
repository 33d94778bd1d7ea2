#include "database/Database.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

namespace database::testing {
namespace {

class DatabaseTest : public ::testing::Test {
 protected:
  void SetUp() override { base.run("CREATE TABLE t (number INTEGER UNIQUE, text TEXT NOT NULL)"); }
  std::int64_t count() {
    Statement rows(base, "SELECT COUNT(*) FROM t");
    EXPECT_TRUE(rows.step());
    return rows.integer(0);
  }
  const support::TempFolder folder;
  Database base{folder.path() / "a.db", "The test"};
};

TEST_F(DatabaseTest, GivesBackWhatWasPutIn) {
  Statement put(base, "INSERT INTO t VALUES (?, ?)");
  put.with(std::int64_t{1} << 60, std::string("a\0b", 3)).run();
  put.with(-1, std::string_view()).run();
  EXPECT_EQ(base.lastId(), 2);
  Statement rows(base, "SELECT number, text FROM t ORDER BY number");
  ASSERT_TRUE(rows.step());
  EXPECT_EQ(rows.integer(0), -1);
  EXPECT_EQ(rows.text(1), "");
  ASSERT_TRUE(rows.step());
  EXPECT_EQ(rows.integer(0), std::int64_t{1} << 60);
  EXPECT_EQ(rows.view(1), std::string_view("a\0b", 3));
  EXPECT_FALSE(rows.step());
}

TEST_F(DatabaseTest, ATransactionThatIsNotCommittedLeavesNothing) {
  {
    Transaction whole(base);
    base.run("INSERT INTO t VALUES (1, 'a')");
  }
  EXPECT_EQ(count(), 0);
  Transaction whole(base);
  base.run("INSERT INTO t VALUES (1, 'a')");
  whole.commit();
  EXPECT_EQ(count(), 1);
}

TEST_F(DatabaseTest, AFailureNamesTheDatabaseAndTheStatementAndLeavesItUsable) {
  Statement put(base, "INSERT INTO t VALUES (?, ?)");
  put.with(1, "a").run();
  try {
    put.with(1, "b").run();
    FAIL() << "the same number twice";
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kDeviceIo);
    EXPECT_EQ(failure.description(),
              "The test: INSERT INTO t VALUES (?, ?): UNIQUE constraint failed: t.number");
  }
  put.with(2, "b").run();
  EXPECT_EQ(count(), 2);
}

TEST_F(DatabaseTest, AFullOneIsAFullDisk) {
  base.run("PRAGMA max_page_count=4");
  Statement put(base, "INSERT INTO t VALUES (1, ?)");
  EXPECT_EQ(support::FailureNumberOf([&] { put.with(std::string(100000, 'x')).run(); }),
            base::number::kDiskFull);
}

TEST_F(DatabaseTest, AFileThatIsNoneIsToldFromOneThatCanNotBeOpened) {
  std::ofstream(folder.path() / "b.db") << std::string(8192, 'x');
  EXPECT_THROW(Database(folder.path() / "b.db", "b"), Damaged);
  try {
    Database(folder.path() / "none" / "c.db", "c");
    FAIL() << "opened without its folder";
  } catch (const Damaged&) {
    FAIL() << "nothing is damaged";
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kDeviceIo);
  }
}

}  // namespace
}  // namespace database::testing
