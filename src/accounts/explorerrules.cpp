#include "explorerrules.h"

#include <algorithm>

const std::vector<ExplorerView> &explorerViews()
{
    static const std::vector<ExplorerView> views{
        {QStringLiteral("T"), QStringLiteral("Account Code"), 5},
        {QStringLiteral("B"), QStringLiteral("Building"), 1},
        {QStringLiteral("P"), QStringLiteral("Program"), 1},
    };
    return views;
}

const ExplorerView &explorerView(const QString &nodeType)
{
    for (const ExplorerView &view : explorerViews()) {
        if (view.nodeType.compare(nodeType, Qt::CaseInsensitive) == 0)
            return view;
    }
    return explorerViews().front();
}

qint64 hangingFolder(const clsAccountCode &code, const QString &nodeType)
{
    const QString type = explorerView(nodeType).nodeType;
    if (type == u"B")
        return code.BuildingID();
    if (type == u"P")
        return code.ProgramID();
    return code.ParentID();
}

void setHangingFolder(clsAccountCode &code, const QString &nodeType, qint64 folderId)
{
    const QString type = explorerView(nodeType).nodeType;
    if (type == u"B")
        code.setBuildingID(folderId);
    else if (type == u"P")
        code.setProgramID(folderId);
    else
        code.setParentID(folderId);
}

namespace {

QString tooLong(const QString &what, int limit)
{
    return QStringLiteral("%1 can be at most %2 characters long.").arg(what).arg(limit);
}

} // namespace

QString folderNameProblem(const QString &name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty())
        return QStringLiteral("Folder name is a required field.");
    if (trimmed.size() > folderNameLimit)
        return tooLong(QStringLiteral("Folder name"), folderNameLimit);
    return {};
}

QString accountFieldsProblem(const QString &code, const QString &description, const QString &stateCode)
{
    if (description.trimmed().isEmpty())
        return QStringLiteral("Description field is required.");
    if (code.trimmed().size() > accountCodeLimit)
        return tooLong(QStringLiteral("Account code"), accountCodeLimit);
    if (description.trimmed().size() > accountNameLimit)
        return tooLong(QStringLiteral("Description"), accountNameLimit);
    if (stateCode.trimmed().size() > stateCodeLimit)
        return tooLong(QStringLiteral("State code"), stateCodeLimit);
    return {};
}

bool folderFits(int targetDepth, int subtreeLevels, int maximumDepth)
{
    return targetDepth + subtreeLevels <= maximumDepth;
}

QString maximumLevelsMessage(int maximumDepth)
{
    return QStringLiteral("Unable to move folder(s).  Maximum of ") + QString::number(maximumDepth) +
           QStringLiteral(" level(s) is allowed.");
}

QString codeCaption(const clsAccountCode &code)
{
    return code.AccountCode() + QStringLiteral("  -  ") + code.AccountName();
}

void sortFromPosition(std::vector<clsAccountCode> &codes, int position)
{
    const qsizetype from = std::max(position, 1) - 1;
    std::stable_sort(codes.begin(), codes.end(), [from](const clsAccountCode &a, const clsAccountCode &b) {
        const int tail = QStringView(a.AccountCode()).mid(from).compare(QStringView(b.AccountCode()).mid(from));
        return tail != 0 ? tail < 0 : a.AccountCode() < b.AccountCode();
    });
}

int startPosition(const QString &answer)
{
    const QString trimmed = answer.trimmed();
    qsizetype digits = 0;
    while (digits < trimmed.size() && trimmed.at(digits).isDigit())
        ++digits;
    bool ok = false;
    const int value = trimmed.left(std::min<qsizetype>(digits, 6)).toInt(&ok);
    return ok && value > 0 ? value : 1;
}
