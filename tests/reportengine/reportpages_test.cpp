#include "reportoutput.h"

#include "reportcells.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>

#include <gtest/gtest.h>

#include <map>

namespace {

using Kind = ReportTable::Kind;
using RowKind = ReportTable::RowKind;

ReportPageSetup setupFor(PaperOrientation orientation = PaperOrientation::Portrait)
{
    ReportPageSetup setup;
    setup.orientation = orientation;
    setup.district = "Lakeview Central School District";
    setup.title = "Budget Status Report";
    setup.subtitles = {"Fund A - General", "2026-27"};
    setup.printedOn = "11/23/2026";
    return setup;
}

QString account(int folder, int n)
{
    return QString("A%1.%2").arg(folder + 1).arg(n, 3, 10, QChar('0'));
}

// Folders of accounts with a total each and a grand total, as a budget status shows them.
ReportTable budgetTable(int folders, int accounts, bool newPage = false)
{
    ReportTable table;
    table.headings = {"Account", "Description", "Original\nAppropriation", "Revised\nBudget", "Percent\nChange"};
    table.kinds = {Kind::Text, Kind::Text, Kind::Amount, Kind::Amount, Kind::Percent};
    table.widths = {12, 30, 14, 14, 9};
    Currency grand;
    for (int f = 0; f < folders; ++f) {
        table.rows.push_back({RowKind::GroupHeader, 0, newPage, {QString("Folder %1 Header").arg(f + 1), "", "", "", ""}});
        Currency sum;
        for (int a = 0; a < accounts; ++a) {
            const Currency amount = Currency::fromRaw(qint64(f + 1) * 12345670000 + qint64(a) * 100012345);
            sum += amount;
            table.rows.push_back({RowKind::Detail, 1, false,
                                  {account(f, a), QString("Account %1 of folder %2").arg(a).arg(f + 1),
                                   amount.toSqlText(), (-amount).toSqlText(), "12.5"}});
        }
        grand += sum;
        table.rows.push_back(
            {RowKind::GroupTotal, 0, false, {QString("Total Folder %1").arg(f + 1), "", sum.toSqlText(), "", ""}});
    }
    table.rows.push_back({RowKind::GrandTotal, 0, false, {"Grand Total", "", grand.toSqlText(), "", ""}});
    return table;
}

class ReportPagesTest : public ::testing::Test {
protected:
    void SetUp() override { reportGuiApplication(); }

    // The document written as a PDF and read back word by word.
    std::vector<PdfPage> printed(const ReportDocument &document)
    {
        const QString path = dir.filePath("report.pdf");
        QString error;
        EXPECT_TRUE(document.writePdf(path, error)) << qPrintable(error);
        return pdfWords(path);
    }

