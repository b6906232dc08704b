#include "gridexport.h"
#include "gridxlsxwriter.h"
#include "mdichild.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using Records = std::vector<QStringList>;

// RFC 4180 records: quoted fields may hold commas, doubled quotes and line breaks.
Records parseCsv(const QString &text)
{
    Records records;
    QStringList record;
    QString field;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"')
                field += text[++i];
            else if (c == '"')
                quoted = false;
            else
                field += c;
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            record << std::exchange(field, {});
        } else if (c == '\n') {
            record << std::exchange(field, {});
            records.push_back(std::exchange(record, {}));
        } else if (c != '\r') {
            field += c;
        }
    }
    return records;
}

QString run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0)
        return QStringLiteral("<%1 failed: %2>").arg(program, QString::fromUtf8(process.readAllStandardError()));
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The first sheet's XML, to see how cells are stored (xlsx2csv shows only values).
QString sheetXml(const QString &path)
{
    return run(
        QStringLiteral("python3"),
        {QStringLiteral("-c"),
         QStringLiteral("import sys,zipfile;"
                        "sys.stdout.write(zipfile.ZipFile(sys.argv[1]).read('xl/worksheets/sheet1.xml').decode())"),
         path});
}

// "C2" -> the cell's attributes as written, e.g. ` r="C2" s="2" t="s"`.
QString cellAttributes(const QString &xml, const QString &cell)
{
    const QRegularExpression pattern(QStringLiteral("<c r=\"%1\"([^>]*)>").arg(cell));
    return pattern.match(xml).captured(1);
}

class ExportTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override
    {
        guiApplication();
        child = std::make_unique<mdiChild>();
        grid = child->Grid(1);
        grid->AddColumn("ID", "", {.hidden = true});
        grid->AddColumn("Account", "Account", {.widthTwips = 2000});
        grid->AddColumn("Posted", "Posted");
        grid->AddColumn("Budget", "Proposed", {.caption2 = "2027", .type = GridColumnType::Amount, .total = true});
        grid->AddColumn("Active", "Active", {.type = GridColumnType::Check});
        grid->AddColumn("Note", "Note, \"quoted\"");
        const std::vector<std::tuple<QString, QString, QString, QString, bool, QString>> rows{
            {"7", "10-110-1000", "07/01/04", "1234.5", true, "plain"},
            {"8", "10-110-2000", "12/31/04", "-0.0125", false, "a, \"b\"\nsecond line"},
            {"9", "10-220-1000", "", "-98765.4321", true, ""},
        };
        for (const auto &[id, account, posted, amount, active, note] : rows) {
            const int row = grid->AddRow();
            grid->SetCell(row, "ID", id);
            grid->SetCell(row, "Account", account);
            grid->SetCell(row, "Posted", posted);
            grid->SetCell(row, "Budget", amount);
            grid->SetCell(row, "Active", active);
            grid->SetCell(row, "Note", note);
        }
        grid->ShowTotals(true);
    }

    // Exports through the window as the user would.
    QString exportAs(const QString &name)
    {
        shown->clear();
        shown->answerText(dir.filePath(name));
        child->DoExport();
        return dir.filePath(name);
    }

    ScopedMessages shown;
    QTemporaryDir dir;
    std::unique_ptr<mdiChild> child;
    classGrid *grid = nullptr;
};

