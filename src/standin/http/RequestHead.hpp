#pragma once
#include <cstddef>
#include <string_view>
#include <variant>

namespace standin {

/// What the head of a request says of its body.
struct RequestHead {
  bool chunked = false;
  std::size_t length = 0;  ///< bytes of the body where it doesn't come in chunks
};

/// Why a request isn't looked at any further. All texts live for ever.
struct HeadRefusal {
  int status = 400;
  std::string_view reason = "Bad Request";
  std::string_view text = "The request was not understood";
};

/// Reads a request's head, from its first byte to the empty line that ends it. What could be understood in
/// two ways is refused: another server that passes requests on must see a body's end where this one sees it.
/// No body may come packed, and no more than one range may be asked for.
std::variant<RequestHead, HeadRefusal> ReadHead(std::string_view head);

}  // namespace standin
