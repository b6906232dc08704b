#include "guiapplication.h"
#include "recordingmessages.h"
#include "reportcommand.h"
#include "reportcatalog.h"
#include "reportdemo.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

struct CommandRun {
    int exitCode = 0;
    QString out;
    QString err;
};

class ReportCommandTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        guiApplication();
        ASSERT_TRUE(demo.problem().isEmpty()) << demo.problem().toStdString();
        configPath = folder.filePath("budget.ini");
        ASSERT_TRUE(demo.config().save(configPath));
    }

    CommandRun run(const QString &report, const QStringList &options)
    {
        CommandRun result;
        QTextStream out(&result.out);
        QTextStream err(&result.err);
        result.exitCode =
            runReportCommand(QStringList{"--config", configPath, "BUSINESS", demo.root(), report} + options, out, err);
        out.flush();
        err.flush();
        return result;
    }

    ReportDemo &demo = ReportDemo::get();
    ScopedMessages messages;
    QTemporaryDir folder;
    QString configPath;
};

} // namespace

TEST_F(ReportCommandTest, UnknownReportsFundsOptionsAndFormatsAreNamedWithANonZeroExit)
{
    const QString pdf = folder.filePath("out.pdf");
    CommandRun result = run("BudgetStatu", {"--pdf", pdf});
    EXPECT_EQ(result.exitCode, ReportExit::Unknown);
    EXPECT_TRUE(result.err.contains("Unknown report \"BudgetStatu\"")) << result.err.toStdString();
    EXPECT_TRUE(result.err.contains("TaxRevenue"));

    result = run("BudgetStatus", {"--fund", "Q", "--pdf", pdf});
    EXPECT_EQ(result.exitCode, ReportExit::Unknown);
    EXPECT_TRUE(result.err.contains("Unknown fund \"Q\"")) << result.err.toStdString();

    result = run("BudgetStatus", {"--option", "7", "--pdf", pdf});
    EXPECT_EQ(result.exitCode, ReportExit::Unknown);
    EXPECT_TRUE(result.err.contains("6  No Expenditure Year")) << result.err.toStdString();

    result = run("PublicBudget", {"--category", "Transport", "--pdf", pdf});
    EXPECT_EQ(result.exitCode, ReportExit::Unknown);

    result = run("Generator", {"--format", "No such format", "--pdf", pdf});
    EXPECT_EQ(result.exitCode, ReportExit::Unknown);
    EXPECT_TRUE(result.err.contains("No such format")) << result.err.toStdString();

    result = run("BudgetStatus", {"--pdf", pdf, "--csv", pdf});
    EXPECT_EQ(result.exitCode, ReportExit::Usage);
    result = run("BudgetStatus", {"--compare", "ZZ9", "--pdf", pdf});
    EXPECT_EQ(result.exitCode, ReportExit::Failed);
    EXPECT_TRUE(result.err.contains("ZZ9")) << result.err.toStdString();
    EXPECT_FALSE(QFile::exists(pdf));
}

TEST_F(ReportCommandTest, EveryReportRendersToAPdf)
{
    Recordset formats;
    ASSERT_TRUE(demo.db()->open("select Name from Report order by ID", formats));
    const QString format = formats.text("Name");
    for (const QString &report : reportNames()) {
        const QString pdf = folder.filePath(report + ".pdf");
        QStringList options{"--pdf", pdf};
        if (report == "Generator")
            options << "--format" << format;
        if (report == "PublicBudget")
            options << "--category" << "Program";
        const CommandRun result = run(report, options);
        EXPECT_EQ(result.exitCode, ReportExit::Ok) << report.toStdString() << ": " << result.err.toStdString();
        EXPECT_GT(QFileInfo(pdf).size(), 1000) << report.toStdString();
    }
}

TEST_F(ReportCommandTest, WritesTheReportInTheChosenFormat)
{
    const QString pdf = folder.filePath("status.pdf");
    CommandRun result = run("BudgetStatus", {"--fund", "a", "--option", "5", "--percent", "--pdf", pdf});
    ASSERT_EQ(result.exitCode, ReportExit::Ok) << result.err.toStdString();
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5).startsWith("%PDF"));

    const QString csv = folder.filePath("tax.csv");
    result = run("TaxRevenue", {"--csv", csv});
    ASSERT_EQ(result.exitCode, ReportExit::Ok) << result.err.toStdString();
    QFile table(csv);
    ASSERT_TRUE(table.open(QIODevice::ReadOnly));
    EXPECT_TRUE(table.readAll().contains(demo.district().towns.front().name.toUtf8()));
}
