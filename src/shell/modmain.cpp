#include "modmain.h"

#include "adoconnection.h"
#include "appglobals.h"
#include "fundfiles.h"
#include "messageservice.h"
#include "objectparameters.h"
#include "objectsysparams.h"
#include "objectyear.h"
#include "paths.h"
#include "proposal.h"
#include "securityrecords.h"
#include "years.h"

#include <QDate>
#include <QDir>
#include <QElapsedTimer>

#include <filesystem>

namespace {

void showError(int mode, const QString &title, const QString &text)
{
    messages().errorDialog({mode, title, text, false});
}

bool startsWithDrive(const QString &path)
{
    return path.size() >= 2 && path[1] == u':' && path[0].isLetter();
}

// The root comes upper-cased while the disk keeps its own case: each part of
// the path is matched without regard to case. A drive letter is dropped, so
// "C:\KORA" and "/KORA" name the same folder.
bool folderExists(const QString &path)
{
    QString rest = startsWithDrive(path) ? path.mid(2) : path;
    const bool absolute = startsWithDrive(path) || rest.startsWith(u'/') || rest.startsWith(u'\\');
    while (rest.startsWith(u'/') || rest.startsWith(u'\\'))
        rest.remove(0, 1);
    if (rest.isEmpty())
        return absolute && std::filesystem::is_directory("/");
    const std::filesystem::path base = absolute ? std::filesystem::path("/") : std::filesystem::current_path();
    const auto found = recman::resolveLegacyPath(rest.toStdString(), base);
    std::error_code error;
    return found && std::filesystem::is_directory(*found, error);
}

void showInvalidCommandLine(long code)
{
    showError(1, QStringLiteral("Kora-Budget"),
              QStringLiteral("Application called with Invalid Command Line.  (%1)").arg(code));
}

} // namespace

bool OpenDatabase(const BudgetDbConfig &config)
{
    gadoConnection = std::make_unique<clsAdoConnection>();
    gadoConnection->configure(config);
    if (gadoConnection->OpenConnection())
        return true;
    // The program stops here: the log keeps what the user was shown.
    gadoConnection->Error().LogError();
    gadoConnection->Error().DisplayError();
    return false;
}

bool CloseDatabase()
{
    if (!gadoConnection)
        return false;
    if (gadoConnection->CloseConnection())
        return true;
    gadoConnection->Error().DisplayError();
    return false;
}

namespace {

// Every Kora-Fund file is found from the root the dictionary lies in, so a root
// typed relative to the working folder is made whole first; a Windows path
// (a drive or a leading backslash) stays as given.
QString absoluteRoot(const QString &given)
{
    const bool windowsPath = given.startsWith(u'\\') || (given.size() > 1 && given.at(1) == u':');
    return given.isEmpty() || windowsPath || !QDir::isRelativePath(given) ? given
                                                                         : QDir::current().absoluteFilePath(given);
}

} // namespace

long ParseCommandLine(const QString &commandLine, QString &user, QString &root)
{
    const qsizetype blank = commandLine.indexOf(u' ');
    if (commandLine.isEmpty() || blank < 0)
        return invalidCommandLine;
    user = commandLine.left(blank);
    root = absoluteRoot(commandLine.mid(blank + 1)).toUpper();
    return CheckRootPath(root);
}

long CheckRootPath(const QString &root)
{
    if (root.isEmpty() || !folderExists(root))
        return rootNotFound;
    gstrRootPath = root;
    return 0;
}

long LoadUser(QString &userId, QString &userName)
{
    classObjectUsers users;
    if (const int status = users.Init(gstrRootPath, gstrFundPath); status != 0) {
        showError(1, QStringLiteral("BUDGET"), QStringLiteral("Cannot initialize Users table. error:%1").arg(status));
        return fundFileNotOpened;
    }
    users.LoginUserID = userId;
    if (users.RetrieveByLoginID() != 0 || !users.IsActive())
        return unknownUser;
    userName = users.DisplayName();
    userId = users.ID;
    // An empty setting reads as 0; anything that is not a number as well.
    gintPrintPreview = static_cast<std::int16_t>((u'0' + users.PrintPreview.trimmed()).toShort());
    return 0;
}

