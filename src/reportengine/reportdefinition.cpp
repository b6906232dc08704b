#include "reportdefinition.h"

#include "reportdefinitioncheck.h"
#include "reportdefinitiondata.h"
#include "reportdefinitionparser.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

struct ReportDefinition::Impl {
    QString path;
    QString label; // the file's name, for messages
    ReportDefinitionData data;
    std::vector<std::unique_ptr<ReportDefinition>> subreports;
    ReportDefinition *parent = nullptr;

    ReportDefinition &root(ReportDefinition &self) { return parent ? *parent : self; }
    const ReportDefinition &root(const ReportDefinition &self) const { return parent ? *parent : self; }
};

namespace {

std::vector<const ReportDefinitionData *> subreportData(const std::vector<std::unique_ptr<ReportDefinition>> &subs)
{
    std::vector<const ReportDefinitionData *> data;
    for (const auto &sub : subs)
        data.push_back(&sub->data());
    return data;
}

DefinitionTable *findTable(ReportDefinitionData &data, const QString &alias)
{
    if (data.main.alias.compare(alias, Qt::CaseInsensitive) == 0)
        return &data.main;
    for (DefinitionTable &table : data.lookups) {
        if (table.alias.compare(alias, Qt::CaseInsensitive) == 0)
            return &table;
    }
    return nullptr;
}

} // namespace

ReportDefinition::ReportDefinition() : impl_(std::make_unique<Impl>())
{
}

ReportDefinition::~ReportDefinition() = default;

std::unique_ptr<ReportDefinition> ReportDefinition::load(const QString &path, QString &error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("Cannot read the report definition %1: %2").arg(path, file.errorString());
        return nullptr;
    }
    const QString text = QString::fromUtf8(file.readAll());
    std::unique_ptr<ReportDefinition> definition(new ReportDefinition());
    Impl &impl = *definition->impl_;
    impl.path = path;
    impl.label = QFileInfo(path).fileName();
    std::vector<ParsedSubreport> parsed;
    if (!parseReportDefinition(path, text, impl.data, parsed, error))
        return nullptr;
    std::vector<ReportDefinitionData *> subData;
    for (ParsedSubreport &sub : parsed) {
        std::unique_ptr<ReportDefinition> subreport(new ReportDefinition());
        subreport->impl_->path = path;
        subreport->impl_->label = impl.label;
        subreport->impl_->data = std::move(sub.data);
        subreport->impl_->parent = definition.get();
        subData.push_back(&subreport->impl_->data);
        impl.subreports.push_back(std::move(subreport));
    }
    if (!checkDefinition(impl.data, subData, path, error))
        return nullptr;
    return definition;
}

const QString &ReportDefinition::path() const
{
    return impl_->path;
}

const QString &ReportDefinition::title() const
{
    return impl_->data.title;
}

std::vector<ParameterField> &ReportDefinition::ParameterFields()
{
    return impl_->root(*this).impl_->data.parameters;
}

const std::vector<ParameterField> &ReportDefinition::ParameterFields() const
{
    return impl_->root(*this).impl_->data.parameters;
}

bool ReportDefinition::setParameter(const QString &name, const ReportValue &value)
{
    for (ParameterField &field : ParameterFields()) {
        if (field.Name.compare(name, Qt::CaseInsensitive) == 0) {
            field.CurrentValue = value;
            return true;
        }
    }
    return false;
}

QStringList ReportDefinition::formulaNames() const
{
    QStringList names;
    for (const DefinitionFormula &formula : impl_->data.formulas)
        names << formula.name;
    return names;
}

bool ReportDefinition::hasFormula(const QString &name) const
{
    return impl_->data.formula(name) != nullptr;
}

bool ReportDefinition::setFormula(const QString &name, const QString &text, QString &error)
{
    DefinitionFormula *target = const_cast<DefinitionFormula *>(impl_->data.formula(name));
    if (!target) {
        error = QStringLiteral("%1 has no formula named \"%2\"").arg(impl_->label, name);
        return false;
    }
    const ReportDefinition &root = impl_->root(*this);
    const auto subs = subreportData(root.impl_->subreports);
    const FormulaScope scope =
        impl_->parent ? subreportScope(root.data(), subs, impl_->data) : reportScope(root.data(), subs);
    DefinitionFormula candidate{target->name, text, {}, std::nullopt};
    if (!checkFormula(candidate, scope, impl_->label, error))
        return false;
    DefinitionFormula previous = std::move(*target);
    *target = std::move(candidate);
    if (!checkFormulaCycles(impl_->data, impl_->label, error)) {
        *target = std::move(previous);
        return false;
    }
    return true;
}

