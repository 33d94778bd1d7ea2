#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "bus/Message.hpp"
#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Array;
using base::Record;

/// A client that knows nothing of the system, only D-Bus.
class ForeignTypes : public testing::Test {
 protected:
  ForeignTypes() {
    sd_bus* raw = nullptr;
    EXPECT_LE(0, sd_bus_new(&raw));
    client.reset(raw);
    EXPECT_LE(0, sd_bus_set_address(raw, daemon.address().c_str()));
    EXPECT_LE(0, sd_bus_set_bus_client(raw, 1));
    EXPECT_LE(0, sd_bus_start(raw));
  }

  bus::Message newCall(const char* interface, const char* member) {
    sd_bus_message* message = nullptr;
    EXPECT_LE(0, sd_bus_message_new_method_call(client.get(), &message, peer.uniqueName().c_str(), "/seen",
                                                interface, member));
    return bus::Message(message);
  }

  /// Sends a call; its reply, or null with the error's name in `error`.
  bus::Message send(const bus::Message& message) {
    sd_bus_message* reply = nullptr;
    sd_bus_error failed = SD_BUS_ERROR_NULL;
    sd_bus_call(client.get(), message.get(), 0, &failed, &reply);
    error = bus::OrEmpty(failed.name);
    sd_bus_error_free(&failed);
    return bus::Message(reply);
  }

  /// What the object sees of an argument of the given D-Bus type.
  template <class... Arguments>
  Value seenAs(const char* type, Arguments... arguments) {
    const auto message = newCall("any.interface.text", "See");
    EXPECT_LE(0, sd_bus_message_append(message.get(), type, arguments...));
    send(message);
    EXPECT_EQ("", error);
    return seen;
  }

  support::BusDaemon daemon;
  Value seen;
  Value answer;
  std::string error;
  support::BusPeer peer{
      daemon.address(), [this](bus::Connection& connection, bus::PollLoop&) {
        connection.exportObject(
            "/seen", support::ObjectOf(
                         "Seen", {Command("See", {Any("value")}, [this](Args& args) { seen = args[0]; }),
                                  Operation("Tell", {}, Type::kAny, [this] { return answer; }),
                                  Operation("List", {}, Type::kTextList, [] { return Array{}; }),
                                  Operation("Anything", {}, Type::kArray, [] { return Array{}; }),
                                  Field(
                                      "Field", Type::kAny, [this] { return seen; },
                                      [this](const Value& value) { seen = value; }),
                                  ReadField("Dead", Type::kAny, []() -> Value { throw base::Failure(5); })}));
      }};
  bus::Bus client;
};

TEST_F(ForeignTypes, IntegersAreNarrowedToTheKindThatHoldsThem) {
  EXPECT_EQ(Value(std::int16_t{200}), seenAs("y", 200));
  EXPECT_EQ(Value(std::int16_t{-3}), seenAs("n", -3));
  EXPECT_EQ(Value(std::int16_t{300}), seenAs("q", 300));
  EXPECT_EQ(Value(std::int32_t{40000}), seenAs("q", 40000));
  EXPECT_EQ(Value(std::int32_t{7}), seenAs("i", 7));
  EXPECT_EQ(Value(std::int32_t{7}), seenAs("u", 7U));
  EXPECT_EQ(Value(4e9), seenAs("u", 4000000000U));
  EXPECT_EQ(Value(std::int32_t{-7}), seenAs("x", std::int64_t{-7}));
  EXPECT_EQ(Value(-1099511627776.0), seenAs("x", std::int64_t{-1099511627776}));
  EXPECT_EQ(Value(std::int32_t{7}), seenAs("t", std::uint64_t{7}));
  EXPECT_EQ(Value(1.25), seenAs("d", 1.25));
  EXPECT_EQ(Value(true), seenAs("b", 1));
}

