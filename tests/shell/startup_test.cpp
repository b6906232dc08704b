#include "startupfixture.h"

#include "classstatusbar.h"
#include "classtoolbar.h"
#include "dates.h"
#include "formerrordialog.h"
#include "modmain.h"
#include "programarguments.h"
#include "sharedforms.h"

#include <QAction>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QToolBar>

namespace {

QString thisYearPlusOne()
{
    return QString::number(QDate::currentDate().year() + 1);
}

QString invalidCommandLineMessage(long code)
{
    return QStringLiteral("1|Kora-Budget|Application called with Invalid Command Line.  (%1)").arg(code);
}

} // namespace

TEST_F(StartupTest, FullUserStartsWithEveryGlobalSetAndNoMessage)
{
    ASSERT_TRUE(startAs("business"));
    EXPECT_TRUE(shown().empty());

    const QString upperRoot = root().toUpper();
    EXPECT_EQ(gstrRootPath, upperRoot);
    EXPECT_EQ(gstrFundPath, upperRoot + QStringLiteral("\\FUND"));
    EXPECT_EQ(gstrFundDataPath, upperRoot + QStringLiteral("\\FUND\\DATA"));
    EXPECT_EQ(gstrUserID, QStringLiteral("U001")); // the record ID, not the log-in name
    EXPECT_EQ(gstrUserName, QStringLiteral("Pat Q. Business"));
    EXPECT_EQ(gstrProposalID, district().activeProposal().id);
    EXPECT_EQ(gstrBudgetYearID, QString::number(district().currentYear().year));
    EXPECT_EQ(gstrProposedYearID, QString::number(district().proposedYear().year));
    EXPECT_FALSE(gbCalendarYear);
    EXPECT_EQ(gstrFundYear, QString::number(smallSampleDistrict().years.back()));
    EXPECT_EQ(gstrYear, gstrBudgetYearID);
    EXPECT_EQ(gstrFirstFiscalMonth, QStringLiteral("7"));
    EXPECT_EQ(gintPrintPreview, 1);

    ASSERT_NE(gcolForms, nullptr);
    EXPECT_EQ(gcolForms->Count(), 2);
    EXPECT_NE(gcolForms->ErrorDialog(), nullptr);
    EXPECT_EQ(ParentWindow(), frame_.get());
    for (QAction *item : frame_->MenuItems())
        EXPECT_TRUE(item->isEnabled()) << item->objectName().toStdString();
}

TEST_F(StartupTest, StatusBarHoldsFivePanelsInOrder)
{
    ASSERT_TRUE(startAs("BUSINESS"));
    const classStatusbar &bar = frame_->Statusbar();
    ASSERT_EQ(bar.Count(), 5);
    const struct {
        const char *key;
        QString text;
        const char *toolTip;
    } panels[] = {
        {"User", QStringLiteral("Pat Q. Business"), "User name"},
        {"Proposal", QStringLiteral(" Proposal: %1  ").arg(district().activeProposal().id), "Proposal"},
        {"Year", QStringLiteral(" Proposed Budget Year :%1").arg(district().proposedYear().year), "Fiscal year"},
        {"Status", QStringLiteral("  Open  "), "Posting status"},
        {"Date", QStringLiteral("  %1  ").arg(FormatMMDDYY(QDate::currentDate())), "System transaction date"},
    };
    int index = 1;
    for (const auto &panel : panels) {
        const QString key = QLatin1String(panel.key);
        EXPECT_EQ(bar.KeyToIndex(key), index++) << panel.key;
        EXPECT_EQ(bar.PanelText(key), panel.text) << panel.key;
        EXPECT_EQ(bar.PanelTag(key), key);
        EXPECT_EQ(bar.PanelTooltip(key), QLatin1String(panel.toolTip)) << panel.key;
    }
}

TEST_F(StartupTest, BadCommandLinesEndStartUpWithTheirCode)
{
    const struct {
        QString commandLine;
        long code;
    } cases[] = {
        {QString(), -6},
        {QStringLiteral("BUSINESS"), -6},
        {QStringLiteral("BUSINESS "), -1},
        {QStringLiteral("BUSINESS ") + root() + QStringLiteral("/missing"), -1},
        {QStringLiteral("NOBODY ") + root(), -2},
    };
    for (const auto &c : cases) {
        messages_->clear();
        resetAppGlobals();
        EXPECT_FALSE(start(c.commandLine)) << c.commandLine.toStdString();
        EXPECT_EQ(dialogs(), QStringList{invalidCommandLineMessage(c.code)}) << c.commandLine.toStdString();
    }
    EXPECT_TRUE(frame_->Statusbar().Count() == 0);
}

