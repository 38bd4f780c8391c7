#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "json/JsonParser.h"
#include "json/JsonPrinter.h"

namespace tunadm {
namespace {

std::string text(const jsObject* json) {
  std::string out;
  printJson(json, &out);
  return out;
}

TEST(JsonValue, KindsExcludeEachOther) {
  const ScopedJson all(parseJson(R"([null, true, 5, "s", [], {}])", -1));
  using Access = jsObject* (*)(jsObject*);
  const Access accesses[] = {asNull, asBoolean, asNumber, asString, asArray, asObject};
  for (std::size_t i = 0; i < 7; ++i) {
    jsObject* value = arrayAt(all.get(), i);  // in the end a null pointer
    for (std::size_t kind = 0; kind < 6; ++kind) {
      EXPECT_EQ(accesses[kind](value), i == kind ? value : nullptr) << i << kind;
    }
    EXPECT_EQ(numberValue(value), i == 2 ? 5.0 : 0.0);
    EXPECT_EQ(booleanValue(value), i == 1);
    EXPECT_STREQ(stringText(value), i == 3 ? "s" : "");
    EXPECT_EQ(arraySize(value) + objectSize(value), 0u);
  }
}

TEST(JsonValue, SharedInstancesOutliveTheirRelease) {
  for (int round = 0; round < 2; ++round) {  // the second one meets what the first has released
    for (const double n : {-1.0, 0.0, 1.0, 2.0}) EXPECT_EQ(makeNumber(n), makeNumber(n));
    EXPECT_EQ(makeString(static_cast<const char*>(nullptr)), makeString(""));
    const ScopedJson holders[] = {ScopedJson(makeNull()), ScopedJson(makeBoolean(true)),
                                  ScopedJson(makeNumber(-1)), ScopedJson(makeString(""))};
    const ScopedJson array(parseJson("[null, true, -1, \"\"]", -1));
    EXPECT_EQ(text(array.get()), "[ null, true, -1.000000, \"\" ]");
  }
}

TEST(JsonArray, Changes) {
  const ScopedJson array(parseJson(R"([[1], "x", 9])", -1));
  jsObject* a = array.get();
  setAt(a, 0, nullptr);               // replaces by null
  setAt(a, 1, arrayAt(a, 1));         // the same value again
  setAt(a, 3, makeString("end"));     // appends
  setAt(a, 5, makeString("beyond"));  // drops the value
  EXPECT_EQ(text(a), R"([ null, "x", 9, "end" ])");
  removeAt(a, 0);
  const ScopedJson first(takeAt(a, 0)), last(takeLast(a)), none(takeAt(a, 1));
  EXPECT_EQ(text(first.get()) + text(last.get()) + text(none.get()) + text(a), R"("x""end"[ 9 ])");
  removeAt(a, 0);
  EXPECT_EQ(takeLast(a), nullptr);
}

TEST(JsonObject, RemovalMovesTheLastMemberIntoTheGap) {
  const std::pair<const char*, const char*> cases[] = {{"a", R"({ "c":7, "b":6 } 5)"},
                                                       {"c", R"({ "a":5, "b":6 } 7)"},
                                                       {"x", R"({ "a":5, "b":6, "c":7 } )"},
                                                       {"", R"({ "a":5, "b":6, "c":7 } )"}};
  for (const auto& [name, left_and_detached] : cases) {
    const ScopedJson object(parseJson(R"({"a":5, "b":6, "c":7})", -1));
    const ScopedJson detached(detachMember(object.get(), name));
    EXPECT_EQ(text(object.get()) + " " + text(detached.get()), left_and_detached);
  }
}

TEST(JsonObject, SetMemberReplacesInPlaceAndDropsWhatHasNoName) {
  const ScopedJson object(parseJson(R"({"a":5, "b":6, "c":7, "d":8})", -1));
  jsObject* o = object.get();
  setMember(o, "b", memberValue(o, 1));  // the same value again
  setMember(o, "a", makeArray());
  setMember(o, "c", nullptr);  // removes it
  setMember(o, "", makeString("dropped"));
  setMember(o, std::string_view("a\0", 2), makeNull());
  EXPECT_EQ(text(o), std::string_view("{ \"a\":[ ], \"b\":6, \"d\":8, \"a\0\":null }", 36));
}

TEST(JsonObject, FindsNamesIgnoringTheCaseOfLetters) {
  const ScopedJson object(parseJson(R"({"a":1, "B":1, "b":1, "@":1, "`":1})", -1));
  const std::pair<const char*, int> cases[] = {{"A", 0}, {"b", 1}, {"`", 4}, {"", -1}, {"aB", -1}};
  for (const auto& [name, index] : cases) {
    EXPECT_EQ(findMemberIgnoringCase(object.get(), name), index) << name;
  }
  EXPECT_EQ(findMember(object.get(), "b"), 2);
}

// Without an index of the names this takes minutes, not a moment.
TEST(JsonObject, ManyMembersStayFoundWhileTheyComeAndGo) {
  constexpr int kCount = 100000;
  const ScopedJson object(makeObject());
  const auto name = [](int i) { return "member" + std::to_string(i); };
  for (int i = 0; i < kCount; ++i) setMember(object.get(), name(i), makeNumber(i));
  for (int i = 0; i < kCount; i += 3) setMember(object.get(), name(i), nullptr);
  for (int i = 0; i < kCount; i += 6) setMember(object.get(), name(i), makeNumber(i));
  for (int i = 0; i < kCount; ++i) {
    const ScopedJson value(detachMember(object.get(), name(i)));
    ASSERT_EQ(text(value.get()), i % 6 == 3 ? "" : std::to_string(i));
  }
  EXPECT_EQ(objectSize(object.get()), 0u);
}

TEST(JsonValue, DeepCopyIsApartButSharesTheSharedInstances) {
  ScopedJson source(parseJson(R"([null, true, 1, "", "own", {"z":3, "a":[4]}])", -1));
  const ScopedJson copy(deepCopy(source.get()));
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(arrayAt(copy.get(), i) == arrayAt(source.get(), i), i < 4) << i;
  }
  source.reset();
  EXPECT_EQ(text(copy.get()), R"([ null, true, 1, "", "own", { "z":3, "a":[ 4 ] } ])");
  EXPECT_EQ(deepCopy(nullptr), nullptr);
}

TEST(JsonValue, DepthDoesNotUseTheStack) {
  const std::string nested = std::string(1000000, '[') + std::string(1000000, ']');
  const ScopedJson tree(parseJson(nested.c_str(), -1));
  const ScopedJson copy(deepCopy(tree.get()));
  EXPECT_EQ(text(copy.get()).size(), 1000000u * 4 - 1);
}

TEST(ScopedPtr, ReleasesOnceWhatItStillHolds) {
  using Life = std::shared_ptr<int>;  // tells how many copies of it live
  const Life life = std::make_shared<int>();
  {
    ScopedPtr<Life> holder(new Life(life)), target(new Life(life));
    holder.reset(holder.get());
    target = std::move(holder);
    EXPECT_EQ(life.use_count(), 2);
  }
  EXPECT_EQ(life.use_count(), 1);
}

}  // namespace
}  // namespace tunadm
