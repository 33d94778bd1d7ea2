#include "engine/scan/Sqlite.hpp"

#include <sqlite3.h>

namespace engine {
namespace {

void Check(sqlite3* database, int result) {
  if (result == SQLITE_OK) return;
  const std::string words = sqlite3_errmsg(database);
  if (result == SQLITE_CORRUPT || result == SQLITE_NOTADB)
    throw DamagedDatabase(base::number::kDeviceIo, words);
  throw base::Failure(base::number::kDeviceIo, words);
}

}  // namespace

void Statement::Closer::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
void Database::Closer::operator()(sqlite3* database) const { sqlite3_close(database); }

Statement::Statement(sqlite3* database, const char* text) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  Check(database, sqlite3_prepare_v2(database, text, -1, &statement, nullptr));
  statement_.reset(statement);
}

Statement& Statement::bind(int place, const std::string& text) {
  Check(database_, sqlite3_bind_text(statement_.get(), place, text.data(), static_cast<int>(text.size()),
                                     SQLITE_STATIC));
  return *this;
}

Statement& Statement::bind(int place, std::int64_t number) {
  Check(database_, sqlite3_bind_int64(statement_.get(), place, number));
  return *this;
}

bool Statement::step() {
  const int result = sqlite3_step(statement_.get());
  if (result == SQLITE_ROW) return true;
  const int reset = sqlite3_reset(statement_.get());
  if (result != SQLITE_DONE) Check(database_, reset != SQLITE_OK ? reset : result);
  return false;
}

std::string Statement::text(int column) const {
  const auto* text = sqlite3_column_text(statement_.get(), column);
  const int size = sqlite3_column_bytes(statement_.get(), column);
  return text != nullptr ? std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size))
                         : std::string();
}

std::int64_t Statement::number(int column) const { return sqlite3_column_int64(statement_.get(), column); }

Database::Database(const std::string& path) {
  sqlite3* database = nullptr;
  const int result = sqlite3_open_v2(
      path.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX, nullptr);
  database_.reset(database);
  Check(database, result);
  sqlite3_busy_timeout(database, 2000);
}

void Database::run(const char* text) {
  Check(database_.get(), sqlite3_exec(database_.get(), text, nullptr, nullptr, nullptr));
}

Transaction::~Transaction() {
  if (!done_) sqlite3_exec(database_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

}  // namespace engine