TEST_F(StartupTest, UnreadableUsersFileSaysSoThenEndsWith2001)
{
    ASSERT_TRUE(QFile::remove(fundFile("Users.btr")));
    EXPECT_FALSE(startAs("BUSINESS"));
    const QStringList shownDialogs = dialogs();
    ASSERT_EQ(shownDialogs.size(), 2);
    EXPECT_TRUE(shownDialogs[0].startsWith(QStringLiteral("1|BUDGET|Cannot initialize Users table. error:")))
        << shownDialogs[0].toStdString();
    EXPECT_NE(shownDialogs[0], QStringLiteral("1|BUDGET|Cannot initialize Users table. error:0"));
    EXPECT_EQ(shownDialogs[1], invalidCommandLineMessage(-2001));
}

TEST_F(StartupTest, DatabaseThatCannotOpenEndsBeforeAnythingElse)
{
    StartupSettings settings;
    settings.commandLine = QStringLiteral("BUSINESS ") + root();
    settings.config = configFor(copy_.path());
    settings.config.sqliteFile = copy_.path(); // a folder, not a database file
    EXPECT_FALSE(load_->Load(settings));
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].kind, RecordingMessages::Shown::Kind::MessageBox);
    EXPECT_EQ(gcolForms, nullptr);
    EXPECT_TRUE(gstrUserID.isEmpty());
}

TEST_F(StartupTest, MissingProposalAndYearsFallBackAndGoOn)
{
    exec(QStringLiteral("UPDATE Proposal SET Active = 'N'"));
    exec(QStringLiteral("DELETE FROM BudgetYears WHERE Status = 'P'"));
    exec(QStringLiteral("DELETE FROM BudgetYears WHERE Status = 'C'"));
    exec(QStringLiteral("DELETE FROM Parms"));
    ASSERT_TRUE(startAs("BUSINESS"));
    EXPECT_EQ(dialogs(),
              (QStringList{
                  QStringLiteral("1|Active Proposal|Error reading Proposal! 999No Active Proposal Found."),
                  QStringLiteral("1|Budgets Years|Error reading current Budget year! No Current Budget Year Found."),
                  QStringLiteral("1|Budget Years|Error reading Proposed Budget year! No Proposed Year Found."),
                  QStringLiteral("1|Budget Years|Error reading Params Table! No Parameter Found."),
              }));
    EXPECT_EQ(gstrProposalID, QStringLiteral("1"));
    EXPECT_EQ(gstrProposedYearID, thisYearPlusOne());
    EXPECT_EQ(frame_->Statusbar().PanelText(QStringLiteral("Proposal")), QStringLiteral(" Proposal: 1  "));
    EXPECT_EQ(frame_->Statusbar().PanelText(QStringLiteral("Year")),
              QStringLiteral(" Proposed Budget Year :") + thisYearPlusOne());
    EXPECT_TRUE(gstrYear.isEmpty()); // no current budget year to take over
    EXPECT_EQ(gintPrintPreview, 1);
}

TEST_F(StartupTest, CalendarYearDistrictIsReadWithoutAMessage)
{
    exec(QStringLiteral("UPDATE Parms SET CalenderYear = 'Y'"));
    ASSERT_TRUE(startAs("BUSINESS"));
    EXPECT_TRUE(dialogs().isEmpty());
    EXPECT_TRUE(gbCalendarYear);
}

TEST_F(StartupTest, MissingFundYearIsAKoraFundNoticeAndStartUpGoesOn)
{
    ASSERT_TRUE(QFile::remove(fundFile("Years.btr")));
    ASSERT_TRUE(startAs("BUSINESS"));
    ASSERT_EQ(dialogs().size(), 1);
    const QString text = dialogs()[0];
    EXPECT_TRUE(text.startsWith(QStringLiteral("4|Error returned from Kora-Fund|Cannot find current year. error:")))
        << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral(" Fund Description will not available."))) << text.toStdString();
    EXPECT_TRUE(gstrFundYear.isEmpty());
    EXPECT_EQ(gstrYear, gstrBudgetYearID);
    EXPECT_EQ(frame_->Statusbar().Count(), 5);
    EXPECT_EQ(gintPrintPreview, 1);
}

