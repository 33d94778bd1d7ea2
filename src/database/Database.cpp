#include "database/Database.hpp"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace database {

namespace {

/// A file that is its owner's alone, whatever the process gives others; those beside it follow it.
void KeepForOwner(const std::string& path) {
  const int made = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (made >= 0) {
    ::close(made);
    return;
  }
  for (const char* ending : {"", "-wal", "-shm"}) {  // of a version that gave them to all
    struct stat info {};
    const std::string file = path + ending;
    if (::stat(file.c_str(), &info) == 0 && (info.st_mode & (S_IRWXG | S_IRWXO)) != 0)
      static_cast<void>(::chmod(file.c_str(), S_IRUSR | S_IWUSR) == 0);
  }
}

}  // namespace

void Database::Close::operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
void Statement::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Database::Database(const std::string& path, std::string name) : name_(std::move(name)) {
  if (path != ":memory:") KeepForOwner(path);
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &handle,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  handle_.reset(handle);
  if (code != SQLITE_OK) fail("opening " + path);
  sqlite3_busy_timeout(handle, 5000);
  run("PRAGMA journal_mode=WAL");
  run("PRAGMA synchronous=NORMAL");
  run("PRAGMA foreign_keys=ON");
}

void Database::run(const std::string& sql) {
  if (sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    fail(sql.substr(0, 60));
  }
}

std::int64_t Database::lastId() const { return sqlite3_last_insert_rowid(handle_.get()); }

void Database::fail(const std::string& doing) const {
  const int code = handle_ == nullptr ? SQLITE_NOMEM : sqlite3_errcode(handle_.get());
  const std::string text =
      name_ + ": " + doing + ": " + (handle_ == nullptr ? "out of memory" : sqlite3_errmsg(handle_.get()));
  if (code == SQLITE_CORRUPT || code == SQLITE_NOTADB) throw Damaged(base::number::kDeviceIo, text);
  throw base::Failure(code == SQLITE_FULL ? base::number::kDiskFull : base::number::kDeviceIo, text);
}

Statement::Statement(Database& database, std::string_view sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(database.handle(), sql.data(), static_cast<int>(sql.size()),
                         SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
    database.fail(std::string(sql));
  }
  statement_.reset(statement);
}

void Statement::reset() {
  sqlite3_reset(statement_.get());
  sqlite3_clear_bindings(statement_.get());
}

void Statement::check(int code) const {
  if (code != SQLITE_OK) database_.fail(sqlite3_sql(statement_.get()));
}

void Statement::bind(int place, std::int64_t value) {
  check(sqlite3_bind_int64(statement_.get(), place, value));
}

void Statement::bind(int place, std::string_view value) {
  // An empty view may point to nothing, which would be no text.
  const char* data = value.empty() ? "" : value.data();
  check(sqlite3_bind_text64(statement_.get(), place, data, value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}

bool Statement::step() {
  const int code = sqlite3_step(statement_.get());
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) {
    sqlite3_reset(statement_.get());
    database_.fail(sqlite3_sql(statement_.get()));
  }
  sqlite3_reset(statement_.get());
  return false;
}

void Statement::run() {
  while (step()) {
  }
}

std::int64_t Statement::integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }

std::string_view Statement::view(int column) const {
  const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
  const int size = sqlite3_column_bytes(statement_.get(), column);
  return data == nullptr ? std::string_view() : std::string_view(data, static_cast<std::size_t>(size));
}

Transaction::Transaction(Database& database) : database_(database) { database_.run("BEGIN IMMEDIATE"); }

Transaction::~Transaction() {
  if (!open_) return;
  try {
    database_.run("ROLLBACK");
  } catch (...) {  // SQLite has rolled back by itself
  }
}

void Transaction::commit() {
  database_.run("COMMIT");
  open_ = false;
}

}  // namespace database
