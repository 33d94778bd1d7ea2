#include "standin/http/RequestHead.hpp"

#include <algorithm>
#include <charconv>
#include <optional>

#include "base/Text.hpp"
#include "standin/text/ByteRange.hpp"

namespace standin {
namespace {

constexpr std::size_t kMostDigits = 10;  // of a body's length
constexpr std::string_view kLineEnd = "\r\n";

constexpr HeadRefusal kIll{};
constexpr HeadRefusal kNoLength{411, "Length Required", "The request doesn't tell the length of its body"};
constexpr HeadRefusal kPacked{415, "Unsupported Media Type", "A packed body is not understood"};
constexpr HeadRefusal kRanges{416, "Range Not Satisfiable", "Only one range can be asked for"};

/// Of a method or a header's name.
bool IsToken(std::string_view text) {
  constexpr std::string_view kOthers = "!#$%&'*+-.^_`|~";
  return !text.empty() && std::all_of(text.begin(), text.end(), [&](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           kOthers.find(c) != std::string_view::npos;
  });
}

/// What a line may hold: no end of line, no code 0, nothing of the kind but tabs.
bool IsPlain(std::string_view line) {
  return std::none_of(line.begin(), line.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\t') || byte == 0x7f;
  });
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
  text.remove_prefix(begin);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// Takes the first line, without its end; nothing when there is no more, or none that ends as it must.
std::optional<std::string_view> TakeLine(std::string_view& text) {
  const std::size_t end = text.find(kLineEnd);
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end + kLineEnd.size());
  if (!IsPlain(line)) return std::nullopt;
  return line;
}

struct RequestLine {
  std::string_view method;
  bool old = false;  ///< HTTP/1.0
};

std::optional<RequestLine> ReadRequestLine(std::string_view line) {
  const std::size_t first = line.find(' ');
  const std::size_t last = line.rfind(' ');
  if (first == std::string_view::npos || first == last) return std::nullopt;
  const std::string_view method = line.substr(0, first);
  const std::string_view target = line.substr(first + 1, last - first - 1);
  const std::string_view version = line.substr(last + 1);
  const bool known = version == "HTTP/1.1" || version == "HTTP/1.0";
  const bool here = target.starts_with('/') && target.find_first_of(" \t") == std::string_view::npos;
  if (!known || !here || !IsToken(method)) return std::nullopt;
  return RequestLine{method, version == "HTTP/1.0"};
}

/// A header of which there may be one.
struct Once {
  int count = 0;
  std::string_view value{};

  void take(std::string_view text) {
    ++count;
    value = text;
  }
  [[nodiscard]] bool given() const { return count > 0; }
};

/// The headers that the rules are about.
struct Headers {
  Once length, coding, host, type, packing, range;

  /// False when the line is none.
  bool take(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || !IsToken(line.substr(0, colon))) return false;
    const std::string name = base::LowerCase(line.substr(0, colon));
    const std::string_view value = Trimmed(line.substr(colon + 1));
    for (const auto& [known, header] : {std::pair<std::string_view, Once*>{"content-length", &length},
                                        {"transfer-encoding", &coding},
                                        {"host", &host},
                                        {"content-type", &type},
                                        {"content-encoding", &packing},
                                        {"range", &range}}) {
      if (name == known) header->take(value);
    }
    return true;
  }
};

std::optional<std::size_t> LengthIn(std::string_view text) {
  if (text.empty() || text.size() > kMostDigits ||
      text.find_first_not_of("0123456789") != std::string_view::npos) {
    return std::nullopt;
  }
  std::size_t length = 0;
  std::from_chars(text.data(), text.data() + text.size(), length);
  return length;
}

std::variant<RequestHead, HeadRefusal> BodyOf(const RequestLine& line, const Headers& headers) {
  if (headers.length.count + headers.coding.count > 1) return kIll;
  RequestHead head;
  if (headers.coding.given()) {
    head.chunked = base::SameText(headers.coding.value, "chunked");
    if (!head.chunked || line.old) return kIll;
  } else if (headers.length.given()) {
    const std::optional<std::size_t> length = LengthIn(headers.length.value);
    if (!length) return kIll;
    head.length = *length;
  } else if (line.method == "POST") {
    return kNoLength;
  }
  const bool mayHaveNone = line.method == "GET" || line.method == "HEAD";
  if (mayHaveNone && (head.chunked || head.length > 0)) return kIll;
  return head;
}

}  // namespace

std::variant<RequestHead, HeadRefusal> ReadHead(std::string_view head) {
  const std::optional<std::string_view> first = TakeLine(head);
  const std::optional<RequestLine> line = first ? ReadRequestLine(*first) : std::nullopt;
  if (!line) return kIll;
  Headers headers;
  for (;;) {
    const std::optional<std::string_view> each = TakeLine(head);
    if (each && each->empty()) break;
    if (!each || !headers.take(*each)) return kIll;
  }
  const int hosts = headers.host.count;
  if (!head.empty() || hosts > 1 || (hosts == 0 && !line->old) || headers.type.count > 1) return kIll;
  const std::variant<RequestHead, HeadRefusal> body = BodyOf(*line, headers);
  if (std::holds_alternative<HeadRefusal>(body)) return body;
  const Once& packing = headers.packing;
  if (packing.count > 1 || (packing.given() && !base::SameText(packing.value, "identity"))) return kPacked;
  if (headers.range.count > 1 || (headers.range.given() && !IsOneRange(headers.range.value))) return kRanges;
  return body;
}

}  // namespace standin
