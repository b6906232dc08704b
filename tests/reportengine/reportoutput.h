#pragma once

#include "reportdocument.h"
#include "reportlayout.h"

#include <QGuiApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

// The one application object of the engine's tests (fonts need one), ended
// by gtest before the exit handlers take Qt's statics away.
class ReportGuiEnvironment : public ::testing::Environment {
public:
    void ensure()
    {
        if (!app_ && !QGuiApplication::instance())
            app_ = std::make_unique<QGuiApplication>(argc_, argv_);
    }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;
    char name_[11] = "kora-tests";
    char *argv_[2] = {name_, nullptr};
    std::unique_ptr<QGuiApplication> app_;
};

inline void reportGuiApplication()
{
    static ReportGuiEnvironment *const environment = [] {
        auto *created = new ReportGuiEnvironment;
        ::testing::AddGlobalTestEnvironment(created);
        return created;
    }();
    environment->ensure();
}

// An external program's standard output; a marked failure text when it fails.
inline QString programOutput(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return QStringLiteral("<%1 failed: %2>").arg(program, QString::fromUtf8(process.readAllStandardError()));
    return QString::fromUtf8(process.readAllStandardOutput());
}

// A word of a PDF page as pdftotext places it, in points from the page's corner.
struct PdfWord {
    QString text;
    double left, top, right, bottom;
};
using PdfPage = std::vector<PdfWord>;

inline std::vector<PdfPage> pdfWords(const QString &path)
{
    const QString html = programOutput(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), path, QStringLiteral("-")});
    std::vector<PdfPage> pages;
    static const QRegularExpression item(
        QStringLiteral("<page |<word xMin=\"([-\\d.]+)\" yMin=\"([-\\d.]+)\" xMax=\"([-\\d.]+)\" yMax=\"([-\\d.]+)\">([^<]*)</word>"));
    for (auto match = item.globalMatch(html); match.hasNext();) {
        const auto found = match.next();
        if (found.captured(0) == QLatin1String("<page ")) {
            pages.emplace_back();
            continue;
        }
        QString text = found.captured(5);
        text.replace(QLatin1String("&amp;"), QLatin1String("&")).replace(QLatin1String("&quot;"), QLatin1String("\""));
        pages.back().push_back({text, found.captured(1).toDouble(), found.captured(2).toDouble(),
                                found.captured(3).toDouble(), found.captured(4).toDouble()});
    }
    return pages;
}

// The page's words line by line from the top, each line from the left.
inline QString pageText(PdfPage page)
{
    std::sort(page.begin(), page.end(), [](const PdfWord &a, const PdfWord &b) {
        return std::abs(a.top - b.top) > 2 ? a.top < b.top : a.left < b.left;
    });
    QString text;
    double top = -1;
    for (const PdfWord &word : page) {
        if (!text.isEmpty())
            text += std::abs(word.top - top) > 2 ? QLatin1Char('\n') : QLatin1Char(' ');
        text += word.text;
        top = word.top;
    }
    return text;
}
