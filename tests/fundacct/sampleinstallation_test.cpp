#include "currency.h"
#include "dataaccesscontrol.h"
#include "installationschema.h"
#include "sampleinstallationfixture.h"

#include <QHash>

#include <map>

using SampleTest = SampleInstallationTest;

// Every monthly summary field equals the sum of the transactions that feed it.
TEST_F(SampleTest, SummariesAgreeWithTheirTransactions)
{
    DataAccessControl transactions;
    transactions.setDdfPath(root());
    transactions.setFileName(QStringLiteral("Transactions"));
    ASSERT_EQ(transactions.Open(), 0);
    std::map<QString, Currency> fed; // "ledger|account|field"
    qint64 highestId = 0;
    for (int s = transactions.StepFirst(); s == 0; s = transactions.StepNext()) {
        const QChar ledger = transactions.FieldValue(QStringLiteral("Ledger ID")).toString().at(0);
        const QString amount =
            monthlyAmountForColumn(ledger, transactions.FieldValue(QStringLiteral("Column ID")).toString());
        ASSERT_FALSE(amount.isEmpty());
        const int month = transactions.FieldValue(QStringLiteral("Trans Date")).toString().mid(4, 2).toInt();
        fed[ledger + u'|' + transactions.FieldValue(QStringLiteral("Account Code")).toString() + u'|' +
            monthlyFieldName(month, amount)] += transactions.FieldValue(QStringLiteral("Amount 1")).value<Currency>();
        highestId = std::max(highestId, transactions.FieldValue(QStringLiteral("ID")).toLongLong());
    }
    ASSERT_GT(fed.size(), 20u);

    int checked = 0;
    for (const auto &[table, ledger] : {std::pair{"SummaryRevenue", u'R'}, std::pair{"SummaryExpenditure", u'E'},
                                        std::pair{"SummaryGeneral", u'G'}}) {
        DataAccessControl summary;
        summary.setDdfPath(root());
        summary.setFileName(QString::fromLatin1(table));
        ASSERT_EQ(summary.Open(), 0);
        for (int s = summary.StepFirst(); s == 0; s = summary.StepNext()) {
            const QString code = summary.FieldValue(QStringLiteral("Account Code")).toString();
            for (int month = 1; month <= 12; ++month) {
                for (const QString &amount : monthlyAmountNames(ledger)) {
                    const QString field = monthlyFieldName(month, amount);
                    const auto it = fed.find(QChar(ledger) + u'|' + code + u'|' + field);
                    const Currency expected = it == fed.end() ? Currency{} : it->second;
                    EXPECT_EQ(summary.FieldValue(field).value<Currency>(), expected)
                        << code.toStdString() << ' ' << field.toStdString();
                    if (it != fed.end())
                        ++checked;
                }
            }
        }
    }
    EXPECT_EQ(checked, static_cast<int>(fed.size())); // no transaction without its summary record

    DataAccessControl counters;
    counters.setDdfPath(root());
    counters.setFileName(QStringLiteral("Counters"));
    ASSERT_EQ(counters.Open(), 0);
    counters.setFieldValue(QStringLiteral("Counter Name"), QStringLiteral("detail transactions"));
    ASSERT_EQ(counters.GetEqual(), 0);
    EXPECT_EQ(counters.FieldValue(QStringLiteral("Next Value")).toLongLong(), highestId + 1);
}

TEST(SampleInstallation, ScaleOptionAndBadInput)
{
    QTemporaryDir folder;
    QString message;
    SampleSummary made;
    SampleOptions options;
    options.accounts = 300;
    options.transactions = 3000;
    ASSERT_EQ(createSampleInstallation(folder.path(), smallSampleDistrict(), options, message, &made), 0)
        << message.toStdString();
    EXPECT_EQ(made.accounts, 300);
    EXPECT_GE(made.transactions, 2700);

    SampleDistrict broken = smallSampleDistrict();
    broken.accounts.push_back(broken.accounts.front()); // duplicate account code
    EXPECT_NE(createSampleInstallation(folder.path(), broken, {}, message), 0);
    EXPECT_FALSE(message.isEmpty());
    broken.years.clear();
    EXPECT_NE(createSampleInstallation(folder.path(), broken, {}, message), 0);
}
