#include "standin/http/Giving.hpp"

#include <fcntl.h>
#include <httplib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "files/Descriptor.hpp"
#include "files/Stamp.hpp"
#include "standin/http/WebRules.hpp"
#include "standin/pages/WebFiles.hpp"
#include "standin/text/ByteRange.hpp"

namespace standin {
namespace {

constexpr std::size_t kSmall = std::size_t{256} << 10U;  ///< what is sent in one
constexpr std::size_t kPiece = std::size_t{64} << 10U;

/// What is not changed since can't be told by a weak mark: then all of it is right.
bool AsksForPart(const httplib::Request& request) {
  return request.method == "GET" && request.has_header("Range") && !request.has_header("If-Range");
}

/// Where the part lies that was asked for; nothing where there is no such part, which is answered then.
std::optional<ByteRange> PartOf(const httplib::Request& request, httplib::Response& response,
                                std::size_t size) {
  const auto part = RangeOf(request.get_header_value("Range"), size);
  const std::string all = "/" + std::to_string(size);
  if (!part) {
    Put(response, "Content-Range", "bytes *" + all);
    Give(response, Refusal(416, "There is nothing at that place"));
    return std::nullopt;
  }
  Put(response, "Content-Range",
      "bytes " + std::to_string(part->first) + "-" + std::to_string(part->first + part->count - 1) + all);
  return part;
}

/// Marks the answer; true when the browser has the same one, and is told so.
bool GiveMark(const httplib::Request& request, httplib::Response& response, const std::string& mark) {
  Put(response, "ETag", mark);
  const bool has = HasMark(request.get_header_value("If-None-Match"), mark);
  if (has) response.status = 304;
  return has;
}

}  // namespace

void Put(httplib::Response& response, const char* header, const std::string& value) {
  response.headers.erase(header);
  response.set_header(header, value);
}

void Give(httplib::Response& response, WebAnswer answer) {
  response.status = answer.status;
  response.body = std::move(answer.body);
  Put(response, "Content-Type", answer.type);
  if (!answer.location.empty()) response.set_redirect(answer.location, 303);
  if (!answer.cookie.empty()) response.set_header("Set-Cookie", answer.cookie);
}

void GiveIfNew(const httplib::Request& request, httplib::Response& response, WebAnswer answer) {
  if (GiveMark(request, response, ContentMark(answer.body))) return;
  if (answer.status == 200 && AsksForPart(request)) {
    const auto part = PartOf(request, response, answer.body.size());
    if (!part) return;
    answer.status = 206;
    answer.body = answer.body.substr(part->first, part->count);
  }
  Give(response, std::move(answer));
}

bool GiveInPieces(const httplib::Request& request, httplib::Response& response,
                  const std::filesystem::path& path) {
  const auto file =
      std::make_shared<files::Descriptor>(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat info {};
  if (!file->valid() || ::fstat(file->get(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
  ByteRange part{0, static_cast<std::size_t>(info.st_size)};
  if (part.count <= kSmall) return false;
  const files::FileStamp stamp = files::StampFrom(info);
  const std::string told =
      std::to_string(stamp.modified) + ' ' + std::to_string(stamp.size) + ' ' + std::to_string(stamp.inode);
  if (GiveMark(request, response, ContentMark(told))) return true;
  response.status = 200;
  if (AsksForPart(request)) {
    const auto asked = PartOf(request, response, part.count);
    if (!asked) return true;
    part = *asked;
    response.status = 206;
  }
  response.set_content_provider(
      part.count, std::string(MediaTypeOf(path.string())),
      [file, first = part.first](std::size_t offset, std::size_t left, httplib::DataSink& sink) {
        std::vector<char> piece(std::min(left, kPiece));
        const ssize_t got =
            ::pread(file->get(), piece.data(), piece.size(), static_cast<off_t>(first + offset));
        return got > 0 && sink.write(piece.data(), static_cast<std::size_t>(got));
      });
  return true;
}

}  // namespace standin
