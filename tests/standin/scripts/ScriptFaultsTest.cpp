// Processes of scripts that are no longer the house's: what comes from there is trusted in nothing.
#include <csignal>

#include "scripting/Messages.hpp"
#include "scripting/ScriptHouse.hpp"
#include "standin/scripts/ScriptStage.hpp"

namespace {

using scripting::MessageKind;
using standin::ScriptLimits;
using standin::ScriptRunner;
using testing::HasSubstr;
using testing::StartsWith;

constexpr ScriptLimits kPatient{.computing = std::chrono::minutes(10), .whole = std::chrono::hours(1)};
constexpr const char* kNonsense = "the script was ended: its process talks nonsense";

class ScriptFaults : public support::ScriptStage {
 protected:
  /// What a script is said to have ended with whose process does that instead.
  std::string errorOfShell(const std::string& does) {
    const std::filesystem::path program = folder.path() / "program";
    std::ofstream(program) << "#!/bin/sh\n" << does << "\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    return errorOf(runnerWith(kPatient, program), "");
  }
  std::string errorOfBytes(const std::string& bytes) {
    std::ofstream(folder.path() / "bytes") << bytes;
    return errorOfShell("/bin/cat '" + (folder.path() / "bytes").string() + "'; exec /bin/sleep 1000");
  }
  static std::string print(const std::string& text) { return scripting::Framed(MessageKind::kPrint, text); }
  static std::string ask(const scripting::Ask& ask) {
    return scripting::Framed(ask.kind, scripting::Encoded(ask));
  }
};

TEST_F(ScriptFaults, AProcessKilledInTheMidstOfACallIsTold) {
  for (const char* text : {"print('on') house.sleep(3600)", "print('on') while true do end"}) {
    ScriptRunner& runner = runnerWith(kPatient);
    ASSERT_EQ(runner.start("test", text), "");
    ASSERT_TRUE(eventually([&] { return !runner.report(0)->output.empty(); }));
    ::kill(runner.process(), SIGKILL);
    ASSERT_TRUE(ends(runner));
    EXPECT_EQ(runner.report(0)->outcome.error, "the script was ended: Killed (signal 9)");
    EXPECT_EQ(runner.report(0)->output, "on\n");
    EXPECT_EQ(errorOf(runner, ""), "") << "the next one runs";
  }
}

TEST_F(ScriptFaults, WhatAKilledScriptHasAskedForIsDoneAndAnsweredToNobody) {
  ScriptRunner& runner = runnerWith(kPatient);
  host->does["Last"] = [&](base::Args&) {
    ::kill(runner.process(), SIGKILL);
    EXPECT_TRUE(ends(runner));
    return base::Value("nobody hears it");
  };
  ASSERT_EQ(runner.start("test", "house.call(host, 'Last') house.call(host, 'Never')"), "");
  ASSERT_TRUE(ends(runner));
  EXPECT_THAT(host->calls, testing::ElementsAre("Last"));
  EXPECT_THAT(runner.report(0)->outcome.error, HasSubstr("signal 9"));
}

TEST_F(ScriptFaults, AProgramThatIsMissingIsTold) {
  EXPECT_THAT(errorOf(runnerWith(kPatient, folder.path() / "none"), ""),
              testing::AllOf(StartsWith("the script was ended: "), HasSubstr("No such file")));
}

TEST_F(ScriptFaults, WhatItComplainsOfIsTold) {
  EXPECT_EQ(errorOfShell("echo out of memory >&2; exit 1"), "the script was ended: out of memory");
  EXPECT_EQ(errorOfShell("exit 3"), "the script was ended: It has ended");
  EXPECT_THAT(errorOfShell("head -c 5000000 /dev/zero | tr '\\000' x >&2; exit 1"), testing::SizeIs(522));
}

TEST_F(ScriptFaults, OneThatTalksNonsenseIsEnded) {
  EXPECT_EQ(errorOfShell("exec /bin/cat /dev/urandom"), kNonsense);
  EXPECT_EQ(errorOfShell("exec /usr/bin/yes"), kNonsense);
  EXPECT_EQ(errorOfBytes(scripting::Framed(MessageKind::kRun, "")), kNonsense) << "the server's own word";
  EXPECT_EQ(errorOfBytes(scripting::Framed(MessageKind::kAnswer, "")), kNonsense);
  EXPECT_EQ(errorOfBytes(scripting::Framed(MessageKind::kCall, "what?")), kNonsense);
  EXPECT_EQ(errorOfBytes(scripting::Framed(MessageKind::kEnded, "what?")), kNonsense);
  EXPECT_EQ(errorOfBytes(std::string("\5\0\0\0\0\0\0\5", 8)), kNonsense) << "the head of what is too long";
  EXPECT_EQ(errorOfBytes(print(std::string(std::size_t{300} << 10U, 'x'))), kNonsense) << "more than is kept";
}

TEST_F(ScriptFaults, OneThatDoesNotWaitForItsAnswerIsEnded) {
  const scripting::Ask sleep{.kind = MessageKind::kSleep, .args = {3600.0}};
  EXPECT_EQ(errorOfBytes(ask(sleep) + ask(sleep)), kNonsense);
  EXPECT_EQ(errorOfBytes(ask(sleep) + print("x")), kNonsense);
}

TEST_F(ScriptFaults, AnObjectThatNobodyHasGivenItIsNone) {
  bool none = false;
  host->does["Take"] = [&](base::Args& args) {
    none = base::ToObject(args.at(0)) == nullptr;
    return base::Value();
  };
  const base::Value foreign(std::make_shared<scripting::ScriptHandle>(77));
  const std::string asked = ask({MessageKind::kCall, scripting::kHostHandle, "Take", {foreign}});
  EXPECT_EQ(errorOfBytes(asked + scripting::Framed(MessageKind::kEnded, "")), kNonsense);
  EXPECT_THAT(host->calls, testing::ElementsAre()) << "it didn't wait for the answer";
  std::ofstream(folder.path() / "bytes") << asked;
  // 36 bytes tell it of its script, 9 answer it.
  EXPECT_EQ(errorOfShell("/bin/cat '" + (folder.path() / "bytes").string() +
                         "'; /usr/bin/head -c 45 >/dev/null; exit 0"),
            "the script was ended: It has ended");
  EXPECT_THAT(host->calls, testing::ElementsAre("Take"));
  EXPECT_TRUE(none);
}

}  // namespace
