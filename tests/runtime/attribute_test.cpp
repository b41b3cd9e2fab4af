#include <gtest/gtest.h>
#include <kvbase/runtime/kv_attribute.h>
#include <kvbase/runtime/kv_exception.h>

#include <type_traits>

namespace {

// A cursor that cannot move on must not pass for a number.
static_assert(std::is_constructible_v<KV_Attribute, KV_Argument &>);
static_assert(!std::is_constructible_v<KV_Attribute, KV_Argument>);
static_assert(!std::is_constructible_v<KV_Attribute, const KV_Argument &>);
static_assert(!std::is_assignable_v<KV_Attribute &, const KV_Argument &>);

struct Attributes : testing::Test {
    KV_Attribute first{11}, second{22};
    KV_Attribute *list[3] = {&first, &second, nullptr};
};

TEST_F(Attributes, AreTakenOneByOneUntilTheListIsExhausted) {
    KV_Argument cursor(list, 2);
    EXPECT_EQ(cursor, 11u);
    EXPECT_EQ(cursor, 11u) << "asking does not move on";
    KV_Attribute taken(cursor);
    EXPECT_EQ(taken.Get_KV_AttributeID(), 11u);
    taken = cursor;
    EXPECT_EQ(taken, 22u);
    EXPECT_EQ(cursor, 0u);
    try {
        taken = cursor;
        FAIL() << "the list was exhausted";
    } catch (const KV_AttributeException &exception) {
        EXPECT_EQ(exception.GetReason(), 1);
        EXPECT_EQ(exception.GetAttribute(), 0u);
    }
    EXPECT_EQ(taken, 0u);
    EXPECT_THROW(KV_Attribute another(cursor), KV_AttributeException);
}

TEST_F(Attributes, CopiedCursorsMoveOnTheirOwn) {
    KV_Argument cursor(list, 2), copy(cursor), assigned;
    KV_Attribute taken(copy);
    assigned = copy;
    taken = assigned;
    EXPECT_EQ(cursor, 11u);
    EXPECT_EQ(copy, 22u);
    assigned = KV_Argument(list, 2);
    EXPECT_EQ(assigned, 11u);
}

TEST_F(Attributes, NullListAndNullElementHoldNothing) {
    KV_Argument none(nullptr, 2), nullElement(list + 2, 1);
    EXPECT_THROW(KV_Attribute taken(none), KV_AttributeException);
    EXPECT_EQ(KV_Attribute(nullElement), 0u);
    EXPECT_THROW(KV_Attribute taken(nullElement), KV_AttributeException);
}

}  // namespace
