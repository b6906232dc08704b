#pragma once

#include "guiapplication.h"
#include "reportdefinition.h"
#include "reportdemo.h"

#include <gtest/gtest.h>

#include <memory>

// A test on the demo district that prepares reports as the Reports menu does.
class ReportDemoTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        guiApplication();
        ASSERT_TRUE(demo.problem().isEmpty()) << demo.problem().toStdString();
    }

    // The report's definition with its parameters and selection set, or none
    // with the reason in `error`.
    std::unique_ptr<ReportDefinition> prepare(ReportKind kind, const ReportChoices &choices)
    {
        ReportPreparation preparation(demo.environment());
        EXPECT_TRUE(preparation.readYears()) << preparation.Error().ErrorText().toStdString();
        auto definition = preparation.prepare(kind, choices);
        error = preparation.Error().ErrorText();
        return definition;
    }

    ReportDemo &demo = ReportDemo::get();
    QString error;
};
