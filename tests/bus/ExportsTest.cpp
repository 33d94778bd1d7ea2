#include "bus/Exports.hpp"

#include <gtest/gtest.h>

#include "bus/Errors.hpp"
#include "bus/Introspection.hpp"
#include "support/BusPeer.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using support::FailureNumberOf;
using support::TableOf;

std::shared_ptr<TableOf> NewObject() { return support::ObjectOf("Any"); }

TEST(Exports, ASentObjectKeepsItsPathWhileAnyoneHoldsIt) {
  bus::Exports exports;
  const auto object = NewObject();
  const std::string path = exports.pathFor(object, ":1.1");
  EXPECT_EQ(path, exports.pathFor(object, ":1.2"));
  exports.release(path, ":1.1");
  EXPECT_EQ(object, exports.find(path));
  exports.release(path, ":1.1");  // more often than it was sent
  EXPECT_EQ(object, exports.find(path));
  exports.release(path, ":1.2");
  EXPECT_EQ(nullptr, exports.find(path));
  EXPECT_NE(path, exports.pathFor(object, ":1.1")) << "an old path never leads to another object";
}

TEST(Exports, AHolderThatGoesTakesAllItsReferences) {
  bus::Exports exports;
  const auto object = NewObject();
  const std::string path = exports.pathFor(object, ":1.1");
  exports.pathFor(object, ":1.1");
  exports.pathFor(NewObject(), ":1.2");
  exports.dropHolder(":1.1");
  EXPECT_EQ(nullptr, exports.find(path));
  EXPECT_EQ(1U, exports.size());
}

TEST(Exports, AnExportedObjectStaysAtItsPathUntilItIsWithdrawn) {
  bus::Exports exports;
  const auto object = NewObject();
  exports.add("/here", object);
  EXPECT_EQ("/here", exports.pathFor(object, ":1.1"));
  exports.release("/here", ":1.1");
  exports.dropHolder(":1.1");
  EXPECT_EQ(object, exports.find("/here"));
  exports.withdraw("/here");
  EXPECT_EQ(nullptr, exports.find("/here"));
}

TEST(Exports, OnlyWellFormedPathsAreServed) {
  bus::Exports exports;
  EXPECT_EQ(base::number::kInvalidArgument, FailureNumberOf([&] { exports.add("no/path", NewObject()); }));
  EXPECT_EQ(base::number::kObjectMissing, FailureNumberOf([&] { exports.add("/path", nullptr); }));
}

TEST(Errors, NumbersSurviveTheirErrorNames) {
  for (const std::int32_t number : {0, 1, -1, 35602, -1072889802, -2147483647 - 1, 2147483647})
    EXPECT_EQ(number, bus::FailureOf(bus::ErrorNameOf(number), "x").number());
}

TEST(Errors, OtherErrorsAreToldByNameAndText) {
  EXPECT_EQ(51, bus::FailureOf("org.example.Odd", "text").number());
  EXPECT_EQ("org.example.Odd: text", bus::FailureOf("org.example.Odd", "text").description());
  EXPECT_EQ(51, bus::FailureOf("org.vantorix.Failure.N99999999999", "").number());
  EXPECT_EQ(51, bus::FailureOf("org.vantorix.Failure.N1x", "").number());
  EXPECT_EQ(462, bus::FailureOf("org.freedesktop.DBus.Error.NoReply", "").number());
  EXPECT_EQ(438, bus::FailureOf("org.freedesktop.DBus.Error.UnknownProperty", "").number());
}

TEST(Introspection, NamesAndDefaultsSurviveTheText) {
  Param list = List("list");
  list.fallback = base::Array();
  const MemberTable table("Odd", {Command("Say", {InOut(Text("text", "<\"&\">")), list}, [] {})});
  const auto node = bus::ParseNode(bus::DescribeNode(&table, {"child"}));
  const auto* say = node.findMethod("SAY");
  ASSERT_NE(nullptr, say);
  EXPECT_EQ("<\"&\">", say->arguments[0].fallback);
  EXPECT_EQ("", say->arguments[1].fallback);
  EXPECT_FALSE(bus::ShapeOf(*say).result);
  EXPECT_EQ(std::vector<std::size_t>{0}, bus::ShapeOf(*say).inOut);
  EXPECT_EQ(std::vector<std::string>{"child"}, node.children);
}

TEST(Introspection, AnInterfaceWithinAMethodHasNothingOfTheMethod) {
  const auto node = bus::ParseNode(
      "<node><interface name='a'><method name='m'><interface name='b'><arg name='x' type='s'/></interface>"
      "</method></interface></node>");
  ASSERT_EQ(2U, node.interfaces.size());
  EXPECT_TRUE(node.interfaces[0].methods[0].arguments.empty());
  EXPECT_TRUE(node.interfaces[1].methods.empty());
}

TEST(Introspection, WhatIsNoXmlIsAFailure) {
  EXPECT_EQ(base::number::kInternal, FailureNumberOf([] { bus::ParseNode("<node>"); }));
}

}  // namespace
