#include "builders.h"
#include "chart.h"

#include <QHash>
#include <QStringList>

#include <algorithm>

namespace demo::detail {

namespace {

QString pairKey(const QString &fund, QChar ledger)
{
    return fund + ledger;
}

// Builds the folders and accounts of the base chart, then the extra ones the
// options ask for. Node ids are handed out in creation order.
class ChartBuilder {
public:
    ChartBuilder(District &district, const DistrictOptions &options) : district_(district), options_(options) {}

    void build()
    {
        addBuildingsAndPrograms();
        for (const auto &fund : chart::funds()) {
            for (const QChar ledger : {u'R', u'E'}) {
                if (pairUsed(fund.id, ledger))
                    addViewNodes(fund.id, ledger);
            }
        }
        for (const auto &spec : chart::folders())
            addTreeFolder(spec);
        for (const auto &spec : chart::revenues())
            addRevenue(spec);
        for (const auto &spec : chart::functions())
            addFunction(spec);
        addExtraFolders();
        addExtraAccounts();
        std::sort(district_.accounts.begin(), district_.accounts.end(),
                  [](const Account &a, const Account &b) { return a.code < b.code; });
    }

private:
    void addBuildingsAndPrograms()
    {
        for (const auto &spec : chart::buildings())
            district_.buildings.push_back({spec.code, spec.name, spec.abbreviation});
        for (const auto &spec : chart::programs())
            district_.programs.push_back({spec.code, spec.name});
    }

    static bool pairUsed(const QString &fund, QChar ledger)
    {
        if (ledger == u'R')
            return std::any_of(chart::revenues().begin(), chart::revenues().end(),
                               [&](const auto &spec) { return fund == spec.fund; });
        return std::any_of(chart::functions().begin(), chart::functions().end(),
                           [&](const auto &spec) { return fund == spec.fund; });
    }

    // The programs the pair's accounts use, in the program table's order.
    static QStringList programsOf(const QString &fund, QChar ledger)
    {
        QStringList used;
        auto note = [&](const char *specFund, const char *program) {
            if (fund == specFund && !used.contains(program))
                used << program;
        };
        if (ledger == u'R')
            for (const auto &spec : chart::revenues())
                note(spec.fund, spec.program);
        else
            for (const auto &spec : chart::functions())
                note(spec.fund, spec.program);
        QStringList ordered;
        for (const auto &program : chart::programs())
            if (used.contains(program.code))
                ordered << program.code;
        return ordered;
    }

    int addFolder(QChar nodeType, const QString &fund, QChar ledger, int parentId, const QString &name,
                  bool forceNewPage = false)
    {
        const int id = int(district_.folders.size()) + 1;
        district_.folders.push_back({id, nodeType, fund, ledger, parentId, name, id, forceNewPage});
        return id;
    }

    void addViewNodes(const QString &fund, QChar ledger)
    {
        const QString pair = pairKey(fund, ledger);
        for (const auto &building : chart::buildings())
            nodes_[pair + u'B' + building.code] = addFolder(u'B', fund, ledger, 0, building.name);
        for (const QString &code : programsOf(fund, ledger)) {
            const auto &programs = chart::programs();
            const auto program =
                std::find_if(programs.begin(), programs.end(), [&](const auto &spec) { return code == spec.code; });
            nodes_[pair + u'P' + code] = addFolder(u'P', fund, ledger, 0, program->name);
        }
    }

    void addTreeFolder(const chart::FolderSpec &spec)
    {
        const QString pair = pairKey(spec.fund, QChar(spec.ledger));
        const QString parentKey = spec.parentKey;
        const int parentId = parentKey.isEmpty() ? 0 : nodes_.value(pair + u'T' + parentKey);
        // The general fund's expenditure sections each start a new page.
        const bool newPage = parentKey.isEmpty() && pair == QLatin1String("AE");
        nodes_[pair + u'T' + spec.key] = addFolder(u'T', spec.fund, QChar(spec.ledger), parentId, spec.name, newPage);
    }

    Account &addAccount(const QString &code, const QString &fund, QChar ledger, const QString &name,
                        const QString &stateCode, const QString &folderKey, const QString &buildingCode,
                        const QString &program)
    {
        const QString pair = pairKey(fund, ledger);
        Account account;
        account.code = code;
        account.fundId = fund;
        account.ledger = ledger;
        account.name = name;
        account.stateCode = stateCode;
        account.parentId = nodes_.value(pair + u'T' + folderKey);
        account.buildingId = nodes_.value(pair + u'B' + buildingCode);
        account.programId = nodes_.value(pair + u'P' + program);
        for (const char *retired : chart::retiredCodes()) {
            if (code == retired) {
                account.historical = true;
                account.parentId = account.buildingId = account.programId = 0;
            }
        }
        district_.accounts.push_back(std::move(account));
        return district_.accounts.back();
    }

    void addRevenue(const chart::RevenueSpec &spec)
    {
        Account &account =
            addAccount(spec.code, spec.fund, u'R', spec.name, spec.code, spec.folder, "00", spec.program);
        finish(account, std::int64_t(spec.thousands) * 1000);
    }

