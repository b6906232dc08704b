#include "grouping.h"
#include "valueset.h"

#include "raisednumber.h"

#include <gtest/gtest.h>

TEST(Grouping, WrongUseRaisesItsNumberAndChangesNothing)
{
    classGrouping<int> grouping;
    grouping.Add(10, "Fund");
    grouping.Add(20, "Amount");
    EXPECT_EQ(raisedNumber([&] { grouping.Add(99, "Amount"); }), 457);
    EXPECT_EQ(raisedNumber([&] { grouping.Add(99, ""); }), 449);
    EXPECT_EQ(raisedNumber([&] { grouping.FindKey(""); }), 327);
    EXPECT_EQ(raisedNumber([&] { grouping.Item(3); }), 9);
    EXPECT_EQ(raisedNumber([&] { grouping.Remove("Missing"); }), 9);
    EXPECT_EQ(grouping.Count(), 2);
    EXPECT_EQ(grouping.Item("Amount"), 20);
    EXPECT_EQ(grouping.FindKey("amount"), 0) << "keys compare exactly";

    EXPECT_EQ(grouping.LookupPosition(0), 0);
    EXPECT_EQ(grouping.LookupPosition(grouping.Count() + 1), 0);
    EXPECT_EQ(grouping.LookupPosition(QVariant(qlonglong(2))), 2);
    EXPECT_EQ(grouping.LookupPosition(QVariant(QStringLiteral("Fund"))), 1);
    EXPECT_EQ(grouping.LookupPosition(QVariant(2.0)), 0) << "a double is neither index nor key";
}

TEST(Grouping, RemoveRenumbersAndFreesTheKey)
{
    classGrouping<int> grouping;
    for (const char *key : {"A", "B", "C"})
        grouping.Add(key[0], key);
    grouping.Remove(1);
    EXPECT_EQ(grouping.FindKey("C"), 2);
    grouping.Add(1, "A");
    QStringList keys;
    for (const auto &[key, item] : grouping)
        keys << key;
    EXPECT_EQ(keys, (QStringList{"B", "C", "A"}));
    EXPECT_EQ(grouping.FindIndex(3), "A");
}

TEST(ValueSet, SetOperationsKeepInsertionOrderAndClonesAreIndependent)
{
    classSet<QString> a;
    classSet<QString> b;
    for (const char *value : {"A", "B", "A", "C"})
        a.Add(value);
    for (const char *value : {"C", "D", "A"})
        b.Add(value);
    const classSet<QString> both = a.Intersection(b);
    EXPECT_EQ(QStringList(both.begin(), both.end()), (QStringList{"A", "C"}));
    const classSet<QString> all = a.Union(b);
    EXPECT_EQ(QStringList(all.begin(), all.end()), (QStringList{"A", "B", "C", "D"}));

    classSet<QString> copy = a.Clone();
    EXPECT_TRUE(copy.Remove("B"));
    EXPECT_FALSE(copy.Remove("B"));
    EXPECT_TRUE(a.InSet("B"));
    EXPECT_EQ(copy.Item(2), "C");
    EXPECT_EQ(raisedNumber([&] { copy.Item(3); }), 9);
}