void ReadActiveProposal()
{
    clsProposal proposal;
    proposal.setAdoConnection(gadoConnection->dbConnection());
    if (proposal.GetActiveProposal()) {
        gstrProposalID = proposal.ProposalItem().ID;
        return;
    }
    showError(1, QStringLiteral("Active Proposal"),
              QStringLiteral("Error reading Proposal! %1%2")
                  .arg(proposal.Error().ErrorNumber())
                  .arg(proposal.Error().ErrorText()));
    gstrProposalID = QStringLiteral("1");
}

void ReadBudgetYears()
{
    clsYears years;
    years.setAdoConnection(gadoConnection->dbConnection());
    if (years.GetCurrentBudgetYear())
        gstrBudgetYearID = years.YearItem().ID;
    else
        showError(1, QStringLiteral("Budgets Years"),
                  QStringLiteral("Error reading current Budget year! ") + years.Error().ErrorText());

    if (years.GetProposedYear()) {
        gstrProposedYearID = years.YearItem().ID;
    } else {
        showError(1, QStringLiteral("Budget Years"),
                  QStringLiteral("Error reading Proposed Budget year! ") + years.Error().ErrorText());
        gstrProposedYearID = QString::number(QDate::currentDate().year() + 1);
    }

    // A district that budgets by fiscal year answers false without an error:
    // only a table that cannot be read is worth a message.
    years.Error().Clear();
    gbCalendarYear = years.CheckCalendarYear();
    if (!gbCalendarYear && years.Error().ErrorNumber() != 0)
        showError(1, QStringLiteral("Budget Years"),
                  QStringLiteral("Error reading Params Table! ") + years.Error().ErrorText());
}

long ReadFundYear(QString &message)
{
    classObjectYear year;
    year.YearNumber = QStringLiteral("0");
    if (const int status = year.Init(gstrRootPath, gstrFundPath); status != 0) {
        message = year.Message();
        return status;
    }
    if (const int status = year.RetrieveLatestYear(); status != 0) {
        message = QStringLiteral("(RetrieveLatestYear-%1)").arg(status);
        return status;
    }
    gstrYear = year.YearNumber;

    classObjectParameters parameters;
    int status = parameters.Init(gstrRootPath, GetFundDataLocation(gstrYear.toInt()));
    if (status == 0)
        status = parameters.Retrieve();
    if (status != 0) {
        message = QStringLiteral("(Params.btr-%1-%2)").arg(gstrYear).arg(status);
        return fundFileNotOpened;
    }
    gstrFirstFiscalMonth = QString::number(parameters.FirstFiscalMonth);
    return 0;
}

QString ReadDistrictName()
{
    classObjectSysParams organisation;
    if (organisation.Init(gstrRootPath, gstrFundPath) != 0 || organisation.Retrieve() != 0)
        return {};
    const QString reportName = organisation.ReportName.trimmed();
    return reportName.isEmpty() ? organisation.Name.trimmed() : reportName;
}

QString ProposalName(const QString &proposalId)
{
    clsProposal proposal;
    proposal.setAdoConnection(gadoConnection->dbConnection());
    proposal.ProposalItem().ID = proposalId;
    return proposal.Retrieve() ? proposal.ProposalItem().Name.trimmed() : QString();
}

bool OpenSession(const QString &commandLine)
{
    QString root;
    if (const long code = ParseCommandLine(commandLine, gstrUserID, root); code != 0) {
        showInvalidCommandLine(code);
        return false;
    }
    gstrFundPath = root + QStringLiteral("\\FUND");
    gstrFundDataPath = root + QStringLiteral("\\FUND\\DATA");
    if (const long code = LoadUser(gstrUserID, gstrUserName); code != 0) {
        showInvalidCommandLine(code);
        return false;
    }

    ReadActiveProposal();
    ReadBudgetYears();

    QString message;
    if (const long code = ReadFundYear(message); code != 0)
        showError(4, QStringLiteral("Error returned from Kora-Fund"),
                  QStringLiteral("Cannot find current year. error:%1 %2 Fund Description will not available.")
                      .arg(QString::number(code), message));
    gstrFundYear = gstrYear;
    gstrYear = gstrBudgetYearID;
    return true;
}

void Pause()
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 2000) {
    }
}
