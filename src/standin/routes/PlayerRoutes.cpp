// What the pages ask of the player itself: what plays, the transport, the queue. Guests look and change
// nothing.
#include <algorithm>
#include <limits>
#include <utility>

#include "base/Failure.hpp"
#include "standin/routes/PlayerAnswers.hpp"
#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr const char* kRefused = "Guests can't change what is played";
constexpr std::int32_t kLoudest = 100;
constexpr double kLongest = 1e7;  // seconds
// States of the player.
constexpr std::int32_t kBuffering = 6;
constexpr std::int32_t kTransitioning = 9;

/// Has the work done and answers with the player as it is then.
void Act(NowPlaying& player, NowPlaying::Work work, const Reply& reply) {
  player.act(std::move(work),
             [&player, reply](const PlayerNow& now, std::int32_t number, const std::string& failure) {
               if (!failure.empty()) return reply(Refusal(StatusOfFailure(number), failure));
               reply(Told(JsonOf(now, player.clock())));
             });
}

/// What a command does; made from what was posted, which may be wrong.
using Making = NowPlaying::Work (*)(const Json& posted);

NowPlaying::Work Calling(const char* operation) {
  return [operation](PlayerLists& lists) { lists.script().call(operation); };
}

PlayerNow NowOf(PlayerLists& lists) { return PlayerNowOf(lists.player().call("now"), 0); }

NowPlaying::Work Playing(const Json&) {
  return [](PlayerLists& lists) {
    if (NowOf(lists).heldAtStart())
      lists.part("controls")->call("play");
    else
      lists.script().call("ResumePlayer");
  };
}

/// The script object's one word for it turns round what it finds, and knows nothing of a title that is still
/// under way: that is held, or given up where the player can't hold it. What is held already stays so.
NowPlaying::Work Pausing(const Json&) {
  return [](PlayerLists& lists) {
    const PlayerNow now = NowOf(lists);
    if (now.heldAtStart()) return;
    const bool loading = now.state == kBuffering || now.state == kTransitioning;
    if (!loading) {
      if (now.canPause) lists.script().call("PausePlayer");
    } else if (now.canPause) {
      lists.part("controls")->call("pause");
    } else {
      lists.script().call("StopPlayer");
    }
  };
}

/// Within the item that it was meant for, if it says for which: a hand on the slider may outlast its title.
NowPlaying::Work Seeking(const Json& posted) {
  const double wanted = std::clamp(posted.at("to").get<double>(), 0.0, kLongest);
  return [wanted, item = posted.value("item", std::string())](PlayerLists& lists) {
    const PlayerNow now = NowOf(lists);
    if (!item.empty() && item != now.item) return;
    const double to = now.duration > 0 ? std::min(wanted, now.duration) : wanted;
    lists.part("controls")->put("currentPosition", base::Value(to));
  };
}

NowPlaying::Work Louder(const Json& posted) {
  const auto to = static_cast<std::int16_t>(std::clamp(posted.at("to").get<std::int32_t>(), 0, kLoudest));
  return [to](PlayerLists& lists) { lists.script().put("Volume", base::Value(to)); };
}

NowPlaying::Work Setting(const char* field, const Json& posted) {
  const bool on = posted.at("on").get<bool>();
  return [field, on](PlayerLists& lists) { lists.script().put(field, base::Value(on)); };
}

/// The very title of a row.
TitleAddress RowIn(const Json& json) {
  return {.at = json.at("at").get<std::int32_t>(),
          .name = json.at("title").get<std::string>(),
          .mark = json.at("mark").get<std::string>()};
}

/// A row of the queue is played, and what comes behind it.
NowPlaying::Work PlayingRow(const Json& posted) {
  return [row = RowIn(posted), name = posted.at("queue").get<std::string>()](PlayerLists& lists) {
    lists.player().invoke("playItem", Existing(lists, IsQueue(name) ? name : QueueName()).placeOf(row));
  };
}

