#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "base/Failure.hpp"

struct sqlite3;
struct sqlite3_stmt;

namespace engine {

/// The file is no database, or a broken one.
class DamagedDatabase : public base::Failure {
 public:
  using Failure::Failure;
};

/// One prepared statement. Every operation throws number 57 with the database's own words, and
/// DamagedDatabase where the file is to blame.
class Statement {
 public:
  Statement(sqlite3* database, const char* text);

  /// Binds by place, from 1. The text must live until the statement has run.
  Statement& bind(int place, const std::string& text);
  Statement& bind(int place, std::int64_t number);
  /// Runs to the next row. False at the end; the statement is then ready to be run anew.
  bool step();
  [[nodiscard]] std::string text(int column) const;
  [[nodiscard]] std::int64_t number(int column) const;

 private:
  struct Closer {
    void operator()(sqlite3_stmt* statement) const;
  };
  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Closer> statement_;
};

/// One database file, opened or made.
class Database {
 public:
  explicit Database(const std::string& path);

  void run(const char* text);
  [[nodiscard]] sqlite3* handle() const { return database_.get(); }

 private:
  struct Closer {
    void operator()(sqlite3* database) const;
  };
  std::unique_ptr<sqlite3, Closer> database_;
};

/// A transaction that is rolled back unless it was committed.
class Transaction {
 public:
  explicit Transaction(Database& database) : database_(database) { database_.run("BEGIN"); }
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  Transaction(Transaction&&) = delete;
  Transaction& operator=(Transaction&&) = delete;

  void commit() {
    database_.run("COMMIT");
    done_ = true;
  }

 private:
  Database& database_;
  bool done_ = false;
};

}  // namespace engine