    QTemporaryDir dir;
};

const PdfWord *findWord(const PdfPage &page, const QString &text)
{
    for (const PdfWord &word : page)
        if (word.text == text)
            return &word;
    return nullptr;
}

TEST(ReportCells, FiguresReadAsABoardExpectsThem)
{
    EXPECT_EQ(shownCell(Kind::Amount, "1234567.891"), "1,234,567.89");
    EXPECT_EQ(shownCell(Kind::Amount, "-1234"), "-1,234.00");
    EXPECT_EQ(shownCell(Kind::Amount, "-0.005"), "-0.01");
    EXPECT_EQ(shownCell(Kind::Amount, "0"), "0.00");
    EXPECT_EQ(shownCell(Kind::Percent, "12.345"), "12.35%");
    EXPECT_EQ(shownCell(Kind::Percent, "-100"), "-100.00%");
    EXPECT_EQ(shownCell(Kind::Percent, "n/a"), "n/a");
    EXPECT_EQ(shownCell(Kind::Number, "1234567.125"), "1,234,567.125");
    EXPECT_EQ(shownCell(Kind::Number, "-999"), "-999");
    EXPECT_EQ(shownCell(Kind::Text, "1234.5"), "1234.5");
    EXPECT_EQ(shownCell(Kind::Amount, ""), "");
}

TEST_F(ReportPagesTest, EveryPageRepeatsTheHeadingsAndEveryRowAppearsOnceInOrder)
{
    const int folders = 6;
    const int accounts = 45;
    const auto document = ReportDocument::fromTable(budgetTable(folders, accounts), {}, setupFor());
    const std::vector<PdfPage> pages = printed(*document);
    ASSERT_EQ(int(pages.size()), document->pageCount());
    ASSERT_GE(pages.size(), 4u);

    QStringList seen;
    std::vector<int> rowsOnPage;
    int continuedPages = 0;
    for (std::size_t p = 0; p < pages.size(); ++p) {
        const QString text = pageText(pages[p]);
        EXPECT_TRUE(text.contains("Lakeview Central School District")) << p;
        EXPECT_TRUE(text.contains("Budget Status Report")) << p;
        EXPECT_TRUE(text.contains("Fund A - General")) << p;
        EXPECT_TRUE(text.contains("Original Revised Percent\nAccount Description Appropriation Budget Change")) << p;
        EXPECT_TRUE(text.contains(QString("Page %1 of %2").arg(p + 1).arg(pages.size()))) << p;
        EXPECT_TRUE(text.contains("11/23/2026")) << p;
        int rows = 0;
        double lastTop = 0;
        for (const PdfWord &word : pages[p]) {
            if (word.text.startsWith("A") && word.text.contains('.')) {
                seen << word.text;
                ++rows;
                EXPECT_GT(word.top, lastTop) << "rows run down the page";
                lastTop = word.top;
            }
        }
        rowsOnPage.push_back(rows);
        // Under the headings, a page begins with its folder's heading, carried
        // on from the page before when the folder is.
        const QString first = text.section('\n', 6, 6);
        EXPECT_TRUE(first.startsWith("Folder ") && (first.endsWith(" Header") || first.endsWith(" Header (continued)")))
            << "page " << p + 1 << " begins with " << qPrintable(first);
        continuedPages += first.endsWith("(continued)");
        // A folder's heading is followed on its own page by at least one of its rows.
        for (const PdfWord &word : pages[p]) {
            if (word.text != "Header")
                continue;
            EXPECT_TRUE(std::any_of(pages[p].begin(), pages[p].end(),
                                    [&](const PdfWord &other) { return other.top > word.top + 1; }))
                << "a heading alone at the foot of page " << p + 1;
        }
    }
    QStringList expected;
    for (int f = 0; f < folders; ++f)
        for (int a = 0; a < accounts; ++a)
            expected << account(f, a);
    EXPECT_EQ(seen, expected);
    EXPECT_GE(continuedPages, 3);
    // Full pages hold about as many rows as a letter page can.
    for (std::size_t p = 0; p + 1 < rowsOnPage.size(); ++p) {
        EXPECT_GE(rowsOnPage[p], 45) << "page " << p + 1;
        EXPECT_LE(rowsOnPage[p], 70) << "page " << p + 1;
    }
}

TEST_F(ReportPagesTest, AGroupThatForcesANewPageStartsOne)
{
    const auto document = ReportDocument::fromTable(budgetTable(4, 3, true), {}, setupFor());
    const std::vector<PdfPage> pages = printed(*document);
    ASSERT_EQ(pages.size(), 4u);
    for (int f = 0; f < 4; ++f) {
        const QString text = pageText(pages[std::size_t(f)]);
        EXPECT_TRUE(text.contains(QString("Folder %1 Header").arg(f + 1))) << f;
        EXPECT_TRUE(text.contains(QString("Total Folder %1").arg(f + 1))) << f;
        EXPECT_FALSE(text.contains(QString("Folder %1 Header").arg(f + 2))) << f;
    }
    EXPECT_TRUE(pageText(pages.back()).contains("Grand Total"));

    // Without the flag the same rows share one page.
    EXPECT_EQ(ReportDocument::fromTable(budgetTable(4, 3, false), {}, setupFor())->pageCount(), 1);
}

TEST_F(ReportPagesTest, FiguresLineUpOnTheRightAndTextOnTheLeftWithinThePage)
{
    ReportTable table = budgetTable(2, 5);
    table.rows[1].cells[2] = "-1234";
    table.rows[2].cells[2] = "1.5";
    table.rows[3].cells[4] = "n/a";
    table.rows[4].cells[4] = "-3.333";
    const auto document = ReportDocument::fromTable(table, {}, setupFor());
    const std::vector<PdfPage> pages = printed(*document);
    ASSERT_EQ(pages.size(), 1u);
    const PdfPage &page = pages[0];

    ASSERT_TRUE(findWord(page, "-1,234.00"));
    ASSERT_TRUE(findWord(page, "1.50"));
    ASSERT_TRUE(findWord(page, "n/a"));
    ASSERT_TRUE(findWord(page, "-3.33%"));
    ASSERT_TRUE(findWord(page, "-1,234,567.00")) << "the second column of the first account";

    // Each column's right edges (figures) or left edges (text) are one.
    std::map<int, std::vector<double>> rights; // by the column's heading word
    std::map<int, std::vector<double>> lefts;
    const double appropriation = findWord(page, "Appropriation")->right;
    const double revised = findWord(page, "Budget")->right;
    const double change = findWord(page, "Change")->right;
    const double description = findWord(page, "Description")->left;
    for (const PdfWord &word : page) {
        for (const double edge : {appropriation, revised, change})
            if (std::abs(word.right - edge) < 20 && (word.text.contains('.') || word.text == "n/a"))
                rights[int(edge)].push_back(word.right);
        if (word.text == "Account" && std::abs(word.left - description) < 20)
            lefts[int(description)].push_back(word.left);
    }
    for (const auto &[edge, found] : rights) {
        ASSERT_GE(found.size(), 10u) << edge;
        for (const double right : found)
            EXPECT_NEAR(right, found.front(), 0.6) << "column at " << edge;
    }
    ASSERT_EQ(lefts[int(description)].size(), 10u);
    for (const double left : lefts[int(description)])
        EXPECT_NEAR(left, description, 0.6);
    for (const PdfWord &word : page) {
        EXPECT_GE(word.left, 36 - 0.5) << qPrintable(word.text);
        EXPECT_LE(word.right, 612 - 36 + 0.5) << qPrintable(word.text);
    }
}

TEST_F(ReportPagesTest, AWideTableGivesUpTextNeverFigures)
{
    ReportTable table;
    for (int c = 0; c < 9; ++c) {
        table.headings << QString("Year %1\nActual").arg(2015 + c);
        table.kinds.push_back(Kind::Amount);
        table.widths.push_back(10); // narrower than the figures: they win
    }
    table.headings.prepend("Description");
    table.kinds.insert(table.kinds.begin(), Kind::Text);
    table.widths.insert(table.widths.begin(), 40);
    std::vector<QString> cells{"Instructional salaries for the regular school program, grades kindergarten to six"};
    for (int c = 0; c < 9; ++c)
        cells.push_back(QString("-%1.99").arg(123456789 + c));
    table.rows.push_back({RowKind::Detail, 0, false, cells});
    table.rows.push_back({RowKind::GrandTotal, 0, false, cells});
    const auto document = ReportDocument::fromTable(table, {}, setupFor());
    const std::vector<PdfPage> pages = printed(*document);
    ASSERT_EQ(pages.size(), 1u);
    for (int c = 0; c < 9; ++c) {
        const QString figure = QString("-%1.99").arg(shownCell(Kind::Number, QString::number(123456789 + c)));
        const PdfWord *word = findWord(pages[0], figure);
        ASSERT_TRUE(word) << qPrintable(figure) << " is shown whole";
        EXPECT_LE(word->right, 612 - 36 + 0.5);
    }
    // No figure runs into its neighbour.
    PdfPage row;
    const double top = findWord(pages[0], "-123,456,789.99")->top;
    for (const PdfWord &word : pages[0])
        if (std::abs(word.top - top) < 1 && word.text.startsWith("-1"))
            row.push_back(word);
    std::sort(row.begin(), row.end(), [](const PdfWord &a, const PdfWord &b) { return a.left < b.left; });
    ASSERT_EQ(row.size(), 9u);
    for (std::size_t w = 1; w < row.size(); ++w)
        EXPECT_LT(row[w - 1].right + 2, row[w].left) << qPrintable(row[w].text);
    const QString text = pageText(pages[0]);
    EXPECT_TRUE(text.contains("Instruc")) << "the description is shortened, not dropped";
    EXPECT_FALSE(text.contains("grades kindergarten to six"));
}

TEST_F(ReportPagesTest, AFiguresHeadingWrapsAtBlanksAndKeepsEveryWordWhole)
{
    // Small figures under long words, crowded enough that the text gets smaller.
    const QStringList headings{"Original\nAppropriation", "Transfers and\nAdjustments", "Outstanding\nEncumbrances",
                               "Unencumbered\nBalance", "Equalization\nRate 2025", "Increase/\n(Decrease)"};
    ReportTable table;
    table.headings = QStringList{"Account Code", "Description"} + headings + headings;
    table.kinds.assign(table.headings.size(), Kind::Amount);
    table.kinds[0] = table.kinds[1] = Kind::Text;
    table.widths.assign(table.headings.size(), 6);
    table.widths[1] = 30;
    std::vector<QString> cells{"A1010.400", "Board of Education Contractual"};
    cells.resize(table.headings.size(), "0.93");
    table.rows.push_back({RowKind::Detail, 0, false, cells});
    const auto document = ReportDocument::fromTable(table, {}, setupFor());
    const std::vector<PdfPage> pages = printed(*document);
    ASSERT_EQ(pages.size(), 1u);
    const QString text = pageText(pages[0]);
    for (const QString &word : {"Appropriation", "Adjustments", "Encumbrances", "Unencumbered", "Equalization",
                                "(Decrease)", "Transfers", "2025"})
        EXPECT_EQ(text.count(word), 2) << qPrintable(word) << " is printed whole over both of its columns";
}

TEST_F(ReportPagesTest, NotesFollowTheGrandTotalAndLandscapeIsLetterTurned)
{
    ReportPageSetup setup = setupFor(PaperOrientation::Landscape);
    setup.notes = {"Tax levy = total appropriations - revenues other than the real property tax.",
                   "Each town's share is rounded to the cent by largest remainder."};
    const auto document = ReportDocument::fromTable(budgetTable(2, 3), {}, setup);
    EXPECT_EQ(document->pageLayout().orientation(), QPageLayout::Landscape);
    EXPECT_EQ(document->pageLayout().pageSize().id(), QPageSize::Letter);

    const QString path = dir.filePath("landscape.pdf");
    QString error;
    ASSERT_TRUE(document->writePdf(path, error)) << qPrintable(error);
    EXPECT_TRUE(programOutput("pdfinfo", {path}).contains("792 x 612 pts"));
    const std::vector<PdfPage> pages = pdfWords(path);
    ASSERT_EQ(pages.size(), 1u);
    const double grand = findWord(pages[0], "Grand")->top;
    const PdfWord *levy = findWord(pages[0], "levy");
    const PdfWord *remainder = findWord(pages[0], "remainder.");
    ASSERT_TRUE(levy && remainder);
    EXPECT_GT(levy->top, grand);
    EXPECT_GT(remainder->top, levy->top);
}

TEST_F(ReportPagesTest, ChartsTakeAPageEachThroughTheRegisteredPainter)
{
    ReportChart chart;
    chart.title = "Proposed Budget by Function";
    chart.categories = {"General Support", "Instruction", "Pupil Transportation", "Debt Service"};
    chart.seriesNames = {"Current Budget", "Proposed Budget"};
    chart.series = {{5.2e6, 30.1e6, 3.3e6, 4.0e6}, {5.4e6, 31.7e6, 3.1e6, 4.2e6}};

    // Without a painter: plain bars, so a tool without charts still shows something.
    const auto plain = ReportDocument::fromTable({}, {chart, chart}, setupFor());
    ASSERT_EQ(plain->pageCount(), 2);
    QImage image(612, 792, QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        plain->paintPage(0, painter);
    }
    int coloured = 0;
    for (int y = 300; y < 700; y += 4)
        for (int x = 0; x < 540; x += 4)
            coloured += QColor(image.pixel(x, y)).saturation() > 80;
    EXPECT_GT(coloured, 500) << "the bars fill the chart area";
    const auto words = printed(*plain);
    ASSERT_EQ(words.size(), 2u);
    EXPECT_TRUE(pageText(words[0]).contains("Proposed Budget by Function"));
    EXPECT_TRUE(pageText(words[0]).contains("30,000,000"));

    // With one: it is handed each chart and a page's area below the title block.
    std::vector<std::pair<QString, QRectF>> calls;
    setChartPainter([&](const ReportChart &painted, QPainter &, const QRectF &area) {
        calls.emplace_back(painted.title, area);
    });
    ReportPageSetup setup = setupFor();
    const auto mixed = ReportDocument::fromTable(budgetTable(1, 2), {chart}, setup);
    ASSERT_EQ(mixed->pageCount(), 2) << "a page of rows, then the chart";
    {
        QPainter painter(&image);
        mixed->paintPage(0, painter);
        EXPECT_TRUE(calls.empty());
        mixed->paintPage(1, painter);
    }
    setChartPainter({});
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].first, chart.title);
    EXPECT_GT(calls[0].second.top(), 30);
    EXPECT_GT(calls[0].second.height(), 500);
    EXPECT_LE(calls[0].second.bottom(), 720);
    EXPECT_EQ(calls[0].second.width(), 540);
}

