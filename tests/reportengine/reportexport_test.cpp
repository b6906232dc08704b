#include "reportoutput.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

using Kind = ReportTable::Kind;
using RowKind = ReportTable::RowKind;

ReportTable statusTable()
{
    ReportTable table;
    table.headings = {"Account", "Description", "Revised\nBudget", "Percent\nChange", "Towns", "Posted"};
    table.kinds = {Kind::Text, Kind::Text, Kind::Amount, Kind::Percent, Kind::Number, Kind::Date};
    table.widths = {12, 30, 14, 9, 6, 10};
    table.rows = {
        {RowKind::GroupHeader, 0, false, {"General Support", "", "", "", "", ""}},
        {RowKind::Detail, 1, false, {"A1010.400", "Board of Education, \"Contractual\"", "1234567.891", "12.345", "3", "07/01/2026"}},
        {RowKind::Detail, 1, false, {"A1040.400", "District Clerk", "-1234", "n/a", "1234567", ""}},
        {RowKind::GroupTotal, 0, false, {"Total General Support", "", "1233333.891", "", "", ""}},
        {RowKind::GrandTotal, 0, false, {"Grand Total", "", "1233333.891", "-0.5", "", ""}},
    };
    return table;
}

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// How a cell of the first sheet is stored: its type ("s" for shared text, ""
// for a number), its value and its style's index.
struct StoredCell {
    QString type;
    QString value;
    QString style;
};

std::map<QString, StoredCell> storedCells(const QString &path)
{
    const QString xml = programOutput(
        "python3", {"-c",
                    "import sys,zipfile;"
                    "sys.stdout.write(zipfile.ZipFile(sys.argv[1]).read('xl/worksheets/sheet1.xml').decode())",
                    path});
    std::map<QString, StoredCell> cells;
    static const QRegularExpression cell(R"re(<c r="([A-Z]+\d+)"([^>]*)>(?:<f>[^<]*</f>)?<v>([^<]*)</v></c>)re");
    static const QRegularExpression type(R"re(t="(\w+)")re");
    static const QRegularExpression style(R"re(s="(\d+)")re");
    for (auto match = cell.globalMatch(xml); match.hasNext();) {
        const auto found = match.next();
        cells[found.captured(1)] = {type.match(found.captured(2)).captured(1), found.captured(3),
                                    style.match(found.captured(2)).captured(1)};
    }
    return cells;
}

class ReportExportTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        reportGuiApplication();
        ReportPageSetup setup;
        setup.title = "Budget Status Report";
        document = ReportDocument::fromTable(statusTable(), {}, setup);
    }
    QTemporaryDir dir;
    std::unique_ptr<ReportDocument> document;
};

TEST_F(ReportExportTest, CsvHoldsTheRowsAsTheTableHasThemWithPlainAmounts)
{
    const QString path = dir.filePath("status.csv");
    QString error;
    ASSERT_TRUE(document->writeCsv(path, error)) << qPrintable(error);
    EXPECT_EQ(readText(path),
              "\"Account\",\"Description\",\"Revised Budget\",\"Percent Change\",\"Towns\",\"Posted\"\r\n"
              "\"General Support\",\"\",,,,\"\"\r\n"
              "\"A1010.400\",\"Board of Education, \"\"Contractual\"\"\",1234567.891,12.345,3,\"07/01/2026\"\r\n"
              "\"A1040.400\",\"District Clerk\",-1234,n/a,1234567,\"\"\r\n"
              "\"Total General Support\",\"\",1233333.891,,,\"\"\r\n"
              "\"Grand Total\",\"\",1233333.891,-0.5,,\"\"\r\n");
}

TEST_F(ReportExportTest, AWorkbookKeepsFiguresAsNumbersWithTheirFormats)
{
    const QString path = dir.filePath("status.xlsx");
    QString error;
    ASSERT_TRUE(document->writeXlsx(path, error)) << qPrintable(error);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"status.xlsx"}))
        << "the temporary name is gone";

    const QString values = programOutput("xlsx2csv", {"-f", "%m/%d/%Y", path});
    EXPECT_TRUE(values.startsWith("Account,Description,\"Revised\nBudget\",\"Percent\nChange\",Towns,Posted"))
        << qPrintable(values);

    const auto cells = storedCells(path);
    const auto number = [&](const char *ref) {
        const auto found = cells.find(ref);
        EXPECT_NE(found, cells.end()) << ref;
        if (found == cells.end())
            return QString("<none>");
        EXPECT_NE(found->second.type, "s") << ref << " is stored as text";
        return found->second.value;
    };
    EXPECT_EQ(number("C3").toDouble(), 1234567.891);
    EXPECT_EQ(number("C4").toDouble(), -1234);
    EXPECT_EQ(number("C6").toDouble(), 1233333.891) << "the grand total";
    EXPECT_DOUBLE_EQ(number("D3").toDouble(), 0.12345) << "a percentage as a fraction, shown in 0.00%";
    EXPECT_EQ(number("E4").toDouble(), 1234567);
    EXPECT_EQ(number("F3").toDouble(), 46204) << "07/01/2026 as a date serial";
    EXPECT_EQ(cells.at("D4").type, "s") << "n/a stays text";
    EXPECT_EQ(cells.at("A2").type, "s");
    EXPECT_NE(cells.at("C5").style, cells.at("C3").style) << "a total is bold, a detail not";
    EXPECT_EQ(cells.at("C5").style, cells.at("C6").style);

    // The looks: currency and percent formats, bold group rows, indented details.
    const QString styles = programOutput(
        "python3", {"-c",
                    "import sys,zipfile;sys.stdout.write(zipfile.ZipFile(sys.argv[1]).read('xl/styles.xml').decode())",
                    path});
    EXPECT_TRUE(styles.contains("formatCode=\"#,##0.00\"")) << qPrintable(styles);
    EXPECT_TRUE(styles.contains("formatCode=\"0.00%\"") || styles.contains("numFmtId=\"10\""));
    EXPECT_TRUE(styles.contains("<b/>"));
    EXPECT_TRUE(styles.contains("indent=\"1\""));
}

TEST_F(ReportExportTest, AFailedExportSaysWhyAndLeavesNothing)
{
    QString error;
    EXPECT_FALSE(document->writeCsv("/nonexistent-dir/status.csv", error));
    EXPECT_FALSE(error.isEmpty());
    error.clear();
    EXPECT_FALSE(document->writeXlsx("/nonexistent-dir/status.xlsx", error));
    EXPECT_FALSE(error.isEmpty());

    ASSERT_TRUE(QDir(dir.path()).mkdir("taken.xlsx"));
    error.clear();
    EXPECT_FALSE(document->writeXlsx(dir.filePath("taken.xlsx"), error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList({"taken.xlsx"}));
}

} // namespace
