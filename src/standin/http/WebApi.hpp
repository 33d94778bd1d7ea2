#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "standin/routes/Route.hpp"
#include "standin/routes/Visitors.hpp"

namespace standin {

/// What the web's threads ask of the house: one table of all that it answers, with who may ask for it. Every
/// operation is called on a web thread, goes through the gate to the loop where it must, and comes back with
/// an answer in limited time.
class WebApi {
 public:
  /// Throws number 457 when two lines of the table are for the same.
  WebApi(Visitors& visitors, LoopGate& gate, Routes routes);

  /// The line for an address; null when there is none.
  [[nodiscard]] const Route* find(Method method, const std::string& path) const;
  /// Does what the line says, for a caller who may ask for it. Not for a line with a live stream.
  WebAnswer answer(const Route& route, WebCall call);
  /// What to tell one who may not ask for it; nothing when he may.
  std::optional<WebAnswer> refusal(const Route& route, const std::string& token);
  /// The same, and where he may, `work` is done in the very turn of the loop that has found so: no session
  /// ends in between. It may be done when nobody waits for it here any more.
  std::optional<WebAnswer> letIn(const Route& route, const std::string& token,
                                 std::function<void(const User& user)> work);
  /// The user of a session token, if the house knows one.
  std::optional<User> visitor(const std::string& token);
  [[nodiscard]] const Routes& routes() const { return routes_; }

 private:
  [[nodiscard]] WebAnswer signIn() const;
  /// On the loop's thread: puts the user into the call.
  std::optional<WebAnswer> admit(const Route& route, WebCall& call);

  Visitors& visitors_;
  LoopGate& gate_;
  Routes routes_;
  std::map<std::pair<Method, std::string>, const Route*> byAddress_;
};

}  // namespace standin