const QString &ReportDefinition::RecordSelectionFormula() const
{
    return impl_->data.selection.text;
}

bool ReportDefinition::setRecordSelectionFormula(const QString &text, QString &error)
{
    const auto subs = subreportData(impl_->root(*this).impl_->subreports);
    // Appending " and ..." to a definition that selects every row leaves a leading "and".
    QString selection = text;
    static const QRegularExpression leadingAnd(QStringLiteral("^\\s*and\\s"),
                                               QRegularExpression::CaseInsensitiveOption);
    if (impl_->data.selection.text.trimmed().isEmpty())
        selection.remove(leadingAnd);
    DefinitionFormula candidate{QStringLiteral("selection"), selection, {}, std::nullopt};
    if (!checkFormula(candidate, reportScope(impl_->root(*this).data(), subs), impl_->label, error))
        return false;
    impl_->data.selection = std::move(candidate);
    return true;
}

ReportDefinition *ReportDefinition::OpenSubreport(const QString &name)
{
    for (const auto &sub : impl_->subreports) {
        if (sub->title().compare(name, Qt::CaseInsensitive) == 0)
            return sub.get();
    }
    return nullptr;
}

const ReportDefinition *ReportDefinition::OpenSubreport(const QString &name) const
{
    return const_cast<ReportDefinition *>(this)->OpenSubreport(name);
}

QStringList ReportDefinition::subreportNames() const
{
    QStringList names;
    for (const auto &sub : impl_->subreports)
        names << sub->title();
    return names;
}

QStringList ReportDefinition::tableAliases() const
{
    QStringList aliases{impl_->data.main.alias};
    for (const DefinitionTable &table : impl_->data.lookups)
        aliases << table.alias;
    return aliases;
}

QString ReportDefinition::tableLocation(const QString &alias) const
{
    const DefinitionTable *table = findTable(impl_->data, alias);
    return table ? table->fundTable : QString();
}

bool ReportDefinition::setTableLocation(const QString &alias, const QString &table, QString &error)
{
    DefinitionTable *target = findTable(impl_->data, alias);
    if (!target) {
        error = QStringLiteral("%1 has no table named \"%2\"").arg(impl_->label, alias);
        return false;
    }
    if (target->source != DefinitionTable::Source::Fund) {
        error = QStringLiteral("Table %1 of %2 is not a Kora-Fund year table and cannot be re-pointed")
                    .arg(alias, impl_->label);
        return false;
    }
    const FundRecord record = splitFundTable(table).second;
    if (record == FundRecord::None) {
        error = QStringLiteral("\"%1\" is not a Kora-Fund year table (<TableId>_SummaryExpenditure or "
                               "<TableId>_SummaryRevenue)")
                    .arg(table);
        return false;
    }
    if (target->fundRecord != FundRecord::None && target->fundRecord != record) {
        error = QStringLiteral("Table %1 of %2 reads %3 and cannot be re-pointed at %4")
                    .arg(alias, impl_->label, target->fundTable, table);
        return false;
    }
    // The formulas were checked against either record while the table had none: check them again.
    const QString previous = target->fundTable;
    const FundRecord previousRecord = target->fundRecord;
    target->fundTable = table.trimmed();
    target->fundRecord = record;
    ReportDefinition &root = impl_->root(*this);
    std::vector<ReportDefinitionData *> subs;
    for (const auto &sub : root.impl_->subreports)
        subs.push_back(&sub->impl_->data);
    if (!checkDefinition(root.impl_->data, subs, impl_->label, error)) {
        target->fundTable = previous;
        target->fundRecord = previousRecord;
        checkDefinition(root.impl_->data, subs, impl_->label, error);
        return false;
    }
    return true;
}

PaperOrientation ReportDefinition::orientation() const
{
    return impl_->data.orientation;
}

void ReportDefinition::setOrientation(PaperOrientation orientation)
{
    impl_->data.orientation = orientation;
}

const ReportDefinitionData &ReportDefinition::data() const
{
    return impl_->data;
}
