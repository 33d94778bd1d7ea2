#pragma once
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace standin {

/// The house's database file. Statements are committed one by one, unless inside a `Transaction`; what is
/// committed survives the end of the process at any moment. Failures throw: 61 for a full disk, 57 otherwise.
class Database {
 public:
  explicit Database(const std::filesystem::path& path);

  void run(const std::string& sql);
  [[nodiscard]] std::int64_t lastId() const;
  [[nodiscard]] sqlite3* handle() const { return handle_.get(); }

 private:
  struct Close {
    void operator()(sqlite3* handle) const;
  };
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
  [[nodiscard]] std::string text(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  void reset();
  void bind(int place, std::int64_t value);
  void bind(int place, std::int32_t value) { bind(place, static_cast<std::int64_t>(value)); }
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

}  // namespace standin