TEST_F(StartupTest, MissingParameterFileNamesTheFileAndYear)
{
    ASSERT_TRUE(QFile::remove(fundFile("FundPara.btr"))); // the fund parameters, whatever the message calls them
    ASSERT_TRUE(startAs("BUSINESS"));
    const QString year = QString::number(smallSampleDistrict().years.back());
    ASSERT_EQ(dialogs().size(), 1);
    EXPECT_TRUE(dialogs()[0].startsWith(
        QStringLiteral("4|Error returned from Kora-Fund|Cannot find current year. error:-2001 (Params.btr-%1-")
            .arg(year)))
        << dialogs()[0].toStdString();
    EXPECT_EQ(gstrFundYear, year); // the year was read before the parameters failed
    EXPECT_TRUE(gstrFirstFiscalMonth.isEmpty());
}

TEST_F(StartupTest, LimitedUserGetsOnlyTheMenusTheyHold)
{
    ASSERT_TRUE(startAs("clerk"));
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(gstrUserName, QStringLiteral("Casey Clerk"));
    EXPECT_EQ(gintPrintPreview, 1); // the record holds 0
    const QStringList granted{QStringLiteral("mnuFileProposedBudget"), QStringLiteral("mnuReportBudgetStatus"),
                              QStringLiteral("mnuReportRevenueStatus"), QStringLiteral("mnuChooseProposal")};
    for (QAction *item : frame_->MenuItems()) {
        const QString name = item->objectName();
        const bool keyed = !menuPrivilegeKey(name).isEmpty();
        EXPECT_EQ(item->isEnabled(), !keyed || granted.contains(name)) << name.toStdString();
    }
    // A key taken away ("Granted" N) and a submenu's entries stay locked.
    EXPECT_FALSE(frame_->MenuItem(QStringLiteral("mnuInitializeBudget"))->isEnabled());
    EXPECT_FALSE(frame_->MenuItem(QStringLiteral("mnuChartsRevenue"))->isEnabled());
    EXPECT_TRUE(frame_->MenuItem(QStringLiteral("mnuFileExit"))->isEnabled());
}

TEST_F(StartupTest, UnreadablePrivilegesLockEveryKeyedItem)
{
    ASSERT_TRUE(QFile::remove(fundFile("AppPrivDef.btr")));
    ASSERT_TRUE(startAs("BUSINESS"));
    ASSERT_EQ(dialogs().size(), 1);
    EXPECT_TRUE(dialogs()[0].startsWith(QStringLiteral("4|Error returned from Kora-Fund|")));
    EXPECT_FALSE(frame_->MenuItem(QStringLiteral("mnuMaintProposal"))->isEnabled());
    EXPECT_TRUE(frame_->MenuItem(QStringLiteral("mnuHelpAbout"))->isEnabled());
}

TEST_F(StartupTest, ClosingTheFrameUnloadsSharedWindowsAndTheConnection)
{
    ASSERT_TRUE(startAs("BUSINESS"));
    const QPointer<formErrorDialog> dialog = gcolForms->ErrorDialog();
    const QPointer<formErrorLog> log = load_->ErrorLog();
    ASSERT_TRUE(dialog && log);
    frame_->close();
    EXPECT_EQ(gcolForms, nullptr);
    EXPECT_TRUE(dialog.isNull());
    EXPECT_TRUE(log.isNull());
    EXPECT_EQ(gadoConnection, nullptr);
    EXPECT_EQ(ParentWindow(), nullptr);
}

