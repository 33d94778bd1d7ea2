#include "ear/Corpus.hpp"

#include <algorithm>
#include <random>
#include <set>
#include <sstream>
#include <utility>

namespace bench {
namespace {

using Texts = std::vector<std::string>;

Texts Split(const std::string& text) {
  Texts all;
  std::istringstream in(text);
  for (std::string each; std::getline(in, each, '|');) all.push_back(each);
  return all;
}

std::string Choice(const Texts& names) {
  std::string all;
  for (const std::string& name : names) all += (all.empty() ? "(" : "|") + name;
  return all + ")";
}

/// What one corpus is made of.
struct Words {
  const char* first;
  const char* second;
  const char* artists;
  const char* lists;
  const char* genres;
  /// Names that aren't said as they are written: "name=how it is said".
  const char* odd;
  const char* outside;
};

constexpr Words kTuning{
    "Night|Long|Blue|Green|Silver|Broken|Golden|Hidden|Summer|Winter|Electric|Velvet|Paper|Crystal|Lonely|"
    "Burning|Silent|Distant|Wild|Sacred",
    "Shift|River|Moon|Garden|Road|Mirror|Ocean|Dream|Fire|Station|Letters|Sky|Harbor|Forest|Machine|Shadow|"
    "Window|Bridge|Island|Echo",
    "Mira the Clocks|The Paper Lanterns|Johnny Marsh|Sarah Vale|The Velvet Hours|Oscar Blue|Emma Stone Trio|"
    "The Night Owls|David Frost Band|Luna Park|The Red Foxes|Anna Berg|The Iron Kings|Miles Turner|"
    "Carla Bruno|The Wanderers|Blue Harbor",
    "Morning Coffee|Party Time|Sunday Jazz|Workout|Dinner",
    "Rock|Jazz|Classical|Blues|Electronic",
    "1984=nineteen eighty four|Live 1970=live nineteen seventy|Greatest Hits Vol 2=greatest hits volume two|"
    "Songs from 2001=songs from two thousand and one|Don t Stop=don't stop|Best of the 80s=best of the "
    "eighties|Part III=part three|Rock n Roll=rock and roll|No 9=number nine",
    "What time is it|Turn on the kitchen light|I would like a cup of coffee please|The weather is nice "
    "today|Where did you put my keys|Can you call my mother tomorrow|This is not a command at all|We should "
    "go to the market on Sunday|He played football yesterday|She likes to read long books|Open the window "
    "please|How far is the station from here|The dog is sleeping on the couch|Set an alarm for seven "
    "o'clock|Did you see the news last night|My phone battery is almost empty|Let us watch a movie this "
    "evening|Nobody knows the trouble I have seen|The train leaves at half past nine|Please close the door "
    "behind you|I forgot to buy milk and bread|Tell me a story about dragons|The children are playing "
    "outside|It is raining again this morning|Could you help me with this box|Play something nice|Player do "
    "something|Play the game with me|Play album Moonlight Serenade|Play album Yesterday Tomorrow|Play "
    "artist Benjamin Carter|Play artist The Unknown Soldiers|Play genre Polka|Play album Thunder "
    "Mountain|Play artist Katherine Woods|Player volume sideways|Play album|Play artist|Player|Stop it "
    "right now please|Good morning everybody|Thank you very much|I am not sure about that|One two three "
    "four five|Play album Purple Rainbow|Play artist Margaret Hill|Play album Songs My Mother Taught "
    "Me|Play the piano|The player won the match|He stopped at the next corner|Display the results on the "
    "screen|Turn the volume of the radio down|A new album came out today|Add some salt to the soup|Mute "
    "swans are white birds|Shuffle the cards before you deal"};

constexpr Words kHeldOut{
    "Amber|Quiet|Falling|Scarlet|Morning|Empty|Copper|Secret|Northern|Autumn|Neon|Marble|Iron|Painted|"
    "Restless|Frozen|Gentle|Faded|Open|Midnight",
    "Rain|Valley|Sun|Orchard|Highway|Portrait|Desert|Promise|Thunder|Motel|Stories|Horizon|Lighthouse|"
    "Meadow|Engine|Whisper|Doorway|Tower|Canyon|Signal",
    "The Glass Sparrows|Peter Lindholm|Rosa Delgado|The Sunday Drivers|Harper Quinn|The Brass Monkeys|Nina "
    "Falk Quartet|Tommy Reed|The Lost Sailors|Clara West|George Maddox|The Copper Pipes|Ivy Lane|The Tall "
    "Strangers|Samuel Okoro|Big Yellow Bus|Helen Archer",
    "Evening Walk|Road Trip|Kids Songs|Garden Party|Relax",
    "Folk|Country|Soul|Reggae|Techno",
    "1999=nineteen ninety nine|Live 1986=live nineteen eighty six|Collected Works Vol 3=collected works "
    "volume three|Summer of 69=summer of sixty nine|Can t Wait=can't wait|Hits of the 70s=hits of the "
    "seventies|Chapter II=chapter two|Salt & Pepper=salt and pepper|Symphony No 5=symphony number five",
    "They moved to another city last year|What are we having for dinner|I think the printer is "
    "broken|Remember to water the plants|There is a bird on the roof|Who left the lights on "
    "upstairs|Grandfather used to tell us old jokes|Is there any cake left in the fridge|The meeting was "
    "moved to Thursday afternoon|My brother bought a second hand car|Could you bring me my glasses|It gets "
    "dark early in November|The soup needs a little more pepper|Her flight was delayed by two hours|I can "
    "not find the remote control|Take the second street on the left|This chair is rather "
    "uncomfortable|Our neighbours have a noisy dog|He works at the hospital downtown|Do you remember the "
    "name of that actor|The baby has finally fallen asleep|Somebody is ringing the doorbell|We ran out of "
    "paper again|The museum is closed on Mondays|Maybe we should call a plumber|Play it again "
    "tomorrow|Player "
    "turn around|Play a trick on him|Play album Whiskey Lullaby|Play album Seven Hundred Elephants|Play "
    "artist Jonathan Barker|Play artist The Flying Carpets|Play genre Opera|Play album Concrete "
    "Jungle|Play artist Victoria Stone|Player volume louder please|Play genre|Play playlist|Play|Next week "
    "we go on holiday|Good evening and welcome|You are welcome any time|That depends on the price|Twenty "
    "three forty five sixty|Play album Orange Balloons|Play artist Frederick Young|Play album What a "
    "Wonderful Afternoon|Play the violin|Each player gets seven cards|The bus stops right here|Display "
    "windows are full of toys|The volume of the box is two litres|She paused for a moment|The previous "
    "owner sold the house|Eject the warp core captain|The loop road is closed"};

constexpr const char* kControls =
    "Stop|Next|Previous|Restart|Pause|Resume|Eject|Shuffle|Loop|Mute|UnMute|Volume Up|Volume Down|Display "
    "Controls|Add to PlayList";

std::string SaidOf(const std::string& category) { return category == "PlayList" ? "play list" : category; }

Texts Pairs(const Words& words, std::size_t count, std::mt19937& random) {
  const Texts first = Split(words.first);
  const Texts second = Split(words.second);
  const Texts last{"", "", " Live", " of Love", " Sessions"};
  const auto any = [&](const Texts& texts) { return texts[random() % texts.size()]; };
  std::set<std::string> names;
  while (names.size() < std::min(count, first.size() * second.size()))
    names.insert(any(first) + " " + any(second) + any(last));
  while (names.size() < count)
    names.insert(any(first) + " " + any(second) + " and the " + any(first) + " " + any(second));
  return {names.begin(), names.end()};
}

void Shuffle(Texts& texts, std::mt19937& random) {
  for (std::size_t i = texts.size(); i > 1; --i) std::swap(texts[i - 1], texts[random() % i]);
}

}  // namespace

Corpus CorpusOf(Which which, std::size_t albums, std::size_t sentences) {
  const Words& words = which == Which::kTuning ? kTuning : kHeldOut;
  std::mt19937 random(which == Which::kTuning ? 7 : 11);
  Corpus corpus;
  corpus.patterns.push_back("(Play|Player) [No] (" + std::string(kControls) + ")");
  const auto say = [&](const std::string& command, const std::string& said) {
    corpus.inside.push_back({.said = said, .command = command});
  };
  for (const std::string& word : Split(kControls)) {
    std::string said = word;
    if (word == "UnMute") said = "un mute";
    if (word == "Add to PlayList") said = "add to play list";
    say("Player " + word, "player " + said);
  }
  for (const char* word : {"Shuffle", "Loop", "Mute", "Display Controls"})
    say(std::string("Player No ") + word, std::string("player no ") + word);

  const auto add = [&](const std::string& category, Texts names, std::size_t said) {
    corpus.patterns.push_back("Play " + category + " " + Choice(names));
    Shuffle(names, random);
    names.resize(std::min(said, names.size()));
    for (const std::string& name : names)
      say("Play " + category + " " + name, "play " + SaidOf(category) + " " + name);
  };
  const Texts odd = Split(words.odd);
  Texts names = Pairs(words, albums - std::min(albums, odd.size()), random);
  std::vector<std::pair<std::string, std::string>> said;
  for (const std::string& each : odd)
    said.emplace_back(each.substr(0, each.find('=')), each.substr(each.find('=') + 1));
  Texts artists = Split(words.artists);
  for (const std::string& each : Pairs(words, albums / 2, random)) artists.push_back("The " + each + " Band");
  const std::size_t rest = sentences > 60 ? sentences - 60 : 10;
  Texts all = names;
  for (const auto& [name, spoken] : said) all.push_back(name);
  corpus.patterns.push_back("Play Album " + Choice(all));
  Shuffle(names, random);
  names.resize(std::min(rest / 2, names.size()));
  for (const std::string& name : names) say("Play Album " + name, "play album " + name);
  for (const auto& [name, spoken] : said) say("Play Album " + name, "play album " + spoken);
  add("Artist", artists, rest / 2);
  add("PlayList", Split(words.lists), 5);
  add("Genre", Split(words.genres), 5);
  corpus.inside.resize(std::min(corpus.inside.size(), sentences));
  for (const std::string& each : Split(words.outside)) corpus.outside.push_back({.said = each});
  return corpus;
}

}  // namespace bench
