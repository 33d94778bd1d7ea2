#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "vxcall/Arguments.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Array;
using base::Record;
using testing::HasSubstr;

struct Outcome {
  int code = -1;
  std::string out;
  std::string err;
};

class Vxcall : public testing::Test {
 protected:
  [[nodiscard]] Outcome run(const std::string& words) const {
    return runPlain("--bus '" + daemon.address() + "' " + words);
  }

  [[nodiscard]] Outcome runPlain(const std::string& words, const std::string& environment = {}) const {
    const auto errors = (daemon.folder() / "errors").string();
    const std::string command = environment + " '" VXCALL_PROGRAM "' " + words + " 2>'" + errors + "'";
    Outcome outcome;
    FILE* pipe = ::popen(command.c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) outcome.out += static_cast<char>(c);
    const int status = ::pclose(pipe);
    outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::stringstream text;
    text << std::ifstream(errors).rdbuf();
    outcome.err = text.str();
    return outcome;
  }

  /// What the object's handlers have left behind.
  Value seenNow() {
    Value now;
    peer.run([&](bus::Connection&, bus::PollLoop&) { now = seen; });
    return now;
  }

  support::BusDaemon daemon;
  Value seen;  // belongs to the peer's thread
  support::BusPeer peer{daemon.address(), [this](bus::Connection& connection, bus::PollLoop&) {
                          connection.exportObject("/host", support::ObjectOf("Host", members()));
                          connection.claimName("org.vantorix.Host");
                        }};

 private:
  base::ObjectRef player() {
    const auto inner = support::ObjectOf("Inner", {Constant("Say", Type::kText, "deep")});
    return support::ObjectOf("Player", {Field(
                                            "volume", Type::kInt16, [] { return 1; },
                                            [this](const Value& value) { seen = value; }),
                                        Constant("inner", Type::kObject, inner)});
  }

  std::vector<Member> members() {
    return {
        Operation("Play", {Text("category"), Text("name", "all")}, Type::kText,
                  [](Args& args) { return TextAt(args, 0) + "/" + TextAt(args, 1); }),
        Operation("List", {}, Type::kTextList,
                  [] {
                    return Array{"one", "two"};
                  }),
        Operation("Info", {}, Type::kRecord,
                  [] {
                    return Record{{"Title", "Blue"}, {"Length", 3}};
                  }),
        Operation("Raw", {}, Type::kText, [] { return std::string("a\0b", 3); }),
        Operation("Count", {InOut(Number("counter"))}, Type::kText,
                  [](Args& args) {
                    args[0] = NumberAt(args, 0) + 1;
                    return "counted";
                  }),
        Command("See", {Any("value")}, [this](Args& args) { seen = args[0]; }),
        Operation("Typed", {Flag("flag"), {"number", Type::kDouble}}, Type::kText,
                  [](Args& args) { return TextAt(args, 0) + TextAt(args, 1); }),
        Command("Fail", {}, [] { throw base::Failure(35601, "no such node"); }),
        Operation("Self", {}, Type::kObject, [] { return support::ObjectOf("Part"); }),
        ReadField("Player", Type::kObject, [this] { return player(); }),
        ReadField("Gone", Type::kObject, [] { return base::ObjectRef(); }),
        Field(
            "Volume", Type::kInt16, [this] { return seen; }, [this](const Value& value) { seen = value; }),
        ReadField("Version", Type::kText, [] { return "1"; }),
    };
  }
};

TEST_F(Vxcall, AResultIsPrintedAsItIs) {
  EXPECT_EQ("Album/Blue Train\n", run("host Play Album 'Blue Train'").out);
  EXPECT_EQ("Album/all\n", run("HOST play Album").out);
  EXPECT_EQ("Album/all\n", run("org.vantorix.Host:/host Play Album").out);
  EXPECT_EQ("Album/all\n", run(peer.uniqueName() + ":/host Play Album").out);
  EXPECT_EQ(std::string("a\0b\n", 4), run("host Raw").out);
}

