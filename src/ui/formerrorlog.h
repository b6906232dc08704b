#pragma once

#include <QDialog>

#include <cstdint>
#include <functional>
#include <memory>

class QPrinter;
class QTableWidget;

// The error log window: a bounded list of errors, newest last, that the user
// can view, print and clear. Closing it only hides it.
class formErrorLog : public QDialog {
    Q_OBJECT
public:
    using PrinterFactory = std::function<std::unique_ptr<QPrinter>()>;

    explicit formErrorLog(QWidget *parent = nullptr);
    ~formErrorLog() override;

    static QString FormType() { return QStringLiteral("Dialog"); }

    void AddError(const QString &module, const QString &procedure, std::int32_t number, const QString &description);
    std::int32_t MaxEntries() const { return maxEntries_; }
    // A value below 1 stands for the default of 100.
    void setMaxEntries(std::int32_t value);
    int Count() const;
    // The row's five values: Time, Module, Procedure, Error #, Description.
    QStringList Row(int row) const; // 0-based
    void ShowDialog();

    // Prints the log on the printer the factory gives (the default printer
    // unless a test or the print set-up chose another).
    void setPrinterFactory(PrinterFactory factory) { printerFactory_ = std::move(factory); }
    void Print();
    void Clear(); // asks "Are you sure?" first

private:
    void printOn(QPrinter &printer) const;
    void trim();

    QTableWidget *grid_;
    std::int32_t maxEntries_ = 100;
    PrinterFactory printerFactory_;
};
