#pragma once

#include "objecttransactions.h"
#include "sampleinstallation.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

// A fresh small installation for each test: these tests write into it.
class LedgerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder_.isValid());
        QString message;
        ASSERT_EQ(createSampleInstallation(folder_.path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();
    }
    QString root() const { return folder_.path(); }
    QString fund() const { return folder_.path() + QStringLiteral("\\FUND"); }

    template <class Object> void init(Object &object)
    {
        ASSERT_EQ(object.Init(root(), fund()), 0) << object.ErrorMsg().toStdString();
    }

    static Currency amount(const QString &text) { return ledgerAmountFromText(text).value_or(Currency::fromRaw(-1)); }

private:
    QTemporaryDir folder_;
};
