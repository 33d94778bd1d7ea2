#pragma once
#include <filesystem>
#include <string>

#include "standin/routes/Route.hpp"

namespace httplib {
struct Request;
struct Response;
}  // namespace httplib

namespace standin {

/// One header, in place of what was there.
void Put(httplib::Response& response, const char* header, const std::string& value);
/// The answer as it is.
void Give(httplib::Response& response, WebAnswer answer);
/// The answer, or the part of it that was asked for, unless the browser has kept the same one from before:
/// then it is only told so.
void GiveIfNew(const httplib::Request& request, httplib::Response& response, WebAnswer answer);
/// The same for a large file, of which a piece is in memory at a time; it is marked by its size and time.
/// False for a small one, which is given as any other answer, and for what can't be read.
bool GiveInPieces(const httplib::Request& request, httplib::Response& response,
                  const std::filesystem::path& path);

}  // namespace standin