TEST_F(Vxcall, ListsAndRecordsArePrintedLineByLine) {
  EXPECT_EQ("one\ntwo\n", run("host List").out);
  EXPECT_EQ("Title: Blue\nLength: 3\n", run("host Info").out);
}

TEST_F(Vxcall, InOutArgumentsFollowTheResult) { EXPECT_EQ("counted\n8\n", run("host Count 7").out); }

TEST_F(Vxcall, AnObjectIsPrintedAsNameAndPath) {
  EXPECT_EQ("(" + peer.uniqueName() + " /objects/1)\n", run("host Self").out);
}

TEST_F(Vxcall, AnObjectBehindFieldsIsReachedInOneCall) {
  EXPECT_EQ("1\n", run("host.Player --get volume").out);
  EXPECT_EQ("", run("host.Player --put volume 7").err);
  EXPECT_EQ(base::ToInt16(seenNow()), 7);
  EXPECT_EQ("deep\n", run("org.vantorix.Host:/host.Player.inner Say").out);
  EXPECT_THAT(run("host.Player --list").out, HasSubstr("volume: int16"));
}

TEST_F(Vxcall, AWayThatEndsEarlySaysWhere) {
  const Outcome gone = run("host.Gone --get volume");
  EXPECT_EQ(1, gone.code);
  EXPECT_THAT(gone.err, HasSubstr("Gone is nothing"));
  EXPECT_EQ(1, run("host.Nowhere --get volume").code);
  EXPECT_EQ(1, run("host.Version --get volume").code);
  EXPECT_EQ(2, run("host..Player --get volume").code);
  EXPECT_EQ(2, run("host. --get volume").code);
}

TEST_F(Vxcall, ArgumentsTakeTheKindOfTheirPrefix) {
  const std::vector<std::pair<std::string, Value>> words{
      {"plain", "plain"},       {"s:b:true", "b:true"}, {"b:true", true}, {"n:-5", std::int16_t{-5}},
      {"i:70000", 70000},       {"d:1.5", 1.5},         {"e:", Value()},  {"''", ""},
      {"http://x", "http://x"},
  };
  for (const auto& [word, value] : words) {
    const auto outcome = run("host See " + word);
    EXPECT_EQ(0, outcome.code) << outcome.err;
    EXPECT_EQ("", outcome.out) << "empty prints nothing";
    EXPECT_EQ(value, seenNow()) << word;
  }
}

TEST_F(Vxcall, AnObjectOfTheTargetCanBeAnArgument) {
  EXPECT_EQ(0, run("host See o:/host").code);
  EXPECT_EQ("", bus::Connection::peerOf(base::Deref(seenNow()))) << "the target sees its own object";
  peer.run([&](bus::Connection&, bus::PollLoop&) { seen = Value(); });  // the object would hold itself
}

TEST_F(Vxcall, PlainArgumentsAreConvertedAsTheOperationDeclares) {
  EXPECT_EQ("True2.5\n", run("host Typed true 2.5").out);
  const auto wrong = run("host Typed true much");
  EXPECT_EQ(2, wrong.code);
  EXPECT_THAT(wrong.err, HasSubstr("'much'"));
}

TEST_F(Vxcall, FieldsAreReadAndWritten) {
  EXPECT_EQ(0, run("host --put Volume 30").code);
  EXPECT_EQ(Value(std::int16_t{30}), seenNow());
  EXPECT_EQ("30\n", run("host --get volume").out);
}

TEST_F(Vxcall, MembersAreListedWithTypesAndArgumentNames) {
  const auto outcome = run("host --list");
  EXPECT_THAT(outcome.out, HasSubstr("Play(category: text, name: text = \"all\"): text\n"));
  EXPECT_THAT(outcome.out, HasSubstr("Count(inout counter: int32): text\n"));
  EXPECT_THAT(outcome.out, HasSubstr("See(value: any)\n"));
  EXPECT_THAT(outcome.out, HasSubstr("Volume: int16\n"));
  EXPECT_THAT(outcome.out, HasSubstr("Version: text (read only)\n"));
}