TEST_F(ForeignTypes, TextsSignaturesAndVariantsAreTakenApart) {
  EXPECT_EQ(Value("ä"), seenAs("s", "ä"));
  EXPECT_EQ(Value(), seenAs("g", ""));
  EXPECT_EQ(Value("as"), seenAs("g", "as"));
  EXPECT_EQ(Value("in"), seenAs("v", "v", "s", "in"));
}

TEST_F(ForeignTypes, ArraysBecomeListsTextsAndRecords) {
  EXPECT_EQ((Value(Array{"a", "b"})), seenAs("as", 2, "a", "b"));
  EXPECT_EQ((Value(Array{1, 2})), seenAs("ai", 2, 1, 2));
  EXPECT_EQ((Value(Array{"a", true})), seenAs("av", 2, "s", "a", "b", 1));
  EXPECT_EQ(Value(std::string("\0b", 2)), seenAs("ay", 2, 0, 'b'));
  EXPECT_EQ((Value(Record{{"z", "1"}, {"a", "2"}})), seenAs("a{ss}", 2, "z", "1", "a", "2"));
  EXPECT_EQ((Value(Record{{"z", 1}})), seenAs("a{sv}", 1, "z", "i", 1));
}

TEST_F(ForeignTypes, ReferencesMeanTheSenderWhenTheyNameNobody) {
  EXPECT_EQ(Value(base::ObjectRef()), seenAs("(so)", "", "/"));
  EXPECT_EQ(Value(base::ObjectRef()), seenAs("o", "/"));
  const char* own = nullptr;
  ASSERT_LE(0, sd_bus_get_unique_name(client.get(), &own));
  EXPECT_EQ(own, bus::Connection::peerOf(base::Deref(seenAs("(so)", "", "/mine"))));
  EXPECT_EQ(own, bus::Connection::peerOf(base::Deref(seenAs("o", "/mine"))));
  EXPECT_EQ("org.example.Third",
            bus::Connection::peerOf(base::Deref(seenAs("(so)", "org.example.Third", "/x"))));
  const Value list = seenAs("a(so)", 2, "", "/", peer.uniqueName().c_str(), "/seen");
  ASSERT_EQ(2U, list.array().size());
  EXPECT_EQ(Value(base::ObjectRef()), list.array()[0]);
  EXPECT_EQ("", bus::Connection::peerOf(base::Deref(list.array()[1]))) << "the owner sees its own object";
}

TEST_F(ForeignTypes, AReferenceToNobodyInParticularIsAMismatch) {
  const auto message = newCall(nullptr, "See");
  ASSERT_LE(0, sd_bus_message_append(message.get(), "(so)", "no bus name", "/x"));
  EXPECT_FALSE(send(message));
  EXPECT_EQ("org.vantorix.Failure.N13", error);
}

TEST_F(ForeignTypes, AnEmptyResultIsAnEmptySignature) {
  const auto reply = send(newCall(nullptr, "Tell"));
  ASSERT_TRUE(reply);
  const char* text = nullptr;
  EXPECT_LT(0, sd_bus_message_read(reply.get(), "v", "g", &text));
  EXPECT_STREQ("", text);
}

TEST_F(ForeignTypes, AnEmptyTextListIsAListOfTexts) {
  const auto reply = send(newCall("org.vantorix.Seen", "List"));
  ASSERT_TRUE(reply);
  EXPECT_TRUE(sd_bus_message_has_signature(reply.get(), "as"));
}

TEST_F(ForeignTypes, AnEmptyListInAVariantIsAListOfTextsToo) {
  answer = Array{};
  auto reply = send(newCall(nullptr, "Tell"));
  ASSERT_TRUE(reply);
  EXPECT_LT(0, sd_bus_message_verify_type(reply.get(), 'v', "as"));
  answer = Array{Array{}, 1};
  reply = send(newCall(nullptr, "Tell"));
  ASSERT_TRUE(reply);
  ASSERT_LT(0, sd_bus_message_enter_container(reply.get(), 'v', "av"));
  ASSERT_LT(0, sd_bus_message_enter_container(reply.get(), 'a', "v"));
  EXPECT_LT(0, sd_bus_message_verify_type(reply.get(), 'v', "as"));
}

