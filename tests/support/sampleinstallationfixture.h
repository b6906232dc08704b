#pragma once

#include "sampleinstallation.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

// A small sample installation in a temporary folder, made once per test suite.
class SampleInstallationTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        folder_ = new QTemporaryDir();
        QString message;
        ASSERT_EQ(createSampleInstallation(folder_->path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();
    }
    static void TearDownTestSuite()
    {
        delete folder_;
        folder_ = nullptr;
    }
    static QString root() { return folder_->path(); }
    static QString fund() { return folder_->path() + QStringLiteral("\\FUND"); }

private:
    static inline QTemporaryDir *folder_ = nullptr;
};