/// Adds what is posted behind the current title, or at the end.
Playlists::Plan Queueing(const Json& posted) {
  const auto category = posted.at("category").get<std::string>();
  const auto group = posted.at("group").get<std::string>();
  TitleChoice choice{.all = !posted.contains("titles"), .by = posted.value("by", std::string())};
  if (!choice.all)
    for (const Json& each : posted.at("titles")) choice.titles.push_back(RowIn(each));
  const bool next = posted.value("next", false);
  return [category, group, choice, next](PlayerLists& lists, const PlayerList& queue) {
    const std::optional<PlayerList> from = lists.group(category, group);
    if (!from) throw base::Failure(base::number::kElementNotFound, "The player can't find “" + group + "”");
    const std::int32_t to = next ? lists.queuePlace() + 1 : std::numeric_limits<std::int32_t>::max();
    return PlanAdd(queue, *from, choice, to);
  };
}

/// What has become of a change of the queue; the player has another revision of it from then on.
Playlists::Done Answering(NowPlaying& player, const WebCall& call, const Reply& reply) {
  return [&player, user = call.user, reply](const Playlists::Outcome& outcome) {
    reply(ListAnswer(outcome, user));
    player.ask([](const PlayerNow&) {});
  };
}

}  // namespace

Routes PlayerRoutes(NowPlaying& player, Playlists& playlists) {
  const auto command = [&player](const std::string& word, const auto& making) {
    return Route{Method::kPost, "/api/player/" + word, Role::kOwner,
                 Later{[&player, making](const WebCall& call, const Reply& reply) {
                   Act(player, making(call.json), reply);
                 }},
                 kRefused};
  };
  const auto calling = [](const char* operation) {
    return [operation](const Json&) { return Calling(operation); };
  };
  const auto setting = [](const char* field) {
    return [field](const Json& posted) { return Setting(field, posted); };
  };
  const auto queue = [&](const std::string& word, auto handle) {
    return Route{Method::kPost,
                 "/api/queue/" + word,
                 Role::kOwner,
                 Later{[&player, &playlists, handle](const WebCall& call, const Reply& reply) {
                   const std::string name = call.json.value("name", std::string());
                   handle(playlists, IsQueue(name) ? name : QueueName(), call, Answering(player, call, reply),
                          reply);
                 }},
                 kRefused,
                 Route::kLargestBody};
  };
  return {{Method::kGet, "/api/player", Role::kGuest, Later{[&player](const WebCall&, const Reply& reply) {
             player.ask([&player, reply](const PlayerNow& now) { reply(Told(JsonOf(now, player.clock()))); });
           }}},
          command("play", Making(Playing)),
          command("pause", Making(Pausing)),
          command("stop", calling("StopPlayer")),
          command("next", calling("PlayNext")),
          command("previous", calling("PlayPrev")),
          command("seek", Making(Seeking)),
          command("volume", Making(Louder)),
          command("mute", setting("Mute")),
          command("shuffle", setting("ShuffleMode")),
          command("loop", setting("LoopMode")),
          command("item", Making(PlayingRow)),
          queue("add", [](Playlists& lists, const std::string& name, const WebCall& call,
                          const Playlists::Done& done,
                          const Reply&) { lists.change(name, Queueing(call.json), done); }),
          queue("clear",
                [](Playlists& lists, const std::string& name, const WebCall&, const Playlists::Done& done,
                   const Reply&) {
                  lists.change(
                      name, [](PlayerLists&, const PlayerList& list) { return PlanClear(list); }, done);
                }),
          queue("save", [](Playlists& lists, const std::string& name, const WebCall& call,
                           const Playlists::Done& done, const Reply& reply) {
            const std::string to = ListNameIn(call.json, "to");
            if (const auto wrong = WrongListName(to)) return reply(*wrong);
            lists.create(to, name, done);
          })};
}

}  // namespace standin
