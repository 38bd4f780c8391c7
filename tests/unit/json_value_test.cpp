#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "json/JsonPrinter.h"
#include "json/JsonValue.h"
#include "json/ScopedJson.h"

namespace tunadm {
namespace {

std::string text(const ScopedJson& json) {
  std::string out;
  printJson(json.get(), &out);
  return out;
}

// Member names one after the other, each with a fresh number as its value.
jsObject* objectOf(std::string_view names) {
  jsObject* object = makeObject();
  for (const char& name : names) setMember(object, std::string_view(&name, 1), makeNumber(name));
  return object;
}

std::string namesOf(const jsObject* object) {
  std::string names;
  for (std::size_t i = 0; i < objectSize(object); ++i) {
    names += memberName(object, i);
    // Each value has to follow its name wherever it moves.
    if (numberValue(memberValue(object, i)) != names.back()) names += '!';
  }
  return names;
}

jsObject* deepTree(int depth) {
  jsObject* tree = makeNumber(7);
  for (int level = 0; level < depth; ++level) {
    jsObject* outer = level % 2 == 0 ? makeArray() : makeObject();
    if (level % 2 == 0) appendValue(outer, tree);
    if (level % 2 != 0) setMember(outer, "m", tree);
    tree = outer;
  }
  return tree;
}

TEST(JsonValue, KindsExcludeEachOther) {
  const ScopedJson number(makeNumber(5)), string(makeString("s")), array(makeArray()),
      object(makeObject());
  jsObject* values[] = {nullptr,      makeNull(),  makeBoolean(true), number.get(),
                        string.get(), array.get(), object.get()};
  using KindTest = bool (*)(const jsObject*);
  using Access = jsObject* (*)(jsObject*);
  const KindTest tests[] = {isNull, isBoolean, isNumber, isString, isArray, isObject};
  const Access accesses[] = {asNull, asBoolean, asNumber, asString, asArray, asObject};
  for (std::size_t value = 0; value < 7; ++value) {
    for (std::size_t kind = 0; kind < 6; ++kind) {
      EXPECT_EQ(tests[kind](values[value]), value == kind + 1) << value << kind;
      EXPECT_EQ(accesses[kind](values[value]), value == kind + 1 ? values[value] : nullptr);
    }
    const double expected_number = value == 3 ? 5 : 0;
    EXPECT_EQ(numberValue(values[value]), expected_number);
    EXPECT_EQ(booleanValue(values[value]), value == 2);
    EXPECT_STREQ(stringText(values[value]), value == 4 ? "s" : "");
  }
}

TEST(JsonValue, SharedInstancesOutliveTheirRelease) {
  const char* no_text = nullptr;
  EXPECT_NE(makeBoolean(true), makeBoolean(false));
  for (int round = 0; round < 2; ++round) {  // the second one meets what the first has released
    for (const double number : {-1.0, 0.0, 1.0, 2.0}) {
      EXPECT_EQ(makeNumber(number), makeNumber(number));
      EXPECT_EQ(numberValue(makeNumber(number)), number);
    }
    EXPECT_EQ(makeString(no_text), makeString(""));
    jsObject* shared[] = {makeNull(),     makeBoolean(true), makeBoolean(false),
                          makeNumber(-1), makeNumber(2),     makeString(std::string_view())};
    ScopedJson array(makeArray());
    for (jsObject* value : shared) appendValue(array.get(), value);
    EXPECT_EQ(text(array), "[ null, true, false, -1.000000, 2, \"\" ]");
    for (jsObject* value : shared) releaseJson(value);
  }
  for (const double number : {3.0, -2.0, static_cast<double>(NAN)}) {
    const ScopedJson one(makeNumber(number)), other(makeNumber(number));
    EXPECT_NE(one.get(), other.get()) << number;
  }
  releaseJson(nullptr);
}

TEST(JsonValue, StringsKeepEveryByte) {
  const std::string_view bytes("a\0\xff", 3);
  const ScopedJson json(makeString(bytes));
  EXPECT_EQ(stringView(json.get()), bytes);
  EXPECT_STREQ(stringText(json.get()), "a");
}

TEST(JsonArray, Changes) {
  ScopedJson array(makeArray());
  jsObject* a = array.get();
  appendValue(a, nullptr);
  EXPECT_EQ(arrayAt(a, 0), makeNull());
  setStringMember(appendObject(a), "k", "v");
  EXPECT_EQ(appendNull(a), makeNull());
  EXPECT_EQ(appendBoolean(a, true), makeBoolean(true));
  EXPECT_EQ(numberValue(appendNumber(a, 9)), 9);
  EXPECT_STREQ(stringText(appendString(a, "x")), "x");
  EXPECT_EQ(text(array), R"([ null, { "k":"v" }, null, true, 9, "x" ])");

  setAt(a, 0, makeNumber(4));         // replaces
  setAt(a, 1, nullptr);               // replaces by null
  setAt(a, 4, arrayAt(a, 4));         // the same value again
  setAt(a, 6, makeString("end"));     // appends
  setAt(a, 8, makeString("beyond"));  // drops the value
  EXPECT_EQ(arrayAt(a, 1), makeNull());
  EXPECT_EQ(text(array), R"([ 4, null, null, true, 9, "x", "end" ])");

  const ScopedJson first(takeAt(a, 0)), last(takeLast(a));
  EXPECT_EQ(text(first) + text(last), "4\"end\"");
  removeAt(a, 3);
  removeAt(a, 4);
  EXPECT_EQ(takeAt(a, 4), nullptr);
  EXPECT_EQ(arrayAt(a, 4), nullptr);
  EXPECT_EQ(text(array), R"([ null, null, true, "x" ])");
  while (arraySize(a) > 0) removeAt(a, 0);
  EXPECT_EQ(takeLast(a), nullptr);
}

TEST(JsonObject, RemovalMovesTheLastMemberIntoTheGap) {
  const struct {
    const char *names, *removed, *left;
  } cases[] = {{"abc", "a", "cb"},  {"abc", "c", "ab"}, {"a", "a", ""},
               {"abc", "x", "abc"}, {"abc", "", "abc"}, {"abc", "A", "abc"}};
  for (const auto& c : cases) {
    const ScopedJson one(objectOf(c.names)), other(objectOf(c.names));
    setMember(one.get(), c.removed, nullptr);
    EXPECT_EQ(namesOf(one.get()), c.left);
    const ScopedJson detached(detachMember(other.get(), c.removed));
    EXPECT_EQ(namesOf(other.get()), c.left);
    EXPECT_EQ(numberValue(detached.get()), c.names == std::string_view(c.left) ? 0 : *c.removed);
  }
}

TEST(JsonObject, SetMemberReplacesInPlaceAndDropsWhatHasNoName) {
  const ScopedJson object(objectOf("abc"));
  jsObject* o = object.get();
  setMember(o, "b", memberValue(o, 1));  // the same value again
  EXPECT_EQ(namesOf(o), "abc");
  setMember(o, "b", makeArray());
  setMember(o, "", makeString("dropped"));
  EXPECT_EQ(setStringMember(o, "", "dropped"), nullptr);
  EXPECT_EQ(setStringMember(o, "c", static_cast<const char*>(nullptr)), makeString(""));
  setMember(o, std::string_view("c\0", 2), makeNull());
  EXPECT_EQ(text(object),
            std::string_view("{ \"a\":97, \"b\":[ ], \"c\":\"\", \"c\0\":null }", 38));
  EXPECT_EQ(memberName(o, 4), "");
  EXPECT_EQ(memberValue(o, 4), nullptr);
}

TEST(JsonObject, FindsNames) {
  const ScopedJson object(objectOf("aBb@`"));
  const struct {
    const char* name;
    std::ptrdiff_t exact, loose;
  } cases[] = {{"a", 0, 0}, {"A", -1, 0}, {"b", 2, 1},  {"B", 1, 1},
               {"`", 4, 4}, {"@", 3, 3},  {"", -1, -1}, {"aB", -1, -1}};
  for (const auto& c : cases) {
    EXPECT_EQ(findMember(object.get(), c.name), c.exact) << c.name;
    EXPECT_EQ(findMemberIgnoringCase(object.get(), c.name), c.loose) << c.name;
  }
}

TEST(JsonValue, OtherKindsAndNullAreLeftAlone) {
  const ScopedJson object(makeObject()), array(makeArray());
  for (jsObject* wrong : {static_cast<jsObject*>(nullptr), makeNull(), object.get()}) {
    EXPECT_EQ(arraySize(wrong), 0u);
    EXPECT_EQ(appendObject(wrong), nullptr);
    setAt(wrong, 0, makeString("dropped"));
    EXPECT_EQ(takeLast(wrong), nullptr);
  }
  for (jsObject* wrong : {static_cast<jsObject*>(nullptr), makeNull(), array.get()}) {
    EXPECT_EQ(objectSize(wrong), 0u);
    EXPECT_EQ(setStringMember(wrong, "a", "dropped"), nullptr);
    EXPECT_EQ(findMember(wrong, "a") + findMemberIgnoringCase(wrong, "a"), -2);
    EXPECT_EQ(detachMember(wrong, "a"), nullptr);
  }
  EXPECT_EQ(text(object) + text(array), "{ }[ ]");
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
    const std::ptrdiff_t index = findMember(object.get(), name(i));
    ASSERT_EQ(index == -1, i % 6 == 3) << i;
    if (index == -1) continue;
    ASSERT_EQ(memberName(object.get(), static_cast<std::size_t>(index)), name(i));
    ASSERT_EQ(numberValue(memberValue(object.get(), static_cast<std::size_t>(index))), i);
  }
  const ScopedJson copy(deepCopy(object.get()));
  EXPECT_EQ(objectSize(copy.get()), 83333u);
  EXPECT_EQ(text(copy), text(object));
  for (int i = 0; i < kCount; ++i) setMember(copy.get(), name(i), nullptr);
  for (int i = 0; i < kCount; ++i) ASSERT_EQ(findMember(copy.get(), name(i)), -1) << i;
}

TEST(JsonValue, DeepCopyIsApartButSharesTheSharedInstances) {
  ScopedJson source(makeArray());
  appendValue(source.get(), objectOf("zax"));
  setMember(arrayAt(source.get(), 0), "z", nullptr);
  for (jsObject* shared : {makeNull(), makeBoolean(true), makeNumber(1), makeString("")}) {
    appendValue(source.get(), shared);
  }
  appendString(source.get(), "own");
  appendValue(source.get(), objectOf("y"));
  const ScopedJson copy(deepCopy(source.get()));
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(arrayAt(copy.get(), i) == arrayAt(source.get(), i), i >= 1 && i <= 4) << i;
  }
  source.reset();
  EXPECT_EQ(text(copy), R"([ { "x":120, "a":97 }, null, true, 1, "", "own", { "y":121 } ])");
  EXPECT_EQ(deepCopy(nullptr), nullptr);
}

TEST(JsonValue, DepthDoesNotUseTheStack) {
  const ScopedJson tree(deepTree(1000000));
  const ScopedJson copy(deepCopy(tree.get()));
  EXPECT_EQ(text(copy).size(), 500000u * (4 + 8) + 1);
}

class Counted {
 public:
  explicit Counted(int* deaths) : deaths_(deaths) {}
  virtual ~Counted() { ++*deaths_; }

 private:
  int* deaths_;
};

TEST(ScopedPtr, ReleasesOnceWhatItStillHolds) {
  int deaths = 0;
  {
    ScopedPtr<Counted> holder(new Counted(&deaths));
    holder.reset(holder.get());
    EXPECT_EQ(deaths, 0);
    holder.reset(new Counted(&deaths));
    EXPECT_EQ(deaths, 1);
    ScopedPtr<Counted> moved(std::move(holder));
    ScopedPtr<Counted> assigned(new Counted(&deaths));
    assigned = std::move(moved);
    EXPECT_EQ(deaths, 2);
    const ScopedPtr<Counted> taken(assigned.take());
    EXPECT_FALSE(assigned);
    EXPECT_TRUE(taken);
  }
  EXPECT_EQ(deaths, 3);
}

}  // namespace
}  // namespace tunadm
