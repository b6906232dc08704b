#pragma once

#include "budgetdatabase.h"
#include "classdialog.h"
#include "district.h"
#include "guiapplication.h"
#include "mdichild.h"
#include "recordingmessages.h"
#include "refusedwrites.h"
#include "testdatabases.h"
#include "treesummary.h"
#include "workeraccountcodes.h"

#include <QMdiArea>
#include <QTreeWidget>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

// The account code window on the demo district, with its dialogs answered by
// the test (fill the fields, or leave `fill` empty to cancel) and the
// selection list of Folder Adjustment answered from `choice`.
class ExplorerTest : public testdb::DatabaseTest {
protected:
    void SetUp() override
    {
        guiApplication();
        DatabaseTest::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        DbError error;
        ASSERT_TRUE(demo::populateBudgetDatabase(*db(), district(), &error)) << error.text.toStdString();
        area_ = std::make_unique<QMdiArea>();
        area_->resize(1000, 700);
        worker_ = std::make_unique<workerAccountCodes>(context());
        worker_->DoMDIChild(*area_);
        messages_->clear();
    }
    void TearDown() override
    {
        worker_.reset();
        area_.reset();
        DatabaseTest::TearDown();
    }

    AccountCodesContext context()
    {
        AccountCodesContext context;
        context.connection = db();
        context.listFunds = [](std::vector<FundEntry> &funds, QString &) {
            for (const demo::Fund &fund : district().funds)
                funds.push_back({fund.id, fund.name});
            return true;
        };
        context.chooseCodes = [this](const CodeChoiceRequest &request) {
            choiceRequest = request;
            return choice;
        };
        context.runDialog = [this](classDialog &dialog) {
            dialog.Build(1);
            dialogCaptions << dialog.windowTitle();
            if (!fill)
                return int(classDialog::Cancelled);
            fill(dialog);
            return dialog.Save() ? int(classDialog::Saved) : int(classDialog::Cancelled);
        };
        return context;
    }

    static const demo::District &district()
    {
        static const demo::District d = demo::makeDistrict();
        return d;
    }

    workerAccountCodes &worker() { return *worker_; }
    classExplorer &explorer() { return worker_->child()->Explorer(); }
    void command(const QString &key) { worker_->mwfrmChild_Command(key); }
    void select(const QString &key) { explorer().setSelectedNode(key); }
    void choose(const QString &list, const QString &key)
    {
        classDropDown &lists = worker_->child()->DropDown();
        lists.setListIndex(list, lists.KeyToIndex(list, key));
        command(list);
    }

    // The key of the tree node whose caption is `text` (codes: their code), or empty.
    QString nodeNamed(const QString &text)
    {
        for (QTreeWidgetItemIterator it(explorer().view()); *it; ++it) {
            const QString caption = (*it)->text(0);
            if (caption == text || caption.startsWith(text + QStringLiteral("  -  ")))
                return (*it)->data(0, Qt::UserRole).toString();
        }
        return {};
    }

    qint64 addFolder(qint64 parentId, const QString &name, const QString &type = QStringLiteral("T"),
                     const QString &fund = QStringLiteral("A"), const QString &ledger = QStringLiteral("E"))
    {
        clsTreeSummary store;
        store.setAdoConnection(db());
        store.TreeItem() = {.NodeType = type, .FundID = fund, .LedgerID = ledger, .ParentID = parentId, .Name = name};
        EXPECT_TRUE(store.Add()) << store.Error().ErrorText().toStdString();
        return store.TreeItem().ID;
    }

    // How many rows "<table> where ..." holds, on every backend.
    QString count(const QString &tableAndCondition)
    {
        Recordset rs;
        DbError error;
        EXPECT_TRUE(db()->open("select count(*) as n from " + tableAndCondition, rs, &error))
            << error.text.toStdString();
        return rs.atEnd() ? QString() : QString::number(rs.number("n"));
    }

    // The last message shown, as "caption|text".
    QString lastMessage() const
    {
        const auto &shown = messages_->shown();
        for (auto it = shown.rbegin(); it != shown.rend(); ++it) {
            if (it->kind == RecordingMessages::Shown::Kind::ErrorDialog)
                return it->error.title + u'|' + it->error.text;
            if (it->kind != RecordingMessages::Shown::Kind::Beep)
                return it->message.title + u'|' + it->message.text;
        }
        return {};
    }

    ScopedMessages messages_;
    std::function<void(classDialog &)> fill;
    QStringList dialogCaptions;
    std::optional<std::vector<qint64>> choice;
    CodeChoiceRequest choiceRequest;

private:
    std::unique_ptr<QMdiArea> area_;
    std::unique_ptr<workerAccountCodes> worker_;
};

// Dialog answers: the fields to type, then OK.
inline std::function<void(classDialog &)> typeFolder(const QString &name, bool forceNewPage = false)
{
    return [=](classDialog &dialog) {
        dialog.Control(QStringLiteral("txtName")).setText(name);
        dialog.Control(QStringLiteral("chkForceNewPage")).setValue(forceNewPage);
    };
}

inline std::function<void(classDialog &)> typeAccount(const QString &code, const QString &description,
                                                      const QString &state = {})
{
    return [=](classDialog &dialog) {
        dialog.Control(QStringLiteral("txtAccount")).setText(code);
        dialog.Control(QStringLiteral("txtDescription")).setText(description);
        dialog.Control(QStringLiteral("txtState")).setText(state);
    };
}
