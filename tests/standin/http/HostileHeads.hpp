#pragma once
#include <string>
#include <vector>

namespace standin::testing {

/// Heads that one server may read in another way than the next one: where the body ends, which host is meant,
/// where a line does.
inline std::vector<std::string> HeadsOfTwoMeanings() {
  const std::string post = "POST /api/logout HTTP/1.1\r\nHost: localhost\r\n";
  const std::string get = "GET /api/state HTTP/1.1\r\nHost: localhost\r\n";
  const std::string chunked = "Transfer-Encoding: chunked\r\n";
  const std::string line = "GET /api/state HTTP/1.1";
  const std::string host = "\r\nHost: localhost\r\n\r\n";
  return {
      post + "Content-Length: 3\r\nContent-Length: 4\r\n\r\n",
      post + "Content-Length: 3\r\nContent-Length: 3\r\n\r\n",
      post + "Content-Length: 0x10\r\n\r\n",
      post + "Content-Length: 0,3\r\n\r\n",
      post + "Content-Length: +3\r\n\r\n",
      post + "Content-Length: -1\r\n\r\n",
      post + "Content-Length: 3 3\r\n\r\n",
      post + "Content-Length: %33\r\n\r\n",
      post + "Content-Length: 99999999999999999999\r\n\r\n",
      post + "Content-Length:\r\n\r\n",
      post + "Content-Length: 3\r\n" + chunked + "\r\n",
      post + chunked + "Content-Length: 3\r\n\r\n",
      post + chunked + chunked + "\r\n",
      post + "Transfer-Encoding: chunked, chunked\r\n\r\n",
      post + "Transfer-Encoding: gzip, chunked\r\n\r\n",
      post + "Transfer-Encoding: identity\r\n\r\n",
      post + "Transfer-Encoding: %63hunked\r\n\r\n",
      post + "Transfer-Encoding : chunked\r\n\r\n",
      post + "Content-Length : 3\r\n\r\n",
      post + "X: y\r\n Content-Length: 3\r\n\r\n",
      post + "X: y\r\n\tfolded\r\nContent-Length: 0\r\n\r\n",
      "POST /api/logout HTTP/1.0\r\nHost: localhost\r\n" + chunked + "\r\n",
      get + "Content-Length: 3\r\n\r\n",
      get + chunked + "\r\n",
      "HEAD /api/state HTTP/1.1\r\nHost: localhost\r\nContent-Length: 3\r\n\r\n",
      get + "Host: localhost\r\n\r\n",
      line + "\r\n\r\n",
      get + "X: a\nContent-Length: 3\r\n\r\n",
      get + "X: a\rContent-Length: 3\r\n\r\n",
      get + std::string("X: a\0b\r\n\r\n", 10),
      get + "no header\r\n\r\n",
      get + ": no name\r\n\r\n",
      get + "Bad(name): x\r\n\r\n",
      "GET  /api/state HTTP/1.1" + host,
      "GET /api/state  HTTP/1.1" + host,
      "GET /api state HTTP/1.1" + host,
      "GET\t/api/state HTTP/1.1" + host,
      " " + line + host,
      "GET /api/state HTTP/1.1 " + host,
      "GET /api/state HTTP/2.0" + host,
      "GET /api/state HTTP/1.11" + host,
      "GET /api/state http/1.1" + host,
      "GET /api/state" + host,
      "GET http://elsewhere/api/state HTTP/1.1" + host,
      "GET@ /api/state HTTP/1.1" + host,
  };
}

}  // namespace standin::testing
