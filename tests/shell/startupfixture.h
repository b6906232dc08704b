#pragma once

#include "adoconnection.h"
#include "appglobals.h"
#include "budgetdatabase.h"
#include "district.h"
#include "guiapplication.h"
#include "mainwindowload.h"
#include "mdiparent.h"
#include "menusecurity.h"
#include "recordingmessages.h"
#include "sampleinstallation.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

// A demo budget database and a sample Kora-Fund installation, made once per
// suite and copied for every test, so a test may break its copy (remove a
// file, empty a table) without disturbing the next. The installation's
// folder name has lower-case letters: start-up upper-cases the root, so every
// start finds its files only by case-insensitive matching.
class StartupTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        pristine_ = std::make_unique<QTemporaryDir>();
        ASSERT_TRUE(pristine_->isValid());
        QString message;
        ASSERT_EQ(createSampleInstallation(pristine_->filePath(QStringLiteral("kora fund")), smallSampleDistrict(), {},
                                           message),
                  0)
            << message.toStdString();
        clsAdoConnection connection;
        connection.configure(configFor(pristine_->path()));
        ASSERT_TRUE(connection.OpenConnection()) << connection.driverMessage().toStdString();
        DbError error;
        ASSERT_TRUE(demo::populateBudgetDatabase(*connection.dbConnection(), district(), &error))
            << error.text.toStdString();
        connection.CloseConnection();
    }
    static void TearDownTestSuite() { pristine_.reset(); }

    void SetUp() override
    {
        ASSERT_TRUE(copy_.isValid());
        std::filesystem::copy(pristine_->path().toStdString(), copy_.path().toStdString(),
                              std::filesystem::copy_options::recursive);
        resetAppGlobals();
        userPrivileges().Reset();
        frame_ = std::make_unique<mdiParent>();
        load_ = std::make_unique<MainWindowLoad>(*frame_);
    }
    void TearDown() override
    {
        load_.reset();
        frame_.reset();
    }

    static const demo::District &district()
    {
        static const demo::District made = demo::makeDistrict();
        return made;
    }
    static BudgetDbConfig configFor(const QString &folder)
    {
        BudgetDbConfig config;
        config.backend = BudgetDbConfig::Backend::SQLite;
        config.sqliteFile = folder + QStringLiteral("/budget.sqlite");
        return config;
    }

    QString root() const { return copy_.filePath(QStringLiteral("kora fund")); }
    QString fundFile(const char *name) const { return root() + QStringLiteral("/FUND/") + QLatin1String(name); }
    // Runs a statement on this test's budget database before start-up.
    void exec(const QString &sql)
    {
        clsAdoConnection connection;
        connection.configure(configFor(copy_.path()));
        ASSERT_TRUE(connection.OpenConnection());
        DbError error;
        ASSERT_TRUE(connection.dbConnection()->execute(sql, nullptr, &error)) << error.text.toStdString();
        connection.CloseConnection();
    }

    bool start(const QString &commandLine)
    {
        StartupSettings settings;
        settings.commandLine = commandLine;
        settings.config = configFor(copy_.path());
        return load_->Load(settings);
    }
    bool startAs(const char *login) { return start(QLatin1String(login) + u' ' + root()); }

    const std::vector<RecordingMessages::Shown> &shown() const { return messages_->shown(); }
    // The error dialogs shown, as "mode|title|text".
    QStringList dialogs() const
    {
        QStringList list;
        for (const auto &item : shown()) {
            if (item.kind == RecordingMessages::Shown::Kind::ErrorDialog)
                list << QStringLiteral("%1|%2|%3").arg(item.error.mode).arg(item.error.title, item.error.text);
        }
        return list;
    }

    GuiApplicationGuard app_;
    ScopedMessages messages_;
    QTemporaryDir copy_;
    std::unique_ptr<mdiParent> frame_;
    std::unique_ptr<MainWindowLoad> load_;

private:
    static inline std::unique_ptr<QTemporaryDir> pristine_;
};