TEST_F(ForeignTypes, AListThatIsDeclaredAsOneOfAnythingStaysOne) {
  const auto reply = send(newCall(nullptr, "Anything"));
  ASSERT_TRUE(reply);
  EXPECT_TRUE(sd_bus_message_has_signature(reply.get(), "av"));
}

TEST_F(ForeignTypes, AnOperationWithoutResultRepliesNothing) {
  const auto message = newCall(nullptr, "See");
  ASSERT_LE(0, sd_bus_message_append(message.get(), "i", 1));
  const auto reply = send(message);
  ASSERT_TRUE(reply);
  EXPECT_TRUE(sd_bus_message_is_empty(reply.get()));
}

TEST_F(ForeignTypes, PropertiesAreFieldsUnderAnyInterfaceText) {
  for (const char* interface : {"", "org.vantorix.Seen", "what.ever"}) {
    const auto set = newCall("org.freedesktop.DBus.Properties", "Set");
    ASSERT_LE(0, sd_bus_message_append(set.get(), "ssv", interface, "Field", "s", interface));
    EXPECT_TRUE(send(set));
    const auto get = newCall("org.freedesktop.DBus.Properties", "Get");
    ASSERT_LE(0, sd_bus_message_append(get.get(), "ss", interface, "Field"));
    const auto reply = send(get);
    ASSERT_TRUE(reply);
    const char* text = nullptr;
    EXPECT_LT(0, sd_bus_message_read(reply.get(), "v", "s", &text));
    EXPECT_STREQ(interface, text);
  }
}

TEST_F(ForeignTypes, GetAllTellsTheFieldsThatCanBeRead) {
  const auto message = newCall("org.freedesktop.DBus.Properties", "GetAll");
  ASSERT_LE(0, sd_bus_message_append(message.get(), "s", ""));
  const auto reply = send(message);
  ASSERT_TRUE(reply);
  EXPECT_TRUE(sd_bus_message_has_signature(reply.get(), "a{sv}"));
  ASSERT_LT(0, sd_bus_message_enter_container(reply.get(), 'a', "{sv}"));
  ASSERT_LT(0, sd_bus_message_enter_container(reply.get(), 'e', "sv"));
  const char* key = nullptr;
  ASSERT_LT(0, sd_bus_message_read(reply.get(), "s", &key));
  EXPECT_STREQ("Field", key);
}

TEST_F(ForeignTypes, ThePeerInterfaceAnswers) {
  EXPECT_TRUE(send(newCall("org.freedesktop.DBus.Peer", "Ping"))) << error;
}

TEST_F(ForeignTypes, TextThatTheBusCannotCarryTravelsAsBytes) {
  answer = std::string("a\0b", 3);
  const auto reply = send(newCall(nullptr, "Tell"));
  ASSERT_TRUE(reply);
  ASSERT_LT(0, sd_bus_message_enter_container(reply.get(), 'v', "ay"));
  const void* data = nullptr;
  std::size_t size = 0;
  ASSERT_LE(0, sd_bus_message_read_array(reply.get(), 'y', &data, &size));
  EXPECT_EQ(std::string("a\0b", 3), std::string(static_cast<const char*>(data), size));
}

TEST_F(ForeignTypes, NegativeFailureNumbersAreMarkedWithM) {
  peer.run([](bus::Connection& connection, bus::PollLoop&) {
    connection.exportObject(
        "/seen", support::ObjectOf("Seen", {Command("See", {}, [] { throw base::Failure(-1072889802); })}));
  });
  EXPECT_FALSE(send(newCall(nullptr, "See")));
  EXPECT_EQ("org.vantorix.Failure.NM1072889802", error);
}

}  // namespace
