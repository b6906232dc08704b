#pragma once

#include "adoconnection.h"
#include "appglobals.h"
#include "budgetdatabase.h"
#include "district.h"
#include "errobject.h"
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
// suite and copied for every test, which may then break its copy. The
// installation's folder name is lower-case with a blank: start-up upper-cases
// the root, so every start finds the files only by case-insensitive matching.
class StartupTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        pristine_ = std::make_unique<QTemporaryDir>();
        QString message;
        ASSERT_EQ(createSampleInstallation(pristine_->filePath(QStringLiteral("kora fund")), smallSampleDistrict(), {},
                                           message),
                  0)
            << message.toStdString();
        clsAdoConnection connection;
        connection.configure(configFor(pristine_->path()));
        connection.setSchemaPolicy(clsAdoConnection::SchemaPolicy::CreateOrUpgrade);
        ASSERT_TRUE(connection.OpenConnection());
        ASSERT_TRUE(demo::populateBudgetDatabase(*connection.dbConnection(), district()));
    }
    static void TearDownTestSuite() { pristine_.reset(); }

    void SetUp() override
    {
        std::filesystem::copy(pristine_->path().toStdString(), copy_.path().toStdString(),
                              std::filesystem::copy_options::recursive);
        resetAppGlobals();
        userPrivileges().Reset();
        clsErrObject::setLogFilePath(copy_.filePath(QStringLiteral("Err.txt")));
    }
    void TearDown() override { clsErrObject::setLogFilePath(QString()); }

    static const demo::District &district()
    {
        static const demo::District made = demo::makeDistrict();
        return made;
    }
    static BudgetDbConfig configFor(const QString &folder)
    {
        BudgetDbConfig config;
        config.sqliteFile = folder + QStringLiteral("/budget.sqlite");
        return config;
    }

    QString root() const { return copy_.filePath(QStringLiteral("kora fund")); }
    QString fundFile(const char *name) const { return root() + QStringLiteral("/FUND/") + QLatin1String(name); }
    void exec(const QString &sql)
    {
        clsAdoConnection connection;
        connection.configure(configFor(copy_.path()));
        ASSERT_TRUE(connection.OpenConnection());
        ASSERT_TRUE(connection.dbConnection()->execute(sql)) << sql.toStdString();
    }

    bool start(const QString &commandLine) { return load_->Load({commandLine, configFor(copy_.path()), {}}); }
    // A frame loads once: a second start in one test needs a new one.
    void newFrame()
    {
        load_.reset();
        frame_ = std::make_unique<mdiParent>();
        load_ = std::make_unique<MainWindowLoad>(*frame_);
        resetAppGlobals();
    }
    bool startAs(const char *login) { return start(QLatin1String(login) + u' ' + root()); }

    // The error dialogs shown, as "mode|title|text".
    QStringList dialogs() const
    {
        QStringList list;
        for (const auto &item : messages_->shown()) {
            if (item.kind == RecordingMessages::Shown::Kind::ErrorDialog)
                list << QStringLiteral("%1|%2|%3").arg(item.error.mode).arg(item.error.title, item.error.text);
        }
        return list;
    }

    GuiApplicationGuard app_;
    ScopedMessages messages_;
    QTemporaryDir copy_;
    std::unique_ptr<mdiParent> frame_ = std::make_unique<mdiParent>();
    std::unique_ptr<MainWindowLoad> load_ = std::make_unique<MainWindowLoad>(*frame_);

private:
    static inline std::unique_ptr<QTemporaryDir> pristine_;
};
