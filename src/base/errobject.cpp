#include "errobject.h"

#include "messageservice.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLocale>

namespace {
QString &overriddenLogPath()
{
    static QString path;
    return path;
}

const char *btrieveText(std::int32_t number)
{
    switch (number) {
    case 1: return "Invalid operation.";
    case 2: return "I/o error.";
    case 3: return "File not open.";
    case 4: return "Key value not found.";
    case 5: return "Invalid key number";
    case 46: return "Access to file denied.";
    case 84: return "Record Or Page is Locked by other process. Please try again!";
    case 85: return "File Locked by other process. Please try again.";
    default: return nullptr;
    }
}
} // namespace

void clsErrObject::setErrorText(const QString &text)
{
    text_ = text;
    if (recordManagerNumber_)
        getBtrieveError(number_, text_);
}

void clsErrObject::getBtrieveError(std::int32_t number, QString &text) const
{
    const char *translated = btrieveText(number);
    text = translated ? QString::fromLatin1(translated) : text_;
}

void clsErrObject::DisplayError() const
{
    MessageRequest request;
    request.title = QString::fromLatin1(applicationTitle);
    request.text = sub_ + u' ' + QString::number(number_) + QStringLiteral(": ") + text_;
    messages().messageBox(request);
}

void clsErrObject::LogError() const
{
    QFile file(logFilePath());
    if (!file.open(QIODevice::Append | QIODevice::Text))
        return;
    const QString now = QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("M/d/yyyy h:mm:ss AP"));
    const QString line = u'"' + now + u' ' + sub_ + u' ' + QString::number(number_) + QStringLiteral(": ") + text_
                         + QStringLiteral("\"\n");
    file.write(line.toUtf8());
}

void clsErrObject::Clear()
{
    text_.clear();
    number_ = 0;
    recordManagerNumber_ = true;
    sub_.clear();
}

void clsErrObject::set(std::int32_t number, const QString &sub, const QString &text)
{
    Clear();
    setErrorNumber(number);
    setErrorText(text);
    setErrorSub(sub);
}

void clsErrObject::setDatabaseError(std::int32_t number, const QString &sub, const QString &text)
{
    Clear();
    number_ = number;
    recordManagerNumber_ = false;
    text_ = text;
    sub_ = sub;
}

QString clsErrObject::logFilePath()
{
    if (!overriddenLogPath().isEmpty())
        return overriddenLogPath();
    const QString dir = QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QDir::currentPath();
    return QDir(dir).filePath(QStringLiteral("Err.txt"));
}

void clsErrObject::setLogFilePath(const QString &path)
{
    overriddenLogPath() = path;
}
