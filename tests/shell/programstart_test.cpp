#include "startupfixture.h"

#include "formerrordialog.h"
#include "fundfieldvalue.h"
#include "menudefinition.h"
#include "programarguments.h"
#include "programstart.h"
#include "programtasks.h"
#include "sharedforms.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace {

// Sets an environment variable for the lifetime of the guard (unset: null value).
class ScopedEnvironment {
public:
    ScopedEnvironment(const char *name, const QByteArray &value) : name_(name), had_(qEnvironmentVariableIsSet(name))
    {
        old_ = qgetenv(name);
        if (value.isNull())
            qunsetenv(name);
        else
            qputenv(name, value);
    }
    ~ScopedEnvironment()
    {
        if (had_)
            qputenv(name_, old_);
        else
            qunsetenv(name_);
    }
    ScopedEnvironment(const ScopedEnvironment &) = delete;
    ScopedEnvironment &operator=(const ScopedEnvironment &) = delete;

private:
    const char *name_;
    bool had_;
    QByteArray old_;
};

struct UsageRun {
    std::optional<int> code;
    QString out;
    QString err;
};

UsageRun usage(const QStringList &words)
{
    UsageRun run;
    QTextStream out(&run.out);
    QTextStream err(&run.err);
    run.code = answerUsage(parseProgramArguments(QStringList{"kora-budget"} + words), out, err);
    out.flush();
    err.flush();
    return run;
}

TEST(ProgramUsage, HelpAndAnEmptyCommandLinePrintTheUsage)
{
    const UsageRun help = usage({"--help"});
    EXPECT_EQ(help.code, ProgramExit::Ok);
    EXPECT_TRUE(help.out.startsWith("Usage: kora-budget [--config FILE]")) << help.out.toStdString();
    EXPECT_TRUE(help.err.isEmpty());
    EXPECT_EQ(usage({"BUSINESS", "/srv/kora", "-h"}).code, ProgramExit::Ok);

    for (const QStringList &empty : {QStringList{}, QStringList{"--startup-timing"}, QStringList{"--config=/a.ini"}}) {
        const UsageRun run = usage(empty);
        EXPECT_EQ(run.code, ProgramExit::Usage) << empty.join(' ').toStdString();
        EXPECT_TRUE(run.err.startsWith("Usage: kora-budget")) << run.err.toStdString();
        EXPECT_TRUE(run.out.isEmpty());
    }
    const UsageRun dangling = usage({"BUSINESS", "/srv/kora", "--config"});
    EXPECT_EQ(dangling.code, ProgramExit::Usage);
    EXPECT_TRUE(dangling.err.startsWith("--config needs the configuration file after it.\n\nUsage:"));

    EXPECT_EQ(usage({"BUSINESS", "/srv/kora"}).code, std::nullopt);
    EXPECT_EQ(usage({"BUSINESS"}).code, std::nullopt) << "start-up itself reports a command line without a root";
}

// Starts the program as main does, with the per-user folders in the test's own folder.
class ProgramStartTest : public StartupTest {
protected:
    QString writeConfig(const QString &sqliteFile, const QByteArray &more = {})
    {
        const QString path = copy_.filePath("budgetdb.ini");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Database]\nBackend=sqlite\n[SQLite]\nFile=" + sqliteFile.toUtf8() + "\n" + more);
        return path;
    }
    ProgramStart startWith(const QStringList &words)
    {
        return startProgram(parseProgramArguments(QStringList{"kora-budget"} + words));
    }
    // The one message box start-up showed.
    QString shownText() const
    {
        EXPECT_EQ(messages_->shown().size(), 1u);
        return messages_->shown().empty() ? QString() : messages_->shown().front().message.text;
    }
    QString errorLog() const
    {
        QFile log(copy_.filePath("Err.txt"));
        return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
    }

    QTemporaryDir homes_;
    ScopedEnvironment noConfig_{"KORA_BUDGET_CONFIG", QByteArray()};
    ScopedEnvironment configHome_{"XDG_CONFIG_HOME", homes_.filePath("config").toUtf8()};
    ScopedEnvironment dataHome_{"XDG_DATA_HOME", homes_.filePath("data").toUtf8()};
};

