#pragma once

#include "reportdefinition.h"
#include "reportdefinitiondata.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

// Definition files written into a temporary folder and loaded from there.
class DefinitionFiles {
public:
    QString write(const QString &name, const QString &text)
    {
        const QString path = folder_.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text.toUtf8());
        return path;
    }
    // Loads text that must load cleanly.
    std::unique_ptr<ReportDefinition> load(const QString &text, const QString &name = QStringLiteral("test.rpt"))
    {
        QString error;
        auto definition = ReportDefinition::load(write(name, text), error);
        EXPECT_TRUE(definition) << error.toStdString();
        return definition;
    }
    // The message loading refuses the text with.
    QString refusal(const QString &text, const QString &name = QStringLiteral("bad.rpt"))
    {
        QString error;
        const auto definition = ReportDefinition::load(write(name, text), error);
        EXPECT_FALSE(definition) << text.toStdString();
        return error;
    }
    QString path() const { return folder_.path(); }

private:
    QTemporaryDir folder_;
};
