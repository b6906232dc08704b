#pragma once

#include <QPageLayout>
#include <QString>

#include <functional>

class QPagedPaintDevice;
class QPainter;
class QPrinter;

enum class ReportFormat { Pdf, Csv, Xlsx };

// What the viewer shows, prints and exports: a report laid out on pages.
// The engine's documents are viewed through documentreport.h.
class ViewedReport {
public:
    virtual ~ViewedReport() = default;
    virtual QString title() const = 0;
    virtual QPageLayout pageLayout() const = 0;
    virtual int pageCount() const = 0;
    // Page `index` (from 0), in points from the top-left corner of the paintable area.
    virtual void paintPage(int index, QPainter &painter) const = 0;
    // Every page onto a device already set up; false with `error` when painting fails.
    virtual bool paint(QPagedPaintDevice &device, QString &error) const = 0;
    virtual bool write(ReportFormat format, const QString &path, QString &error) const = 0;
};

// Sets the printer to the report's page layout and `copies`, lets `confirm`
// (a print dialog) change them, and prints every page. Without `confirm` it
// prints at once. False with `error` when it fails, and with `error` empty
// when `confirm` said no.
bool printReport(const ViewedReport &report, QPrinter &printer, int copies, QString &error,
                 const std::function<bool(QPrinter &)> &confirm = {});

// The file name's extension for a format, without the dot.
QString reportFormatSuffix(ReportFormat format);
