#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Loop.hpp"
#include "standin/dialogs/DialogForm.hpp"
#include "standin/house/House.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// Which of the plug-in's dialogs.
enum class DialogKind { kAction, kTrigger, kFirstCondition, kSecondCondition };
/// By the names "action", "trigger", "condition 1" and "condition 2"; nothing for another.
std::optional<DialogKind> DialogKindOf(const std::string& name);

/// Who asks for a dialog: a browser's session, and its user's name.
struct DialogAsker {
  std::string session{};
  std::string user{};
};

/// What has come of something asked of the dialog.
struct DialogAnswer {
  enum class Kind {
    kDone,
    kHeld,     ///< another browser has it open: `who`
    kClosed,   ///< it isn't open any more
    kRefused,  ///< what was filled in can't be kept: `error`, and `fields` that it is about
    kWrong,    ///< asked for what the dialog hasn't got
    kAway      ///< the plug-in can't be asked: `error`
  };
  Kind kind = Kind::kDone;
  std::string error{};
  std::string who{};
  DialogValues fields{};
  std::int64_t dialog = 0;
  nlohmann::json form{};
  std::string stored{};  ///< of what was submitted
  std::string words{};   ///< the plug-in's own for it
};

/// The dialog of the plug-in that is open: one at a time, as the plug-in takes it for granted. A browser has
/// it; another one may take it over. Neither opening nor submitting carries anything out. On the loop's
/// thread.
///
/// The live feed is told of it by messages "dialog": that it was taken from the browser that had it, that
/// the plug-in has gone away or has started again, so that it has to be opened anew, or that the plug-in has
/// changed it by itself.
class OpenDialog {
 public:
  struct Limits {
    base::Milliseconds look = std::chrono::seconds(15);  ///< how often its browser is looked for
    base::Milliseconds alone = std::chrono::minutes(2);  ///< a browser not seen for so long has left it
    base::Milliseconds joined = std::chrono::milliseconds(50);  ///< changes within that time are told as one
  };
  OpenDialog(base::Loop& loop, PluginKeeper& plugin, House& house)
      : OpenDialog(loop, plugin, house, Limits()) {}
  OpenDialog(base::Loop& loop, PluginKeeper& plugin, House& house, Limits limits);

  /// Called once, at once or later.
  using Told = std::function<void(const DialogAnswer& answer)>;
  /// Opens a dialog, with the values of a stored string unless it is empty. What the same browser has open
  /// is closed; what another one has, only when `take` is true.
  void open(DialogKind kind, const std::string& stored, const DialogAsker& asker, bool take, Told told);
  /// Fills in the values and presses a button.
  void press(std::int64_t dialog, std::int32_t button, const DialogValues& values, Told told);
  /// Fills in the values, has the plug-in judge them, and closes the dialog when they are good.
  void submit(std::int64_t dialog, const DialogValues& values, Told told);
  /// The form as it is now.
  DialogAnswer look(std::int64_t dialog);
  /// A page of a list's options; nothing when there is no such dialog or list.
  std::optional<DialogControl::Page> options(std::int64_t dialog, std::int32_t field, std::size_t from,
                                             std::size_t most, const std::string& sought);
  void close(std::int64_t dialog);

  static constexpr std::size_t kLongestStored = std::size_t{64} << 10U;  ///< bytes

 private:
  struct Open {
    std::int64_t id = 0;
    DialogKind kind = DialogKind::kAction;
    DialogAsker asker{};
    std::string since{};                 ///< the time of day
    base::Milliseconds seen{0};          ///< when its browser was there last
    std::unique_ptr<DialogForm> form{};  ///< once the plug-in has described it
    bool busy = false;                   ///< the plug-in works on it, and who waits for that gets the form
    bool gone = false;                   ///< the plug-in that has described it has
  };
  using OpenRef = std::shared_ptr<Open>;

  void describe(base::Object& vxif, const OpenRef& open, const std::string& stored);
  void judge(base::Object& vxif, Open& open, DialogAnswer& answer);
  void logStrange(const DialogText& text);
  /// The dialog of that number, if it can be used; its browser is there.
  OpenRef usable(std::int64_t dialog);
  [[nodiscard]] bool isOpen(const OpenRef& open) const { return current_ == open; }
  DialogAnswer formOf(const Open& open);
  [[nodiscard]] DialogAnswer refusalOf(const DialogValues& values) const;
  void end();
  void tell(const Open& open, const char* what);
  void changed(const Open& open);
  void hearPhase(PluginPhase phase);
  void lookForBrowser();

  base::Loop& loop_;
  PluginKeeper& plugin_;
  House& house_;
  Limits limits_;
  OpenRef current_;
  std::int64_t lastId_;
  std::unique_ptr<base::Timer> changeTimer_;
  std::unique_ptr<base::Timer> lookTimer_;
};

}  // namespace standin
