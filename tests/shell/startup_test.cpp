#include "startupfixture.h"

#include "classstatusbar.h"
#include "classtoolbar.h"
#include "dates.h"
#include "formerrordialog.h"
#include "modmain.h"
#include "programarguments.h"
#include "securityrecords.h"
#include "sharedforms.h"
#include "twips.h"

#include <QAction>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QPointer>
#include <QStatusBar>
#include <QToolBar>

namespace {

QString nextCalendarYear()
{
    return QString::number(QDate::currentDate().year() + 1);
}

QString invalidCommandLineMessage(long code)
{
    return QStringLiteral("1|Kora-Budget|Application called with Invalid Command Line.  (%1)").arg(code);
}

} // namespace

TEST_F(StartupTest, FullUserStartsWithEveryGlobalAndPanelSetAndNoMessage)
{
    ASSERT_TRUE(startAs("business"));
    EXPECT_TRUE(messages_->shown().empty());
    const QString upperRoot = root().toUpper();
    EXPECT_EQ(gstrRootPath, upperRoot);
    EXPECT_EQ(gstrFundPath, upperRoot + QStringLiteral("\\FUND"));
    EXPECT_EQ(gstrFundDataPath, upperRoot + QStringLiteral("\\FUND\\DATA"));
    EXPECT_EQ(gstrUserID, QStringLiteral("U001")); // the record ID, not the log-in name
    EXPECT_EQ(gstrBudgetYearID, QString::number(district().currentYear().year));
    EXPECT_FALSE(gbCalendarYear);
    EXPECT_EQ(gstrFundYear, QString::number(smallSampleDistrict().years.back()));
    EXPECT_EQ(gstrYear, gstrBudgetYearID);
    EXPECT_EQ(gstrFirstFiscalMonth, QStringLiteral("7"));
    EXPECT_EQ(gintPrintPreview, 1);
    ASSERT_NE(gcolForms, nullptr);
    EXPECT_NE(gcolForms->ErrorDialog(), nullptr);
    EXPECT_EQ(ParentWindow(), frame_.get());

    const classStatusbar &bar = frame_->Statusbar();
    const QString panels[][3] = {
        {"User", "Pat Q. Business", "User name"},
        {"Proposal", QStringLiteral(" Proposal: %1  ").arg(district().activeProposal().id), "Proposal"},
        {"Year", QStringLiteral(" Proposed Budget Year :%1").arg(district().proposedYear().year), "Fiscal year"},
        {"Status", "  Open  ", "Posting status"},
        {"Date", QStringLiteral("  %1  ").arg(FormatMMDDYY(QDate::currentDate())), "System transaction date"},
    };
    ASSERT_EQ(bar.Count(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(bar.KeyToIndex(panels[i][0]), i + 1);
        EXPECT_EQ(bar.PanelTag(panels[i][0]), panels[i][0]);
        EXPECT_EQ(bar.PanelText(panels[i][0]), panels[i][1]);
        EXPECT_EQ(bar.PanelTooltip(panels[i][0]), panels[i][2]);
    }

    // The user's name sits at the left and takes the spare width; the others are
    // centred in panels sized to their text, never narrower than their minimum.
    const std::pair<const char *, int> layout[] = {
        {"User", 620}, {"Proposal", 50}, {"Year", 20}, {"Status", 20}, {"Date", 20}};
    frame_->resize(1000, 600);
    frame_->show();
    frame_->statusBar()->layout()->activate();
    for (const auto &[key, minTwips] : layout) {
        const auto *panel = frame_->statusBar()->findChild<QLabel *>(QLatin1String(key));
        ASSERT_NE(panel, nullptr) << key;
        EXPECT_EQ(panel->minimumWidth(), std::max(twipsToPixels(minTwips), panel->minimumSizeHint().width())) << key;
        EXPECT_EQ(int(panel->alignment() & Qt::AlignHorizontal_Mask),
                  int(QLatin1String(key) == u"User" ? Qt::AlignLeft : Qt::AlignHCenter))
            << key;
        if (QLatin1String(key) != u"User")
            EXPECT_LE(panel->width(), panel->sizeHint().width() + 1) << key;
    }
    EXPECT_GT(frame_->statusBar()->findChild<QLabel *>(QStringLiteral("User"))->width(), 500);
}

TEST_F(StartupTest, TheTitleNamesDistrictDatabaseAndProposal)
{
    ASSERT_TRUE(startAs("BUSINESS"));
    const SampleDistrict &fund = smallSampleDistrict();
    const QString organisation = fund.reportName.isEmpty() ? fund.name : fund.reportName;
    ASSERT_FALSE(organisation.isEmpty());
    EXPECT_EQ(
        frame_->windowTitle(),
        QStringLiteral("Kora-Budget - %1 - budget.sqlite - %2").arg(organisation, district().activeProposal().name));

    // What cannot be read is left out rather than guessed.
    ASSERT_TRUE(QFile::remove(fundFile("Params.btr")));
    exec(QStringLiteral("UPDATE Proposal SET Active = 'N'"));
    newFrame();
    ASSERT_TRUE(startAs("BUSINESS"));
    EXPECT_EQ(frame_->windowTitle(), QStringLiteral("Kora-Budget - budget.sqlite - ") + district().proposals[0].name);
    EXPECT_EQ(district().proposals[0].id, QStringLiteral("1"));
}

namespace {

// The vertical lines drawn across the row y between x0 and x1 of an image of the bar.
int linesBetween(const QImage &image, int x0, int x1, int y, const QColor &background)
{
    int lines = 0;
    bool inLine = false;
    for (int x = std::max(0, x0); x <= std::min(image.width() - 1, x1); ++x) {
        const QColor c = image.pixelColor(x, y);
        const bool line = std::abs(c.lightness() - background.lightness()) > 12;
        if (line && !inLine)
            ++lines;
        inLine = line;
    }
    return lines;
}

} // namespace

TEST_F(StartupTest, StatusPanelsHaveOneDividerAndRoomForTheirTextsAtTheMinimumWidth)
{
    ASSERT_TRUE(startAs("BUSINESS"));
    frame_->show();
    frame_->resize(1, frame_->height()); // as narrow as the window goes
    QStatusBar *bar = frame_->statusBar();
    bar->layout()->activate();
    QList<QLabel *> panels;
    for (const char *key : {"User", "Proposal", "Year", "Status", "Date"})
        panels << bar->findChild<QLabel *>(QLatin1String(key));
    for (QLabel *panel : panels) {
        const int textWidth = panel->fontMetrics().horizontalAdvance(panel->text());
        EXPECT_GE(panel->contentsRect().width(), textWidth) << panel->objectName().toStdString();
        EXPECT_LE(panel->geometry().right(), bar->width()) << panel->objectName().toStdString();
    }

    frame_->resize(1000, 600);
    bar->layout()->activate();
    const QImage image = bar->grab().toImage();
    const QColor background = bar->palette().color(QPalette::Window);
    for (qsizetype i = 0; i + 1 < panels.size(); ++i) {
        const QRect left = panels[i]->geometry();
        const QRect right = panels[i + 1]->geometry();
        // From the last text pixel of one panel to the first of the next.
        const int from = left.left() + panels[i]->contentsMargins().left() +
                         panels[i]->fontMetrics().horizontalAdvance(panels[i]->text()) + 2;
        const int to = right.left() +
                       (right.width() - panels[i + 1]->fontMetrics().horizontalAdvance(panels[i + 1]->text())) / 2 - 2;
        EXPECT_EQ(linesBetween(image, std::max(from, left.right() - 6), to, left.center().y(), background), 1)
            << panels[i]->objectName().toStdString() << " | " << panels[i + 1]->objectName().toStdString();
    }
}

TEST_F(StartupTest, FatalFailuresEndStartUpWithTheirCode)
{
    const std::pair<QString, long> cases[] = {
        {QString(), -6},
        {QStringLiteral("BUSINESS"), -6},
        {QStringLiteral("BUSINESS "), -1},
        {QStringLiteral("BUSINESS ") + root() + QStringLiteral("/missing"), -1},
        {QStringLiteral("NOBODY ") + root(), -2},
    };
    for (const auto &[commandLine, code] : cases) {
        messages_->clear();
        EXPECT_FALSE(start(commandLine)) << commandLine.toStdString();
        EXPECT_EQ(dialogs(), QStringList{invalidCommandLineMessage(code)}) << commandLine.toStdString();
    }
    EXPECT_EQ(frame_->Statusbar().Count(), 0);

    messages_->clear();
    ASSERT_TRUE(QFile::remove(fundFile("Users.btr")));
    EXPECT_FALSE(startAs("BUSINESS"));
    ASSERT_EQ(dialogs().size(), 2);
    EXPECT_TRUE(dialogs()[0].startsWith(QStringLiteral("1|BUDGET|Cannot initialize Users table. error:")));
    EXPECT_NE(dialogs()[0], QStringLiteral("1|BUDGET|Cannot initialize Users table. error:0"));
    EXPECT_EQ(dialogs()[1], invalidCommandLineMessage(-2001));
}

TEST_F(StartupTest, DatabaseThatCannotOpenEndsBeforeAnythingElse)
{
    BudgetDbConfig folderNotFile = configFor(copy_.path());
    folderNotFile.sqliteFile = copy_.path();
    EXPECT_FALSE(load_->Load({QStringLiteral("BUSINESS ") + root(), folderNotFile, {}}));
    ASSERT_EQ(messages_->shown().size(), 1u);
    EXPECT_EQ(messages_->shown()[0].kind, RecordingMessages::Shown::Kind::MessageBox);
    EXPECT_EQ(gcolForms, nullptr);
    EXPECT_TRUE(gstrUserID.isEmpty());
}

TEST_F(StartupTest, MissingProposalYearsAndParametersFallBackAndGoOn)
{
    exec(QStringLiteral("UPDATE Proposal SET Active = 'N'"));
    exec(QStringLiteral("DELETE FROM BudgetYears"));
    exec(QStringLiteral("DELETE FROM Parms"));
    ASSERT_TRUE(startAs("BUSINESS"));
    EXPECT_EQ(dialogs(),
              (QStringList{
                  QStringLiteral("1|Active Proposal|Error reading Proposal! 999No Active Proposal Found."),
                  QStringLiteral("1|Budgets Years|Error reading current Budget year! No Current Budget Year Found."),
                  QStringLiteral("1|Budget Years|Error reading Proposed Budget year! No Proposed Year Found."),
                  QStringLiteral("1|Budget Years|Error reading Params Table! No Parameter Found."),
              }));
    EXPECT_EQ(gstrProposedYearID, nextCalendarYear());
    EXPECT_EQ(frame_->Statusbar().PanelText(QStringLiteral("Proposal")), QStringLiteral(" Proposal: 1  "));
    EXPECT_EQ(frame_->Statusbar().PanelText(QStringLiteral("Year")),
              QStringLiteral(" Proposed Budget Year :") + nextCalendarYear());
    EXPECT_EQ(gintPrintPreview, 1);
}

TEST_F(StartupTest, CalendarYearDistrictIsReadWithoutAMessage)
{
    exec(QStringLiteral("UPDATE Parms SET CalenderYear = 'Y'"));
    ASSERT_TRUE(startAs("BUSINESS"));
    EXPECT_TRUE(dialogs().isEmpty());
    EXPECT_TRUE(gbCalendarYear);
}

TEST_F(StartupTest, MissingFundYearOrParametersIsAKoraFundNoticeAndStartUpGoesOn)
{
    const QString year = QString::number(smallSampleDistrict().years.back());
    const QString notice = QStringLiteral("4|Error returned from Kora-Fund|Cannot find current year. error:");
    ASSERT_TRUE(QFile::remove(fundFile("FundPara.btr"))); // the fund parameters, whatever the message calls them
    ASSERT_TRUE(startAs("BUSINESS"));
    ASSERT_EQ(dialogs().size(), 1);
    EXPECT_TRUE(dialogs()[0].startsWith(notice + QStringLiteral("-2001 (Params.btr-%1-").arg(year)));
    EXPECT_TRUE(dialogs()[0].endsWith(QStringLiteral(" Fund Description will not available.")));
    EXPECT_EQ(gstrFundYear, year); // read before the parameters failed

    messages_->clear();
    ASSERT_TRUE(QFile::remove(fundFile("Years.btr")));
    newFrame();
    ASSERT_TRUE(startAs("BUSINESS"));
    ASSERT_EQ(dialogs().size(), 1);
    EXPECT_TRUE(dialogs()[0].startsWith(notice)) << dialogs()[0].toStdString();
    EXPECT_TRUE(gstrFundYear.isEmpty());
    EXPECT_EQ(gstrYear, gstrBudgetYearID);
    EXPECT_EQ(gintPrintPreview, 1);
}

TEST_F(StartupTest, LimitedUserGetsOnlyTheMenusTheyHold)
{
    ASSERT_TRUE(startAs("clerk"));
    EXPECT_TRUE(messages_->shown().empty());
    EXPECT_EQ(gstrUserName, QStringLiteral("Casey Clerk"));
    EXPECT_EQ(gintPrintPreview, 1); // the record holds 0
    const QStringList granted{QStringLiteral("mnuFileProposedBudget"), QStringLiteral("mnuReportBudgetStatus"),
                              QStringLiteral("mnuReportRevenueStatus"), QStringLiteral("mnuChooseProposal")};
    const QStringList inert{QStringLiteral("mnuReportsCustomerState"), QStringLiteral("mnuMaintTaxRate"),
                            QStringLiteral("mnuRefresh")};
    for (QAction *item : frame_->MenuItems()) {
        const QString name = item->objectName();
        const bool open = menuPrivilegeKey(name).isEmpty() ? !inert.contains(name) : granted.contains(name);
        EXPECT_EQ(item->isEnabled(), open) << name.toStdString();
    }
    // Taken away ("Granted" N), a submenu's entry, and an item without a key.
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
    frame_->close();
    EXPECT_EQ(gcolForms, nullptr);
    EXPECT_TRUE(dialog.isNull());
    EXPECT_TRUE(log.isNull());
    EXPECT_EQ(gadoConnection, nullptr);
    EXPECT_EQ(ParentWindow(), nullptr);
}

TEST(CommandLine, UserBeforeTheFirstBlankRootTheRestUpperCased)
{
    QString user, root;
    EXPECT_EQ(ParseCommandLine(QStringLiteral("JDOE c:"), user, root), 0);
    EXPECT_EQ(user + u'|' + root + u'|' + gstrRootPath, QStringLiteral("JDOE|C:|C:"));

    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("two  blanks/Kora")));
    const QString spaced = dir.path() + QStringLiteral("/two  blanks/kora");
    EXPECT_EQ(ParseCommandLine(QStringLiteral("jdoe ") + spaced, user, root), 0);
    EXPECT_EQ(user + u'|' + root, QStringLiteral("jdoe|") + spaced.toUpper());

    // A root relative to the working folder is made whole before it is upper-cased.
    const QString working = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.path()));
    EXPECT_EQ(ParseCommandLine(QStringLiteral("jdoe two  blanks/kora"), user, root), 0);
    QDir::setCurrent(working);
    EXPECT_EQ(root, spaced.toUpper());

    EXPECT_EQ(ParseCommandLine(QStringLiteral("JDOE"), user, root), -6);
    EXPECT_EQ(CheckRootPath(spaced + QStringLiteral("/NONE")), -1);
    QFile file(dir.filePath(QStringLiteral("plain.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(CheckRootPath(file.fileName().toUpper()), -1); // a file is not a root
}

TEST(CommandLine, ProgramOptionsAreTakenOutAndTheRestJoinedByBlanks)
{
    const ProgramArguments parsed = parseProgramArguments(
        {"kora-budget", "--config", "/etc/b.ini", "BUSINESS", "--startup-timing", "/srv/kora", "fund"});
    EXPECT_EQ(parsed.commandLine, QStringLiteral("BUSINESS /srv/kora fund"));
    EXPECT_EQ(parsed.configPath, QStringLiteral("/etc/b.ini"));
    EXPECT_TRUE(parsed.startupTiming);
    const ProgramArguments joined = parseProgramArguments({"kora-budget", "--config=/etc/c.ini", "BUSINESS"});
    EXPECT_EQ(joined.commandLine + u'|' + joined.configPath, QStringLiteral("BUSINESS|/etc/c.ini"));
    EXPECT_FALSE(joined.startupTiming);
}

TEST_F(StartupTest, InactiveUserIsRefusedAsAnUnknownOne)
{
    classObjectUsers users;
    ASSERT_EQ(users.Init(root(), root() + QStringLiteral("\\FUND")), 0);
    users.ID = QStringLiteral("U001");
    ASSERT_EQ(users.Retrieve(), 0);
    users.Active = QStringLiteral("N");
    ASSERT_EQ(users.Update(), 0);
    EXPECT_FALSE(startAs("BUSINESS"));
    EXPECT_EQ(dialogs(), QStringList{invalidCommandLineMessage(-2)});
    EXPECT_EQ(frame_->Statusbar().Count(), 0);
}

TEST_F(StartupTest, AnItemWhoseKeyTheInstallationDoesNotDefineStaysLocked)
{
    classObjectAppPrivDef definitions;
    ASSERT_EQ(definitions.Init(root(), root() + QStringLiteral("\\FUND")), 0);
    definitions.ApplicationID = QStringLiteral("BUDGET");
    definitions.PrivilegeKey = QStringLiteral("mnuInitializeBudget");
    ASSERT_EQ(definitions.Delete(), 0);
    ASSERT_TRUE(startAs("BUSINESS")); // holds "All Privileges"
    EXPECT_FALSE(frame_->MenuItem(QStringLiteral("mnuInitializeBudget"))->isEnabled());
    EXPECT_TRUE(frame_->MenuItem(QStringLiteral("mnuChooseProposal"))->isEnabled());
}

TEST(Privileges, DeniedUnlessHeldWhateverTheCase)
{
    guiApplication();
    QTemporaryDir dir;
    QString message;
    ASSERT_EQ(createSampleInstallation(dir.path(), smallSampleDistrict(), {}, message), 0);
    ASSERT_EQ(userPrivileges().Load(dir.path(), dir.path() + QStringLiteral("\\FUND"), QStringLiteral("U002")), 0);
    EXPECT_TRUE(userPrivileges().Allows(QStringLiteral("MNUCHOOSEPROPOSAL")));
    EXPECT_TRUE(userPrivileges().Allows(QString())); // an item without a key
    EXPECT_FALSE(userPrivileges().Allows(QStringLiteral("mnuNotDefinedAnywhere")));
    // Defined for FUND only, where the clerk holds everything: nothing to do with BUDGET.
    EXPECT_FALSE(userPrivileges().Allows(QStringLiteral("mnuPostJournal")));
    EXPECT_EQ(menuPrivilegeKey(QStringLiteral("MNUCHARTSREVENUE")), QStringLiteral("mnuReportCharts"));

    QToolBar bar;
    classToolbar toolbar;
    toolbar.Init(&bar);
    toolbar.AddButton(QStringLiteral("Save"), QStringLiteral("mnuMaintProposal"), QString(), QStringLiteral("Save"));
    toolbar.AddButton(QStringLiteral("Choose"), QStringLiteral("mnuchooseproposal"), QString(),
                      QStringLiteral("Choose"));
    toolbar.AddButton(QStringLiteral("Print"), QString(), QString(), QStringLiteral("Print"));
    QWidget control;
    LockToolbar(toolbar);
    LockControl(control, QStringLiteral("mnuMaintFundBalances"));
    EXPECT_FALSE(toolbar.ButtonEnabled(QStringLiteral("Save")));
    EXPECT_TRUE(toolbar.ButtonEnabled(QStringLiteral("Choose")));
    EXPECT_TRUE(toolbar.ButtonEnabled(QStringLiteral("Print")));
    EXPECT_FALSE(control.isEnabled());

    // A scope locks only the items whose names begin with it.
    QWidget window;
    auto *proposal = new QAction(&window);
    proposal->setObjectName(QStringLiteral("mnuMaintProposal"));
    auto *tax = new QAction(&window);
    tax->setObjectName(QStringLiteral("mnuReportTax"));
    LockMenus(window, QStringLiteral("MNUMAINT"));
    EXPECT_FALSE(proposal->isEnabled());
    EXPECT_TRUE(tax->isEnabled());

    // Before a user is known, and after the files could not be read, nothing keyed is open.
    userPrivileges().Reset();
    EXPECT_FALSE(userPrivileges().Allows(QStringLiteral("mnuChooseProposal")));
    EXPECT_NE(userPrivileges().Load(dir.path() + QStringLiteral("/none"), dir.path(), QStringLiteral("U002")), 0);
    EXPECT_FALSE(userPrivileges().Allows(QStringLiteral("mnuChooseProposal")));
}
