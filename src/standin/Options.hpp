#pragma once
#include <filesystem>
#include <string>
#include <vector>

namespace standin {

/// What the command line asks for.
struct Options {
  int port = 8080;  ///< 0: any free one
  std::string listen = "127.0.0.1";
  std::filesystem::path data;
  std::string bus;  ///< address of the bus; empty: the session's
  std::vector<std::string> allowedHosts;
  std::filesystem::path tlsCertificate;  ///< empty: plain http
  std::filesystem::path tlsKey;          ///< as the certificate where it isn't named
  std::string version;                   ///< what the host says of itself; empty: its default
  int scriptSeconds = 30;                ///< how long a script may compute
  bool address = false;                  ///< print the running server's address and end
  bool help = false;
};

/// Reads the words of a command line. Throws number 5 with a text for the user.
Options ReadOptions(const std::vector<std::string>& words);
/// How the program is called.
std::string Usage();
/// `$XDG_DATA_HOME/vantorix/server`.
std::filesystem::path DefaultDataFolder();

}  // namespace standin