TEST_F(Vxcall, AFailureIsPrintedWithItsNumberAndEndsWith1) {
  const auto outcome = run("host Fail");
  EXPECT_EQ(1, outcome.code);
  EXPECT_EQ("", outcome.out);
  EXPECT_EQ("failure 35601: no such node\n", outcome.err);
  EXPECT_THAT(run("host Nothing").err, HasSubstr("failure 438"));
}

TEST_F(Vxcall, WrongUsageEndsWith2) {
  for (const auto* words : {"", "host", "nowhere Play", "host --get", "host --put Volume", "host --shout x",
                            "host --list more", "host See n:many", "'bad name:/x' Play"}) {
    const auto outcome = run(words);
    EXPECT_EQ(2, outcome.code) << words;
    EXPECT_THAT(outcome.err, HasSubstr("--help")) << words;
  }
}

TEST_F(Vxcall, NobodyThereEndsWith3) {
  EXPECT_EQ(3, run("vxif Command").code);
  EXPECT_THAT(run("vxif Command").err, HasSubstr("org.vantorix.vxif_WMP9 isn't running"));
  EXPECT_THAT(run("callback Any").err, HasSubstr("has no object /callback"));
  EXPECT_EQ(3, run("callback Any").code);
  const auto outcome = runPlain("--bus unix:path=/nowhere host Play x");
  EXPECT_EQ(3, outcome.code);
  EXPECT_THAT(outcome.err, HasSubstr("no message bus"));
}

TEST_F(Vxcall, TheBusIsFoundByVariableThenByTheHousesSocketThenBySession) {
  const std::string folder = (daemon.folder() / "run, with ä").string();
  const std::string nowhere = "unix:path=/nowhere";
  EXPECT_EQ(0, runPlain("host List", "VANTORIX_BUS='" + daemon.address() +
                                         "' XDG_RUNTIME_DIR=/nowhere "
                                         "DBUS_SESSION_BUS_ADDRESS=" +
                                         nowhere)
                   .code);
  const std::string session =
      "VANTORIX_BUS= XDG_RUNTIME_DIR='" + folder + "' DBUS_SESSION_BUS_ADDRESS='" + daemon.address() + "'";
  EXPECT_EQ(0, runPlain("host List", session).code);
  std::filesystem::create_directories(folder + "/vantorix");
  std::filesystem::create_symlink(daemon.folder() / "socket", folder + "/vantorix/bus");
  EXPECT_EQ(0, runPlain("host List",
                        "VANTORIX_BUS= XDG_RUNTIME_DIR='" + folder + "' DBUS_SESSION_BUS_ADDRESS=" + nowhere)
                   .code);
}

TEST_F(Vxcall, HelpAndVersionNeedNoBus) {
  EXPECT_THAT(runPlain("--help").out, HasSubstr("vxcall [--bus ADDRESS] TARGET OPERATION"));
  EXPECT_EQ(0, runPlain("--help").code);
  EXPECT_EQ("vxcall " VANTORIX_VERSION "\n", runPlain("--version").out);
}

TEST(VxcallArguments, AnObjectMayBeNamedWithItsProcess) {
  std::string asked;
  const vxcall::ObjectMaker objects = [&](const std::string& name, const std::string& path) {
    asked = name + " " + path;
    return base::ObjectRef();
  };
  vxcall::ParseValue("o::1.7:/objects/3", "", objects);
  EXPECT_EQ(":1.7 /objects/3", asked);
  vxcall::ParseValue("o:/objects/3", "", objects);
  EXPECT_EQ(" /objects/3", asked);
}

TEST(VxcallArguments, LinesOfATextBecomeAListWhereOneIsDeclared) {
  EXPECT_EQ((Value(Array{"a", "b"})), vxcall::ParseValue("a\nb", "as", {}));
}

}  // namespace