TEST_F(ExportTest, AWorkbookReadBackHoldsTheGridsCsvWithTotalsUnder)
{
    const QString csvPath = exportAs("grid.csv");
    const QString xlsxPath = exportAs("grid.xlsx");
    ASSERT_EQ(shown->shown().back().message.text, "Data export finished!");

    const Records csv = parseCsv(readFile(csvPath));
    const Records sheet =
        parseCsv(run(QStringLiteral("xlsx2csv"), {QStringLiteral("-f"), QStringLiteral("%m/%d/%y"), xlsxPath}));
    ASSERT_EQ(csv.size(), 4u);
    EXPECT_EQ(csv[0], QStringList({"Account", "Posted", "Proposed 2027", "Active", "Note, \"quoted\""}));
    ASSERT_EQ(sheet.size(), csv.size() + 1) << "header, three rows and the totals";

    QStringList heading = sheet[0];
    heading.replaceInStrings("\n", " ");
    EXPECT_EQ(heading, csv[0]);
    EXPECT_EQ(sheet[0][2], "Proposed\n2027") << "the two caption lines in one wrapped cell";
    for (std::size_t r = 1; r < csv.size(); ++r) {
        ASSERT_EQ(sheet[r].size(), csv[r].size()) << "row " << r;
        for (qsizetype c = 0; c < csv[r].size(); ++c) {
            if (c == 2)
                EXPECT_EQ(Currency::parse(sheet[r][c]), Currency::parse(csv[r][c])) << "row " << r;
            else
                EXPECT_EQ(sheet[r][c], csv[r][c]) << "row " << r << " column " << c;
        }
    }
    EXPECT_EQ(Currency::parse(sheet[4][2]), grid->GetColumnTotal("Budget"));
    EXPECT_EQ(sheet[4], QStringList({"", "", sheet[4][2], "", ""}));

    // What the values are, which xlsx2csv does not show: numbers, dates and a formula.
    const QString xml = sheetXml(xlsxPath);
    for (const char *cell : {"C2", "C3", "C4", "B2", "B3"})
        EXPECT_FALSE(cellAttributes(xml, cell).contains("t=\"s\"")) << cell << " is stored as text";
    EXPECT_TRUE(cellAttributes(xml, "A2").contains("t=\"s\""));
    EXPECT_TRUE(xml.contains("<f>SUM(C2:C4)</f>")) << qPrintable(xml);
}

TEST_F(ExportTest, AFailedWorkbookLeavesNothingBehindAndNamesTheFile)
{
    shown->answerText(QString("/nonexistent-dir/budget.xlsx"));
    child->DoExport();
    ASSERT_EQ(shown->shown().size(), 2u);
    EXPECT_TRUE(shown->shown()[1].message.text.startsWith("Cannot write /nonexistent-dir/budget.xlsx: "));

    // The workbook is made, then cannot take the place of a folder of that name.
    ASSERT_TRUE(QDir(dir.path()).mkdir("budget.xlsx"));
    exportAs("budget.xlsx");
    EXPECT_TRUE(shown->shown().back().message.text.startsWith("Cannot write " + dir.filePath("budget.xlsx")));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList({"budget.xlsx"}));

    // An older file is replaced whole.
    QFile old(dir.filePath("old.xlsx"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("not a workbook");
    old.close();
    exportAs("old.xlsx");
    EXPECT_EQ(shown->shown().back().message.text, "Data export finished!");
    EXPECT_TRUE(readFile(dir.filePath("old.xlsx")).startsWith("PK"));
}

TEST(ExportTarget, TheExtensionDecidesThenTheChosenFilter)
{
    const QStringList filters = exportFilters();
    ASSERT_EQ(filters.size(), 2);
    const auto check = [](const ExportTarget &target, const QString &path, ExportFormat format) {
        EXPECT_EQ(target.path, path);
        EXPECT_EQ(target.format, format);
    };
    check(exportTarget("/t/a.XLSX", filters[0]), "/t/a.XLSX", ExportFormat::Xlsx);
    check(exportTarget("/t/a.csv", filters[1]), "/t/a.csv", ExportFormat::Csv);
    check(exportTarget("/t/a", filters[1]), "/t/a.xlsx", ExportFormat::Xlsx);
    check(exportTarget("/t/a.txt", filters[0]), "/t/a.txt.csv", ExportFormat::Csv);
    check(exportTarget("/t/a.txt", QString()), "/t/a.txt", ExportFormat::Csv);
}

} // namespace