TEST_F(ReportPagesTest, EveryPageRasterisesAndAFailedWriteNamesTheCause)
{
    ReportChart chart;
    chart.title = "Budget";
    chart.categories = {"A", "B"};
    chart.seriesNames = {"Proposed"};
    chart.series = {{1, -2}};
    const auto document = ReportDocument::fromTable(budgetTable(3, 40), {chart}, setupFor());
    const QString path = dir.filePath("all.pdf");
    QString error;
    ASSERT_TRUE(document->writePdf(path, error)) << qPrintable(error);
    const QString out = programOutput("pdftoppm", {"-r", "20", "-png", path, dir.filePath("page")});
    EXPECT_FALSE(out.startsWith("<")) << qPrintable(out);
    EXPECT_EQ(QDir(dir.path()).entryList({"page-*.png"}).size(), document->pageCount());
    EXPECT_GE(document->pageCount(), 4);

    EXPECT_FALSE(document->writePdf("/nonexistent-dir/report.pdf", error));
    EXPECT_FALSE(error.isEmpty());
}

TEST_F(ReportPagesTest, ADeviceKeepsItsPaperAndThePagesShrinkToFitIt)
{
    const auto document = ReportDocument::fromTable(budgetTable(2, 3), {}, setupFor(PaperOrientation::Landscape));
    const QString path = dir.filePath("a4.pdf");
    {
        QPdfWriter writer(path);
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(20, 20, 20, 20),
                                         QPageLayout::Point));
        QString error;
        ASSERT_TRUE(document->paint(writer, error)) << qPrintable(error);
    }
    EXPECT_TRUE(programOutput("pdfinfo", {path}).contains("(A4)")) << qPrintable(programOutput("pdfinfo", {path}));
    const std::vector<PdfPage> pages = pdfWords(path);
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_TRUE(findWord(pages[0], "Grand"));
    EXPECT_TRUE(findWord(pages[0], "11,171,110.41"));
    for (const PdfWord &word : pages[0]) {
        EXPECT_GE(word.left, 20 - 0.5) << qPrintable(word.text);
        EXPECT_LE(word.right, 595.3 - 20 + 0.5) << qPrintable(word.text);
    }
}

} // namespace
