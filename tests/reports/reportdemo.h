#pragma once

#include "adoconnection.h"
#include "appglobals.h"
#include "budgetdatabase.h"
#include "district.h"
#include "fundinstallation.h"
#include "reportpreparation.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

// The demo district's budget database (an SQLite file) and its Kora-Fund
// sample installation, made once per test binary. The start-up globals point
// at them as the program's start-up would.
class ReportDemo {
public:
    static ReportDemo &get()
    {
        static ReportDemo demo;
        demo.setGlobals();
        return demo;
    }

    const demo::District &district() const { return district_; }
    const QString &root() const { return root_; }
    const BudgetDbConfig &config() const { return config_; }
    std::shared_ptr<DbConnection> db() const { return connection_->dbConnection(); }
    const QString &problem() const { return problem_; }

    ReportEnvironment environment() const
    {
        ReportEnvironment environment;
        environment.db = db();
        environment.rootPath = root_;
        environment.fundPath = root_ + QStringLiteral("\\FUND");
        environment.proposalId = district_.activeProposal().id;
        environment.proposedYear = QString::number(district_.proposedYear().year);
        environment.calendarYear = district_.calendarYear;
        return environment;
    }

    void setGlobals() const
    {
        gstrRootPath = root_;
        gstrFundPath = root_ + QStringLiteral("\\FUND");
        gstrFundDataPath = root_ + QStringLiteral("\\FUND\\DATA");
        gstrYear = QString::number(district_.currentYear().year);
        gstrFundYear = gstrYear;
        gstrProposalID = district_.activeProposal().id;
        gstrBudgetYearID = gstrYear;
        gstrProposedYearID = QString::number(district_.proposedYear().year);
    }

    // Runs a statement on the demo database (tests put back what they change).
    void exec(const QString &sql) const { ASSERT_TRUE(db()->execute(sql)) << sql.toStdString(); }

private:
    ReportDemo() : district_(demo::makeDistrict())
    {
        root_ = folder_.filePath(QStringLiteral("kora"));
        QString message;
        if (createSampleInstallation(root_, demo::sampleDistrictOf(district_), {}, message) != 0) {
            problem_ = QStringLiteral("sample installation: ") + message;
            return;
        }
        config_.sqliteFile = folder_.filePath(QStringLiteral("budget.sqlite"));
        connection_ = std::make_unique<clsAdoConnection>();
        connection_->configure(config_);
        connection_->setSchemaPolicy(clsAdoConnection::SchemaPolicy::CreateOrUpgrade);
        DbError error;
        if (!connection_->OpenConnection())
            problem_ = connection_->Error().ErrorText();
        else if (!demo::populateBudgetDatabase(*db(), district_, &error))
            problem_ = error.text;
    }

    QTemporaryDir folder_;
    demo::District district_;
    QString root_;
    BudgetDbConfig config_;
    std::unique_ptr<clsAdoConnection> connection_;
    QString problem_;
};
