#include "standin/Options.hpp"

#include <charconv>
#include <cstdlib>

#include "base/Failure.hpp"

namespace standin {
namespace {

[[noreturn]] void Refuse(const std::string& text) {
  throw base::Failure(base::number::kInvalidArgument, text);
}

int PortOf(const std::string& text) {
  int port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port < 0 || port > 65535) {
    Refuse("\"" + text + "\" is no port: a number from 0 to 65535");
  }
  return port;
}

int SecondsOf(const std::string& text) {
  int seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error != std::errc() || end != text.data() + text.size() || seconds < 1 || seconds > 86400) {
    Refuse("\"" + text + "\" is no number of seconds from 1 to 86400");
  }
  return seconds;
}

std::string Environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read before any thread starts
  return value == nullptr ? std::string() : value;
}

/// What a variable that isn't set leaves is no file: nobody would see that pages go in the clear.
std::string FileOf(const std::string& word, const std::string& value) {
  if (value.empty()) Refuse(word + " needs a file");
  return value;
}

}  // namespace

std::filesystem::path DefaultDataFolder() {
  const std::string data = Environment("XDG_DATA_HOME");
  if (!data.empty()) return std::filesystem::path(data) / "vantorix" / "server";
  const std::string home = Environment("HOME");
  return std::filesystem::path(home.empty() ? "." : home) / ".local" / "share" / "vantorix" / "server";
}

std::string Usage() {
  return "vantorix-standin: the house's server\n"
         "  --port N           web port (8080; 0 for any free one)\n"
         "  --listen ADDRESS   address to listen on (127.0.0.1); others need a password for the owner\n"
         "  --data FOLDER      where the house is kept ($XDG_DATA_HOME/vantorix/server)\n"
         "  --bus ADDRESS      message bus (the session's)\n"
         "  --allow-host NAME  a further name that browsers may call this server by; may be repeated\n"
         "  --tls-cert FILE    speak https: the server's certificate (PEM), with those that vouch for it\n"
         "  --tls-key FILE     the key to it (in the certificate's file, if not named)\n"
         "  --host-version V   the version that plug-ins are told\n"
         "  --script-seconds N how long a script may compute (30)\n"
         "  --address          print the address of the running server, with the owner's key in it, and end\n"
         "  --help             this text\n";
}

Options ReadOptions(const std::vector<std::string>& words) {
  Options options;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--help" || word == "-h") {
      options.help = true;
      continue;
    }
    if (word == "--address") {
      options.address = true;
      continue;
    }
    const bool known = word == "--port" || word == "--listen" || word == "--data" || word == "--bus" ||
                       word == "--allow-host" || word == "--host-version" || word == "--script-seconds" ||
                       word == "--tls-cert" || word == "--tls-key";
    if (!known) Refuse("Unknown option " + word);
    if (i + 1 == words.size()) Refuse(word + " needs a value");
    const std::string& value = words[++i];
    if (word == "--port") {
      options.port = PortOf(value);
    } else if (word == "--listen") {
      options.listen = value;
    } else if (word == "--data") {
      options.data = value;
    } else if (word == "--bus") {
      options.bus = value;
    } else if (word == "--script-seconds") {
      options.scriptSeconds = SecondsOf(value);
    } else if (word == "--tls-cert") {
      options.tlsCertificate = FileOf(word, value);
    } else if (word == "--tls-key") {
      options.tlsKey = FileOf(word, value);
    } else if (word == "--allow-host") {
      options.allowedHosts.push_back(value);
    } else {
      options.version = value;
    }
  }
  if (!options.tlsKey.empty() && options.tlsCertificate.empty()) Refuse("--tls-key needs --tls-cert");
  if (options.tlsKey.empty()) options.tlsKey = options.tlsCertificate;
  if (options.data.empty()) options.data = DefaultDataFolder();
  return options;
}

}  // namespace standin
