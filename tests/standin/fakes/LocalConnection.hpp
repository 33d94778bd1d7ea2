#pragma once
#include <arpa/inet.h>
#include <sys/socket.h>

#include <cstdint>
#include <memory>
#include <string>

#include "files/Descriptor.hpp"
#include "files/WriteFile.hpp"

namespace support {

/// A connection to a port of this machine that has sent these bytes; null when there is none.
inline std::unique_ptr<files::Descriptor> ConnectionTo(int port, const std::string& said) {
  auto socket = std::make_unique<files::Descriptor>(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket->get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return nullptr;
  files::WriteAll(socket->get(), said, "socket");
  return socket;
}

}  // namespace support