TEST_F(ProgramStartTest, AConfigurationPathThatDoesNotExistIsNamedAndNothingOpens)
{
    const QString mistyped = copy_.filePath("budgetdb.ni");
    ProgramStart started = startWith({"--config", mistyped, "BUSINESS", root()});
    EXPECT_EQ(started.window, nullptr);
    EXPECT_EQ(started.exitCode, ProgramExit::Failed);
    EXPECT_EQ(shownText(), "The configuration file " + mistyped + " does not exist.");
    EXPECT_FALSE(QFileInfo::exists(mistyped));
    EXPECT_EQ(gadoConnection, nullptr);

    messages_->clear();
    const ScopedEnvironment named("KORA_BUDGET_CONFIG", mistyped.toUtf8());
    EXPECT_EQ(startWith({"BUSINESS", root()}).exitCode, ProgramExit::Failed);
    EXPECT_EQ(shownText(), "The configuration file " + mistyped + " does not exist.");
}

TEST_F(ProgramStartTest, AMissingDatabaseFileIsNamedLoggedAndNotCreated)
{
    const QString missing = copy_.filePath("typo/budget.sqlite");
    ProgramStart started = startWith({"--config", writeConfig("typo/budget.sqlite"), "BUSINESS", root()});
    EXPECT_EQ(started.window, nullptr);
    EXPECT_EQ(started.exitCode, ProgramExit::Failed);
    const QString said =
        "Error connecting to Database on PSQL2000 Server. SQLite file " + missing + ": the file does not exist.";
    EXPECT_TRUE(shownText().endsWith(said)) << shownText().toStdString();
    EXPECT_TRUE(errorLog().contains(said)) << errorLog().toStdString();
    EXPECT_FALSE(QFileInfo::exists(copy_.filePath("typo")));
    EXPECT_EQ(gcolForms, nullptr) << "start-up stopped at the database";
}

TEST_F(ProgramStartTest, ABareStartCreatesNoDefaultDatabase)
{
    ProgramStart started = startWith({"BUSINESS", root()});
    EXPECT_EQ(started.window, nullptr);
    const QString defaultFile = homes_.filePath("data/kora-budget/budget.sqlite");
    EXPECT_EQ(BudgetDbConfig::defaultSqliteFile(), defaultFile);
    EXPECT_TRUE(shownText().contains("SQLite file " + defaultFile + ": the file does not exist."))
        << shownText().toStdString();
    EXPECT_FALSE(QFileInfo::exists(homes_.filePath("data/kora-budget")));
}

TEST_F(ProgramStartTest, KoraFundTextIsReadInTheConfiguredCodePage)
{
    ProgramStart started =
        startWith({"--config", writeConfig("budget.sqlite", "[KoraFund]\nCodePage=866\n"), "BUSINESS", root()});
    ASSERT_NE(started.window, nullptr);
    EXPECT_EQ(&fundCodePage(), recman::CodePage::byName("866"));
    setFundCodePage(QStringLiteral("1252"));
}

TEST_F(ProgramStartTest, EveryMenuTaskOfTheShippedProgramIsRegisteredAndSaysWhenNotAvailable)
{
    ProgramStart started = startWith({"--config", writeConfig("budget.sqlite"), "BUSINESS", root()});
    ASSERT_NE(started.window, nullptr) << messages_->shown().size();
    EXPECT_TRUE(messages_->shown().empty());
    mdiParent &frame = started.window->frame;

    QSet<QString> asked;
    int tasks = 0;
    for (const MenuEntry &entry : frameMenu()) {
        if (!entry.task)
            continue;
        ++tasks;
        asked.insert(entry.task->name);
        EXPECT_TRUE(frame.HasTask(entry.task->kind, entry.task->name))
            << entry.name.toStdString() << " asks for " << entry.task->name.toStdString();
    }
    EXPECT_EQ(tasks, 20);
    // A row nobody asks for is a misspelt name.
    for (const ProgramTask &task : programTasks())
        EXPECT_TRUE(asked.contains(QLatin1String(task.name))) << task.name;

    // Until a task is written its item says so.
    for (const ProgramTask &task : programTasks()) {
        for (const MenuEntry &entry : frameMenu()) {
            if (!entry.task || entry.task->name != QLatin1String(task.name))
                continue;
            messages_->clear();
            frame.MenuItem(entry.name)->trigger();
            EXPECT_EQ(shownText(), QString::fromLatin1(task.title) + " is not available yet.")
                << entry.name.toStdString();
        }
    }
}

} // namespace
