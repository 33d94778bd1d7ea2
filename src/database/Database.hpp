#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/Failure.hpp"

struct sqlite3;
struct sqlite3_stmt;

namespace database {

/// The file is no database, or a broken one. Number 57.
class Damaged : public base::Failure {
 public:
  using Failure::Failure;
};

/// A database file, opened or made (":memory:" for none), its owner's alone, for one thread at a time.
/// Statements are committed one by one, unless inside a `Transaction`; what is committed survives the end of
/// the process at any moment. Failures throw: 61 for a full disk, `Damaged` where the file is to blame, 57
/// otherwise.
class Database {
 public:
  /// `name` begins the texts of its failures.
  Database(const std::string& path, std::string name);

  void run(const std::string& sql);
  [[nodiscard]] std::int64_t lastId() const;
  [[nodiscard]] sqlite3* handle() const { return handle_.get(); }
  /// Throws what the database has just failed of.
  [[noreturn]] void fail(const std::string& doing) const;

 private:
  struct Close {
    void operator()(sqlite3* handle) const;
  };
  std::string name_;
  std::unique_ptr<sqlite3, Close> handle_;
};

/// A prepared statement, to be used again and again.
class Statement {
 public:
  Statement(Database& database, std::string_view sql);

  /// Begins anew with these values for the question marks.
  template <class... T>
  Statement& with(const T&... values) {
    reset();
    int place = 0;
    (bind(++place, values), ...);
    return *this;
  }
  /// Moves to the next row; false behind the last.
  bool step();
  /// Runs a statement that gives no rows.
  void run();
  [[nodiscard]] std::int64_t integer(int column) const;
  [[nodiscard]] std::string text(int column) const { return std::string(view(column)); }
  /// The same text, as long as the statement stays at its row.
  [[nodiscard]] std::string_view view(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  void reset();
  void check(int code) const;
  void bind(int place, std::int64_t value);
  void bind(int place, std::uint64_t value) { bind(place, static_cast<std::int64_t>(value)); }
  void bind(int place, std::uint32_t value) { bind(place, static_cast<std::int64_t>(value)); }
  void bind(int place, std::int32_t value) { bind(place, static_cast<std::int64_t>(value)); }
  void bind(int place, std::uint16_t value) { bind(place, static_cast<std::int64_t>(value)); }
  void bind(int place, std::int16_t value) { bind(place, static_cast<std::int64_t>(value)); }
  void bind(int place, bool value) { bind(place, static_cast<std::int64_t>(value ? 1 : 0)); }
  void bind(int place, std::string_view value);
  void bind(int place, const std::string& value) { bind(place, std::string_view(value)); }
  void bind(int place, const char* value) { bind(place, std::string_view(value)); }

  Database& database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// All or nothing: undone unless `commit` was reached.
class Transaction {
 public:
  explicit Transaction(Database& database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  Transaction(Transaction&&) = delete;
  Transaction& operator=(Transaction&&) = delete;
  void commit();

 private:
  Database& database_;
  bool open_ = true;
};

}  // namespace database