TEST(CommandLine, UserIsBeforeTheFirstBlankAndTheRootIsTheRestUpperCased)
{
    resetAppGlobals();
    QString user, root;
    EXPECT_EQ(ParseCommandLine(QStringLiteral("JDOE c:"), user, root), 0);
    EXPECT_EQ(user, QStringLiteral("JDOE"));
    EXPECT_EQ(root, QStringLiteral("C:"));
    EXPECT_EQ(gstrRootPath, QStringLiteral("C:"));

    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("two  blanks/Kora")));
    const QString spaced = dir.path() + QStringLiteral("/two  blanks/kora");
    EXPECT_EQ(ParseCommandLine(QStringLiteral("jdoe ") + spaced, user, root), 0);
    EXPECT_EQ(user, QStringLiteral("jdoe"));
    EXPECT_EQ(root, spaced.toUpper());

    EXPECT_EQ(ParseCommandLine(QStringLiteral("JDOE"), user, root), -6);
    EXPECT_EQ(CheckRootPath(QString()), -1);
    EXPECT_EQ(CheckRootPath(dir.path() + QStringLiteral("/TWO  BLANKS/KORA/NONE")), -1);
    QFile file(dir.path() + QStringLiteral("/plain.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(CheckRootPath(file.fileName().toUpper()), -1); // a file is not a root
}

TEST(CommandLine, ProgramOptionsAreTakenOutAndTheRestJoinedByBlanks)
{
    const ProgramArguments plain = parseProgramArguments({QStringLiteral("kora-budget"), QStringLiteral("BUSINESS"),
                                                          QStringLiteral("/srv/kora"), QStringLiteral("fund")});
    EXPECT_EQ(plain.commandLine, QStringLiteral("BUSINESS /srv/kora fund"));
    EXPECT_FALSE(plain.startupTiming);

    const ProgramArguments options = parseProgramArguments(
        {QStringLiteral("kora-budget"), QStringLiteral("--config"), QStringLiteral("/etc/b.ini"),
         QStringLiteral("BUSINESS"), QStringLiteral("--startup-timing"), QStringLiteral("/srv/kora")});
    EXPECT_EQ(options.commandLine, QStringLiteral("BUSINESS /srv/kora"));
    EXPECT_EQ(options.configPath, QStringLiteral("/etc/b.ini"));
    EXPECT_TRUE(options.startupTiming);

    const ProgramArguments joined = parseProgramArguments(
        {QStringLiteral("kora-budget"), QStringLiteral("--config=/etc/c.ini"), QStringLiteral("BUSINESS")});
    EXPECT_EQ(joined.commandLine, QStringLiteral("BUSINESS"));
    EXPECT_EQ(joined.configPath, QStringLiteral("/etc/c.ini"));
}

TEST(Privileges, UndefinedKeysStayOpenDefinedOnesNeedHolding)
{
    guiApplication();
    QTemporaryDir dir;
    QString message;
    ASSERT_EQ(createSampleInstallation(dir.path(), smallSampleDistrict(), {}, message), 0);
    BudgetPrivileges privileges;
    ASSERT_EQ(privileges.Load(dir.path(), dir.path() + QStringLiteral("\\FUND"), QStringLiteral("U002")), 0);
    EXPECT_TRUE(privileges.Allows(QStringLiteral("mnuChooseProposal")));
    EXPECT_TRUE(privileges.Allows(QStringLiteral("MNUCHOOSEPROPOSAL")));
    EXPECT_FALSE(privileges.Allows(QStringLiteral("mnuMaintProposal")));
    EXPECT_TRUE(privileges.Allows(QStringLiteral("mnuNotDefinedAnywhere")));
    EXPECT_TRUE(privileges.Allows(QString()));
    // FUND's keys are not BUDGET's: the clerk's all-privileges there gives nothing here.
    EXPECT_TRUE(privileges.Allows(QStringLiteral("mnuPostJournal")));

    QToolBar bar;
    classToolbar toolbar;
    toolbar.Init(&bar);
    toolbar.AddButton(QStringLiteral("Save"), QStringLiteral("mnuMaintProposal"), QString(), QStringLiteral("Save"));
    toolbar.AddButton(QStringLiteral("Print"), QString(), QString(), QStringLiteral("Print"));
    QWidget control;
    userPrivileges() = privileges;
    LockToolbar(toolbar);
    LockControl(control, QStringLiteral("mnuMaintFundBalances"));
    EXPECT_FALSE(toolbar.ButtonEnabled(QStringLiteral("Save")));
    EXPECT_TRUE(toolbar.ButtonEnabled(QStringLiteral("Print")));
    EXPECT_FALSE(control.isEnabled());
    userPrivileges().Reset();
}
