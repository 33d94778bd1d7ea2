#pragma once
#include "database/Database.hpp"

namespace standin {

/// Brings the tables of a new or older database file to today's form. Throws number 57 for a file that a
/// newer server has written.
void PrepareSchema(database::Database& database);

}  // namespace standin
