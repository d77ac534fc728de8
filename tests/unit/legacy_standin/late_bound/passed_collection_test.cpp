#include "legacy_standin/late_bound/passed_collection.h"

#include <gtest/gtest.h>

#include "seams/automation_error.h"

namespace parvex::standin {
namespace {

using automation::Argument;
using automation::KeyedItems;
using automation::Object;
using automation::Value;

// A collection of one item, as it looks through late binding.
class OutsideCollection : public Object {
 public:
  std::string Name() const override { return "collection"; }
  Value Get(std::string_view member) override {
    EXPECT_EQ(member, "Count");
    return std::int32_t{1};
  }
  void Put(std::string_view, const Value&) override { FAIL(); }
  Value Call(std::string_view member, std::span<Argument> arguments) override {
    EXPECT_EQ(member, "Item");
    if (arguments[0].value == Value(std::int32_t{1}) || arguments[0].value == Value(std::string("tags"))) {
      return std::string("the tags");
    }
    throw MakeRuntimeError(RuntimeError::InvalidCall, "no such item");
  }
};

class PlainObject : public OutsideCollection {
 public:
  Value Get(std::string_view member) override {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "no member " + std::string(member));
  }
};

TEST(PassedCollectionTest, OneOfTheSameProcessIsAskedByNumberAndKey) {
  const auto items = std::make_shared<KeyedItems>();
  items->emplace_back("tags", Argument{std::string("the tags")});
  const auto collection = PassedCollection::From(items);
  ASSERT_TRUE(collection);
  EXPECT_EQ(collection->Count(), 1u);
  EXPECT_EQ(collection->At(1), Value(std::string("the tags")));
  EXPECT_EQ(collection->KeyAt(1), "tags");
  EXPECT_EQ(collection->Find("TAGS"), Value(std::string("the tags")));
  EXPECT_EQ(collection->Find("other"), std::nullopt);
}

TEST(PassedCollectionTest, OneBehindLateBindingIsAskedByNumberAndKeyAndCannotListItsKeys) {
  const auto collection = PassedCollection::From(std::make_shared<OutsideCollection>());
  ASSERT_TRUE(collection);
  EXPECT_EQ(collection->Count(), 1u);
  EXPECT_EQ(collection->At(1), Value(std::string("the tags")));
  EXPECT_EQ(collection->KeyAt(1), std::nullopt);
  EXPECT_EQ(collection->Find("tags"), Value(std::string("the tags")));
  EXPECT_EQ(collection->Find("other"), std::nullopt);
}

TEST(PassedCollectionTest, AnObjectWithoutCountATextAndNothingAreNone) {
  EXPECT_FALSE(PassedCollection::From(std::make_shared<PlainObject>()));
  EXPECT_FALSE(PassedCollection::From(std::string("text")));
  EXPECT_FALSE(PassedCollection::From(automation::ObjectRef()));
  EXPECT_FALSE(PassedCollection::From(automation::CollectionRef()));
}

}  // namespace
}  // namespace parvex::standin
