#include "grouping.h"
#include "valueset.h"

#include <gtest/gtest.h>

namespace {

template <typename Call> int raisedNumber(Call call)
{
    try {
        call();
    } catch (const RuntimeError &error) {
        return error.number();
    }
    return -1;
}

classGrouping<int> threeColumns()
{
    classGrouping<int> grouping;
    grouping.Add(10, "Fund");
    grouping.Add(20, "Amount");
    grouping.Add(30, "OrigAmount");
    return grouping;
}

} // namespace

TEST(Grouping, AddRefusesEmptyAndDuplicateKeysAndKeepsTheFirst)
{
    classGrouping<int> grouping = threeColumns();
    EXPECT_EQ(raisedNumber([&] { grouping.Add(99, "Amount"); }), 457);
    EXPECT_EQ(raisedNumber([&] { grouping.Add(99, ""); }), 449);
    EXPECT_EQ(grouping.Count(), 3);
    EXPECT_EQ(grouping.Item("Amount"), 20);
    EXPECT_EQ(grouping.FindKey("amount"), 0) << "keys compare exactly";
    EXPECT_EQ(raisedNumber([&] { grouping.FindKey(""); }), 327);
}

TEST(Grouping, PositionsAreOneBasedAndOutOfRangeRaisesNine)
{
    classGrouping<int> grouping = threeColumns();
    EXPECT_EQ(grouping.Item(1), 10);
    EXPECT_EQ(grouping.FindIndex(3), "OrigAmount");
    EXPECT_EQ(raisedNumber([&] { grouping.Item(0); }), 9);
    EXPECT_EQ(raisedNumber([&] { grouping.Item(4); }), 9);
    EXPECT_EQ(raisedNumber([&] { grouping.Item("Missing"); }), 9);
    grouping.setItem(2, 25);
    EXPECT_EQ(grouping.Item("Amount"), 25);

    EXPECT_EQ(grouping.LookupPosition(0), 0);
    EXPECT_EQ(grouping.LookupPosition(grouping.Count() + 1), 0);
    EXPECT_EQ(grouping.LookupPosition(QVariant(2)), 2);
    EXPECT_EQ(grouping.LookupPosition(QVariant(qlonglong(3))), 3);
    EXPECT_EQ(grouping.LookupPosition(QVariant(QStringLiteral("Fund"))), 1);
    EXPECT_EQ(grouping.LookupPosition(QVariant(2.0)), 0) << "a double is neither index nor key";
    EXPECT_EQ(grouping.LookupPosition(QVariant()), 0);
}

TEST(Grouping, RemoveRenumbersAndFreesTheKey)
{
    classGrouping<int> grouping = threeColumns();
    grouping.Remove("Fund");
    EXPECT_EQ(grouping.Count(), 2);
    EXPECT_EQ(grouping.FindKey("Amount"), 1);
    EXPECT_EQ(grouping.FindKey("OrigAmount"), 2);
    EXPECT_EQ(raisedNumber([&] { grouping.Remove(5); }), 9);
    EXPECT_EQ(grouping.Count(), 2);
    grouping.Add(40, "Fund");
    EXPECT_EQ(grouping.FindKey("Fund"), 3);

    QStringList keys;
    for (const auto &[key, item] : grouping)
        keys << key;
    EXPECT_EQ(keys, (QStringList{"Amount", "OrigAmount", "Fund"}));
    grouping.Reset();
    EXPECT_EQ(grouping.Count(), 0);
    EXPECT_EQ(grouping.FindKey("Fund"), 0);
}

TEST(ValueSet, MembershipAndSetOperationsKeepInsertionOrder)
{
    classSet<QString> a;
    EXPECT_TRUE(a.Add("A"));
    EXPECT_TRUE(a.Add("B"));
    EXPECT_FALSE(a.Add("A"));
    EXPECT_TRUE(a.Add("C"));
    classSet<QString> b;
    b.Add("C");
    b.Add("D");
    b.Add("A");

    const classSet<QString> both = a.Intersection(b);
    ASSERT_EQ(both.Count(), 2);
    EXPECT_EQ(both.Item(1), "A");
    EXPECT_EQ(both.Item(2), "C");

    const classSet<QString> all = a.Union(b);
    EXPECT_EQ(QStringList(all.begin(), all.end()), (QStringList{"A", "B", "C", "D"}));

    classSet<QString> copy = a.Clone();
    EXPECT_TRUE(copy.Remove("B"));
    EXPECT_FALSE(copy.Remove("B"));
    EXPECT_FALSE(copy.InSet("B"));
    EXPECT_TRUE(a.InSet("B")) << "a clone is independent";
    EXPECT_EQ(copy.Item(2), "C");
    EXPECT_EQ(raisedNumber([&] { copy.Item(3); }), 9);
    copy.Clear();
    EXPECT_EQ(copy.Count(), 0);
    EXPECT_FALSE(copy.InSet("A"));
}
