#include "formerrorlog.h"

#include "dialogframe.h"
#include "errobject.h"
#include "messageservice.h"

#include <QDateTime>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QPrinter>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <array>

namespace {

constexpr int defaultMaxEntries = 100;
constexpr int columnCount = 5;
// Print zones, in characters of the fixed-pitch print font.
constexpr std::array<int, columnCount> printZones{0, 20, 36, 56, 66};

QPushButton *makeButton(const QString &name, const QString &caption, QWidget *parent)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    return button;
}

} // namespace

formErrorLog::formErrorLog(QWidget *parent) : QDialog(parent)
{
    setDialogFrame(*this);
    setWindowTitle(QStringLiteral("Error Log"));
    grid_ = new QTableWidget(0, columnCount, this);
    grid_->setObjectName(QStringLiteral("gridLog"));
    grid_->setHorizontalHeaderLabels({QStringLiteral("Time"), QStringLiteral("Module"), QStringLiteral("Procedure"),
                                      QStringLiteral("Error #"), QStringLiteral("Description")});
    grid_->verticalHeader()->setVisible(false);
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->horizontalHeader()->setStretchLastSection(true);
    grid_->setWordWrap(false);
    // Wide enough for a time stamp and the usual procedure names.
    const int widths[] = {150, 110, 170, 70};
    for (int column = 0; column < 4; ++column)
        grid_->setColumnWidth(column, widths[column]);
    auto *print = makeButton(QStringLiteral("cmdPrint"), QStringLiteral("&Print"), this);
    auto *clear = makeButton(QStringLiteral("cmdClear"), QStringLiteral("C&lear"), this);
    auto *close = makeButton(QStringLiteral("cmdClose"), QStringLiteral("&Close"), this);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(print);
    buttons->addWidget(clear);
    buttons->addStretch();
    buttons->addWidget(close);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(grid_);
    layout->addLayout(buttons);
    resize(760, 360);
    connect(print, &QPushButton::clicked, this, &formErrorLog::Print);
    connect(clear, &QPushButton::clicked, this, &formErrorLog::Clear);
    connect(close, &QPushButton::clicked, this, &QDialog::hide);
    printerFactory_ = [] { return std::make_unique<QPrinter>(QPrinter::HighResolution); };
    setMaxEntries(-1);
}

formErrorLog::~formErrorLog() = default;

void formErrorLog::AddError(const QString &module, const QString &procedure, std::int32_t number,
                            const QString &description)
{
    const int row = grid_->rowCount();
    grid_->insertRow(row);
    const QStringList values{QDateTime::currentDateTime().toString(QStringLiteral("MM-dd-yyyy hh:mm:ss")), module,
                             procedure, QString::number(number), description};
    for (int column = 0; column < columnCount; ++column)
        grid_->setItem(row, column, new QTableWidgetItem(values[column]));
    trim();
}

void formErrorLog::setMaxEntries(std::int32_t value)
{
    maxEntries_ = value >= 1 ? value : defaultMaxEntries;
    trim();
}

int formErrorLog::Count() const
{
    return grid_->rowCount();
}

QStringList formErrorLog::Row(int row) const
{
    QStringList values;
    for (int column = 0; column < columnCount; ++column)
        values << grid_->item(row, column)->text();
    return values;
}

void formErrorLog::ShowDialog()
{
    if (Count() > 0) {
        grid_->scrollToBottom();
        grid_->selectRow(Count() - 1);
    }
    exec();
}

void formErrorLog::Print()
{
    if (Count() == 0) {
        messages().beep();
        return;
    }
    const std::unique_ptr<QPrinter> printer = printerFactory_();
    printOn(*printer);
    messages().messageBox({QStringLiteral("Print Error Log"), QStringLiteral("Done printing."), MsgButtons::OK,
                           MsgIcon::None, MsgAnswer::OK});
}

void formErrorLog::printOn(QPrinter &printer) const
{
    QPainter painter(&printer);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(9);
    painter.setFont(font);
    const QFontMetrics metrics(font, &printer);
    const int line = metrics.lineSpacing();
    const int charWidth = metrics.horizontalAdvance(QLatin1Char('M'));
    const int bottom = painter.viewport().height() - line;
    int y = line;
    const auto nextLine = [&] {
        if (y > bottom) {
            printer.newPage();
            y = line;
        }
        const int at = y;
        y += line;
        return at;
    };
    const auto write = [&](const QString &text) { painter.drawText(0, nextLine(), text); };
    const auto writeZones = [&](const QStringList &values) {
        const int at = nextLine();
        for (int column = 0; column < columnCount; ++column)
            painter.drawText(printZones[column] * charWidth, at, values[column]);
    };
    const QString rule(200, QLatin1Char('='));
    write(QStringLiteral("Application = ") + QLatin1String(applicationTitle));
    write(QStringLiteral("Date & Time = ") +
          QDateTime::currentDateTime().toString(QStringLiteral("MM-dd-yy hh:mm:ss")));
    write(QString());
    writeZones({QStringLiteral("Time"), QStringLiteral("Module"), QStringLiteral("Procedure"),
                QStringLiteral("Error #"), QStringLiteral("Description")});
    write(rule);
    for (int row = 0; row < Count(); ++row)
        writeZones(Row(row));
    write(rule);
    write(QStringLiteral("End of Report"));
    painter.end();
}

void formErrorLog::Clear()
{
    if (Count() == 0) {
        messages().beep();
        return;
    }
    const MsgAnswer answer = messages().messageBox({QStringLiteral("Clear error log"), QStringLiteral("Are you sure?"),
                                                    MsgButtons::YesNo, MsgIcon::Question, MsgAnswer::No});
    if (answer != MsgAnswer::No)
        grid_->setRowCount(0);
}

void formErrorLog::trim()
{
    while (grid_->rowCount() > maxEntries_)
        grid_->removeRow(0);
}