    void addFunction(const chart::FunctionSpec &spec)
    {
        const QString components = spec.components;
        const QStringList objectCodes = QString(spec.objects).split(u' ');
        const auto &allBuildings = chart::buildings();
        const auto schools =
            std::count_if(allBuildings.begin(), allBuildings.end(), [](const auto &b) { return *b.level != '\0'; });
        for (const QString &objectCode : objectCodes) {
            const auto &objects = chart::objects();
            const auto object =
                std::find_if(objects.begin(), objects.end(), [&](const auto &o) { return objectCode == o.code; });
            const QString base = QString(spec.fund) + spec.function + u'.' + objectCode;
            const QString stateCode = QString(spec.fund) + spec.function + u'.' + objectCode.left(2);
            const QString name = QString(spec.name) + u' ' + object->name;
            const std::int64_t typical = std::int64_t(spec.thousands) * 1000 * object->weightPercent / 100;
            auto flag = [&](Account &account) {
                account.catA = components.contains(u'A');
                account.catP = components.contains(u'P');
                account.catC = components.contains(u'C');
            };
            if (spec.placement == chart::Placement::DistrictWide) {
                Account &account = addAccount(base, spec.fund, u'E', name, stateCode, spec.folder, "00", spec.program);
                flag(account);
                finish(account, typical);
                continue;
            }
            for (const auto &building : allBuildings) {
                if (*building.level == '\0')
                    continue;
                QString folder = spec.folder;
                folder.replace(u'*', QLatin1String(building.level));
                Account &account =
                    addAccount(base + u'.' + building.code, spec.fund, u'E', name + u' ' + building.abbreviation,
                               stateCode, folder, building.code, spec.program);
                flag(account);
                finish(account, typical / schools);
            }
        }
    }

    void finish(Account &account, std::int64_t typicalDollars)
    {
        typical_[account.code] = typicalDollars;
        fillAccountFigures(account, typicalDollars, district_.years, options_.seed);
    }

    int treeFolderCount() const
    {
        return int(std::count_if(district_.folders.begin(), district_.folders.end(),
                                 [](const Folder &f) { return f.nodeType == u'T'; }));
    }

    // Extra folders nest under one new top folder of the general fund's
    // expenditure tree: groups of up to 25 cost centers each.
    void addExtraFolders()
    {
        const int extra = options_.folders - treeFolderCount();
        if (extra <= 0)
            return;
        const int root = addFolder(u'T', "A", u'E', 0, "Cost Centers", true);
        constexpr int perGroup = 25;
        int leaves = extra - 1;
        while (leaves > 0 && leaves + (leaves + perGroup - 1) / perGroup > extra - 1)
            --leaves;
        int group = 0;
        for (int leaf = 0; leaf < leaves; ++leaf) {
            if (leaf % perGroup == 0)
                group = addFolder(u'T', "A", u'E', root,
                                  QStringLiteral("Cost Center Group %1").arg(leaf / perGroup + 1, 2, 10, QChar(u'0')));
            costCenters_.push_back(
                addFolder(u'T', "A", u'E', group, QStringLiteral("Cost Center %1").arg(leaf + 1, 4, 10, QChar(u'0'))));
        }
    }

    // Extra codes copy a live template account of the same fund and ledger
    // and add a five-digit sequence: "A2110.450.02.00001".
    void addExtraAccounts()
    {
        const int base = int(district_.accounts.size());
        if (options_.accounts <= base)
            return;
        const auto generalExpenditure = [](const Account &a) { return a.fundId == u"A" && a.ledger == u'E'; };
        const int baseGeneral =
            int(std::count_if(district_.accounts.begin(), district_.accounts.end(), generalExpenditure));
        const int extraGeneral = std::clamp(options_.accounts / 2 - baseGeneral, 0, options_.accounts - base);
        const int extraOther = options_.accounts - base - extraGeneral;

        constexpr int maxTemplateName = 32; // leaves room for " CC" and the sequence
        std::vector<int> generalPool;
        std::vector<int> otherPool;
        for (int i = 0; i < base; ++i) {
            const Account &a = district_.accounts[i];
            if (a.historical || a.name.size() > maxTemplateName || a.code == QLatin1String(chart::propertyTaxCode) ||
                a.code == QLatin1String(chart::fundBalanceCode))
                continue;
            if (generalExpenditure(a)) {
                if (a.buildingId != nodes_.value(QStringLiteral("AEB00")))
                    generalPool.push_back(i);
            } else {
                otherPool.push_back(i);
            }
        }
        int sequence = 0;
        for (int k = 0; k < extraGeneral; ++k) {
            const int folder = costCenters_.empty() ? 0 : costCenters_[k % costCenters_.size()];
            addCopy(generalPool[k % generalPool.size()], ++sequence, folder);
        }
        for (int k = 0; k < extraOther; ++k)
            addCopy(otherPool[k % otherPool.size()], ++sequence, 0);
    }

    void addCopy(int templateIndex, int sequence, int folderId)
    {
        Account copy = district_.accounts[templateIndex];
        const std::int64_t typical = typical_.value(copy.code) / 20;
        const QString number = QStringLiteral("%1").arg(sequence, 5, 10, QChar(u'0'));
        copy.code += u'.' + number;
        copy.name += QLatin1String(" CC") + number;
        copy.history.clear();
        copy.currentBudget = copy.catACurBudget = copy.catPCurBudget = copy.catCCurBudget = copy.projectedAmount = {};
        if (folderId != 0)
            copy.parentId = folderId;
        district_.accounts.push_back(std::move(copy));
        finish(district_.accounts.back(), std::max<std::int64_t>(typical, 500));
    }

    District &district_;
    const DistrictOptions &options_;
    QHash<QString, int> nodes_; // pair + node type + key -> node id
    QHash<QString, std::int64_t> typical_;
    std::vector<int> costCenters_;
};

} // namespace

void addChart(District &district, const DistrictOptions &options)
{
    ChartBuilder(district, options).build();
}

} // namespace demo::detail
