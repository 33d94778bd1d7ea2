#pragma once
#include <charconv>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <variant>
#include <vector>

#include "standin/house/LoopGate.hpp"
#include "standin/house/Users.hpp"

namespace standin {

/// What the web answers to a request.
struct WebAnswer {
  int status = 200;
  std::string type = "application/json";
  std::string body = "{}";
  std::string cookie{};    ///< content of a Set-Cookie header, if any
  std::string location{};  ///< where the browser goes on, if anywhere
  std::string cache{};     ///< Cache-Control in place of the usual "private, no-cache", if any
  std::string policy{};    ///< a Content-Security-Policy in place of the server's usual one, if any
};

/// JSON for the page that asks.
WebAnswer Told(const nlohmann::json& json);
/// A text for the user, in the form of an answer.
WebAnswer Refusal(int status, const std::string& text);
/// Success for an empty text, a refusal with what the plug-in's failure says otherwise.
WebAnswer OutcomeOf(const std::string& failure);
/// What one is told whom the house doesn't know: how to get in.
inline constexpr const char* kWayByKey =
    "Open the address that the server has printed; “vantorix-standin --address” prints it again";
/// The exception now being handled as an answer. Only to be called inside a catch block.
WebAnswer RefusalOfFailure();

enum class Method { kGet, kPost };

/// What is asked, and by whom.
struct WebCall {
  Method method = Method::kGet;
  std::string path{};
  std::map<std::string, std::string> parameters{};  ///< of the address
  std::string body{};                               ///< as it came
  nlohmann::json json{};  ///< the body of a post below /api/, an object, if it is one
  std::string type{};     ///< of the body, as it was told
  std::string token{};    ///< content of the session cookie, empty without one
  std::string peer{};     ///< the address that it comes from
  User user{};            ///< without a name for one whom the house doesn't know

  [[nodiscard]] bool has(const std::string& name) const { return parameters.count(name) != 0; }
  /// Empty when it isn't given.
  [[nodiscard]] std::string parameter(const std::string& name) const {
    const auto found = parameters.find(name);
    return found == parameters.end() ? std::string() : found->second;
  }
  /// 0 when it isn't given or is no number.
  template <class Number>
  [[nodiscard]] Number number(const std::string& name) const {
    const std::string text = parameter(name);
    Number value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
  }
};

/// Who may ask: everybody who reaches the server, everybody who is signed in, or the owner alone.
enum class Role { kAnyone, kGuest, kOwner };

using Reply = std::function<void(WebAnswer)>;

/// The four ways to an answer. What a handler throws becomes an answer too: a field of the JSON that is
/// missing or of another type is the asker's fault. On the loop's thread, with the answer at once.
struct Now {
  std::function<WebAnswer(const WebCall& call)> answer;
};
/// On the loop's thread; `reply` is called then or later, once. The call lives until the handler returns.
struct Later {
  std::function<void(const WebCall& call, const Reply& reply)> answer;
};
/// On the web's own thread: for what takes a processor's time. The house is reached with `AskLoop` only.
struct Aside {
  std::function<WebAnswer(const WebCall& call)> answer;
};
/// The stream of what happens in the house.
struct Live {};
/// A file of the house's own, below its html folder.
struct HouseFile {};

/// One line of the table of what the web may be asked for.
struct Route {
  static constexpr std::size_t kUsualBody = std::size_t{64} << 10U;
  static constexpr std::size_t kLargestBody = std::size_t{1} << 20U;
  static constexpr const char* kJson = "application/json";
  static constexpr const char* kForm = "application/x-www-form-urlencoded";

  Method method;
  std::string path;  ///< "/*": all that no other line takes, but nothing below /api/
  Role role;
  std::variant<Now, Later, Aside, Live, HouseFile> handler;
  std::string refused = "Guests can't do that";  ///< what a guest is told where only the owner may ask
  std::size_t limit = kUsualBody;                ///< bytes of a post's body
  /// How the type of a post's body begins. Below /api/ it is none that a form can send: no page's form,
  /// whoever has written it, can ask for what scripts ask for.
  std::string type = kJson;
};
using Routes = std::vector<Route>;
/// The line of all files below the html folder, whatever they are called.
inline constexpr const char* kHouseFiles = "/*/*";
/// All of them in one table.
Routes Joined(const std::vector<Routes>& areas);

/// Runs `work` on the loop's thread and waits for its reply, which comes in limited time whatever happens.
/// Only for the web's threads.
WebAnswer AskLoop(LoopGate& gate, std::function<void(const Reply& reply)> work);

}  // namespace standin
