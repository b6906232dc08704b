#include "reportdefinitionparser.h"

#include <QRegularExpression>
#include <QSet>

namespace {

// One statement: a line and the continuation lines below it.
struct Statement {
    QString text;
    std::vector<int> lines;
};

std::vector<Statement> statementsOf(const QString &text, QString &problem, int &problemLine)
{
    std::vector<Statement> statements;
    const QStringList lines = text.split(u'\n');
    for (int i = 0; i < lines.size(); ++i) {
        QString raw = lines[i];
        if (raw.endsWith(u'\r'))
            raw.chop(1);
        const QString trimmed = raw.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(u'#'))
            continue;
        if (raw.front() == u' ' || raw.front() == u'\t') {
            if (statements.empty()) {
                problem = QStringLiteral("a continued line with nothing above it");
                problemLine = i + 1;
                return {};
            }
            statements.back().text += u'\n' + trimmed;
            statements.back().lines.push_back(i + 1);
            continue;
        }
        statements.push_back({trimmed, {i + 1}});
    }
    return statements;
}

bool isName(const QString &name)
{
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    return pattern.match(name).hasMatch();
}

enum class Section { None, Report, Parameters, Formulas, Main, Lookup, Subreport, Group, Column, Chart };

class Parser {
public:
    Parser(const QString &fileLabel, ReportDefinitionData &report, std::vector<ParsedSubreport> &subreports)
        : file_(fileLabel), report_(report), subreports_(subreports)
    {
    }

    bool parse(const QString &text, QString &error)
    {
        QString problem;
        int problemLine = 0;
        const std::vector<Statement> statements = statementsOf(text, problem, problemLine);
        if (!problem.isEmpty())
            return fail(problemLine, problem, error);
        for (const Statement &statement : statements) {
            line_ = statement.lines.front();
            const bool ok =
                statement.text.startsWith(u'[') ? openSection(statement, error) : keyValue(statement, error);
            if (!ok)
                return false;
        }
        return finish(error);
    }

private:
    bool fail(int line, const QString &why, QString &error) const
    {
        error = QStringLiteral("%1, line %2: %3").arg(file_).arg(line).arg(why);
        return false;
    }
    bool fail(const QString &why, QString &error) const { return fail(line_, why, error); }

    bool openSection(const Statement &statement, QString &error)
    {
        if (statement.lines.size() > 1 || !statement.text.endsWith(u']'))
            return fail(QStringLiteral("a section heading is one line \"[kind Name]\""), error);
        const QString inner = statement.text.mid(1, statement.text.size() - 2).trimmed();
        const qsizetype blank = inner.indexOf(u' ');
        const QString kind = (blank < 0 ? inner : inner.left(blank)).toLower();
        const QString name = blank < 0 ? QString() : inner.mid(blank + 1).trimmed();
        static const QHash<QString, std::pair<Section, bool /*named*/>> kinds{
            {QStringLiteral("report"), {Section::Report, false}},
            {QStringLiteral("parameters"), {Section::Parameters, false}},
            {QStringLiteral("formulas"), {Section::Formulas, false}},
            {QStringLiteral("main"), {Section::Main, true}},
            {QStringLiteral("lookup"), {Section::Lookup, true}},
            {QStringLiteral("subreport"), {Section::Subreport, true}},
            {QStringLiteral("group"), {Section::Group, false}},
            {QStringLiteral("column"), {Section::Column, false}},
            {QStringLiteral("chart"), {Section::Chart, false}},
        };
        const auto found = kinds.constFind(kind);
        if (found == kinds.cend())
            return fail(QStringLiteral("unknown section [%1]").arg(inner), error);
        const auto [section, named] = *found;
        if (named && name.isEmpty())
            return fail(QStringLiteral("section [%1] needs a name").arg(kind), error);
        if (!named && !name.isEmpty())
            return fail(QStringLiteral("section [%1] takes no name").arg(kind), error);
        if (section == Section::Report && seenReport_)
            return fail(QStringLiteral("a second [report] section"), error);
        if (section != Section::Report && !seenReport_)
            return fail(QStringLiteral("the file must begin with the [report] section"), error);
        if ((section == Section::Parameters && seenParameters_) || (section == Section::Formulas && seenFormulas_) ||
            (section == Section::Main && seenMain_))
            return fail(QStringLiteral("a second [%1] section").arg(kind), error);
        if ((section == Section::Lookup || section == Section::Subreport || section == Section::Main) &&
            tableNameTaken(name))
            return fail(QStringLiteral("a second table or subreport named \"%1\"").arg(name), error);
        seenReport_ |= section == Section::Report;
        seenParameters_ |= section == Section::Parameters;
        seenFormulas_ |= section == Section::Formulas;
        seenMain_ |= section == Section::Main;
        section_ = section;
        keys_.clear();
        switch (section) {
        case Section::Main:
            table_ = &report_.main;
            break;
        case Section::Lookup:
            report_.lookups.emplace_back();
            table_ = &report_.lookups.back();
            break;
        case Section::Subreport:
            subreports_.push_back({name, {}});
            subreports_.back().data.title = name;
            table_ = &subreports_.back().data.main;
            break;
        case Section::Group:
            report_.groups.push_back({});
            report_.groups.back().line = line_;
            break;
        case Section::Column:
            report_.columns.push_back({});
            report_.columns.back().line = line_;
            break;
        case Section::Chart:
            report_.charts.push_back({});
            report_.charts.back().line = line_;
            break;
        default:
            break;
        }
        if (section == Section::Main || section == Section::Lookup || section == Section::Subreport) {
            table_->name = name;
            table_->alias = name;
            table_->line = line_;
        }
        return true;
    }

    bool tableNameTaken(const QString &name) const
    {
        if (seenMain_ && report_.main.name.compare(name, Qt::CaseInsensitive) == 0)
            return true;
        if (report_.lookup(name))
            return true;
        for (const ParsedSubreport &sub : subreports_) {
            if (sub.name.compare(name, Qt::CaseInsensitive) == 0)
                return true;
        }
        return false;
    }

    bool keyValue(const Statement &statement, QString &error)
    {
        if (section_ == Section::None)
            return fail(QStringLiteral("the file must begin with the [report] section"), error);
        const qsizetype equals = statement.text.indexOf(u'=');
        if (equals < 0 || statement.text.left(equals).count(u'\n') > 0)
            return fail(QStringLiteral("expected \"key = value\""), error);
        const QString left = statement.text.left(equals).trimmed();
        QString value = statement.text.mid(equals + 1);
        std::vector<int> lines = statement.lines;
        // A value that begins on the next line: drop the lines it skips.
        qsizetype start = 0;
        while (start < value.size() && value[start].isSpace()) {
            if (value[start] == u'\n' && lines.size() > 1)
                lines.erase(lines.begin());
            ++start;
        }
        value = value.mid(start).trimmed();
        if (section_ == Section::Parameters)
            return parameter(left, value, error);
        if (section_ == Section::Formulas)
            return namedFormula(report_.formulas, left, value, lines, error);
        const qsizetype blank = left.indexOf(u' ');
        const QString key = (blank < 0 ? left : left.left(blank)).toLower();
        const QString name = blank < 0 ? QString() : left.mid(blank + 1).trimmed();
        static const QSet<QString> named{QStringLiteral("formula"), QStringLiteral("series")};
        if (named.contains(key) != !name.isEmpty())
            return fail(name.isEmpty() ? QStringLiteral("\"%1\" needs a name: \"%1 Name = ...\"").arg(key)
                                       : QStringLiteral("unknown key \"%1\"").arg(left),
                        error);
        static const QSet<QString> repeatable{QStringLiteral("subtitle"), QStringLiteral("note"),
                                              QStringLiteral("formula"), QStringLiteral("series")};
        if (!repeatable.contains(key)) {
            if (keys_.contains(key))
                return fail(QStringLiteral("\"%1\" given twice in one section").arg(key), error);
            keys_.insert(key);
        }
        const DefinitionFormula formula{key, value, lines, std::nullopt};
        switch (section_) {
        case Section::Report:
            return reportKey(key, formula, error);
        case Section::Main:
        case Section::Lookup:
        case Section::Subreport:
            return tableKey(key, name, formula, error);
        case Section::Group:
            return groupKey(key, formula, error);
        case Section::Column:
            return columnKey(key, formula, error);
        case Section::Chart:
            return chartKey(key, name, formula, error);
        default:
            return fail(QStringLiteral("unknown key \"%1\"").arg(key), error);
        }
    }

    bool parameter(const QString &name, const QString &value, QString &error)
    {
        if (!isName(name))
            return fail(QStringLiteral("\"%1\" is not a parameter name").arg(name), error);
        for (const ParameterField &field : report_.parameters) {
            if (field.Name.compare(name, Qt::CaseInsensitive) == 0)
                return fail(QStringLiteral("parameter %1 given twice").arg(name), error);
        }
        const qsizetype comma = value.indexOf(u',');
        const QString type = (comma < 0 ? value : value.left(comma)).trimmed().toLower();
        QString prompt = comma < 0 ? QString() : value.mid(comma + 1).trimmed();
        if (prompt.size() >= 2 && prompt.front() == u'"' && prompt.back() == u'"')
            prompt = prompt.mid(1, prompt.size() - 2);
        static const QHash<QString, ReportValue::Type> types{{QStringLiteral("text"), ReportValue::Type::Text},
                                                             {QStringLiteral("number"), ReportValue::Type::Number},
                                                             {QStringLiteral("boolean"), ReportValue::Type::Boolean},
                                                             {QStringLiteral("date"), ReportValue::Type::Date}};
        if (!types.contains(type))
            return fail(
                QStringLiteral("parameter %1: unknown type \"%2\" (text, number, boolean or date)").arg(name, type),
                error);
        report_.parameters.push_back({name, types.value(type), prompt, ReportValue()});
        return true;
    }

    bool namedFormula(std::vector<DefinitionFormula> &into, const QString &name, const QString &text,
                      const std::vector<int> &lines, QString &error)
    {
        if (!isName(name))
            return fail(QStringLiteral("\"%1\" is not a formula name").arg(name), error);
        for (const DefinitionFormula &f : into) {
            if (f.name.compare(name, Qt::CaseInsensitive) == 0)
                return fail(QStringLiteral("formula %1 given twice").arg(name), error);
        }
        into.push_back({name, text, lines, std::nullopt});
        return true;
    }

    bool yesNo(const QString &key, const QString &value, bool &into, QString &error) const
    {
        if (value.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0)
            into = true;
        else if (value.compare(QLatin1String("no"), Qt::CaseInsensitive) == 0)
            into = false;
        else
            return fail(QStringLiteral("%1 is \"yes\" or \"no\", not \"%2\"").arg(key, value), error);
        return true;
    }

    bool reportKey(const QString &key, DefinitionFormula formula, QString &error)
    {
        if (key == u"title") {
            report_.title = formula.text;
        } else if (key == u"orientation") {
            if (formula.text.compare(QLatin1String("landscape"), Qt::CaseInsensitive) == 0)
                report_.orientation = PaperOrientation::Landscape;
            else if (formula.text.compare(QLatin1String("portrait"), Qt::CaseInsensitive) == 0)
                report_.orientation = PaperOrientation::Portrait;
            else
                return fail(QStringLiteral("orientation is \"portrait\" or \"landscape\""), error);
        } else if (key == u"details") {
            return yesNo(key, formula.text, report_.details, error);
        } else if (key == u"district") {
            report_.district = std::move(formula);
        } else if (key == u"subtitle") {
            formula.name = QStringLiteral("subtitle %1").arg(report_.subtitles.size() + 1);
            report_.subtitles.push_back(std::move(formula));
        } else if (key == u"note") {
            formula.name = QStringLiteral("note %1").arg(report_.notes.size() + 1);
            report_.notes.push_back(std::move(formula));
        } else if (key == u"selection") {
            report_.selection = std::move(formula);
        } else if (key == u"folder") {
            report_.folder = std::move(formula);
        } else if (key == u"grandtotal") {
            report_.grandTotal = std::move(formula);
        } else {
            return fail(QStringLiteral("unknown key \"%1\" in [report]").arg(key), error);
        }
        return true;
    }

    bool tableKey(const QString &key, const QString &name, DefinitionFormula formula, QString &error)
    {
        DefinitionTable &table = *table_;
        formula.name = table.name + u' ' + key;
        if (key == u"sql" || key == u"fund" || key == u"levy") {
            if (sourced_.contains(table.name.toLower()))
                return fail(QStringLiteral("table %1 has more than one of sql, fund and levy").arg(table.name), error);
            sourced_.insert(table.name.toLower());
        }
        if (key == u"sql") {
            table.source = DefinitionTable::Source::Sql;
            table.sql = formula.text;
        } else if (key == u"fund") {
            table.source = DefinitionTable::Source::Fund;
            table.fundTable = formula.text;
            if (!table.fundTable.isEmpty()) {
                table.fundRecord = splitFundTable(table.fundTable).second;
                if (table.fundRecord == FundRecord::None)
                    return fail(QStringLiteral("\"%1\" is not a Kora-Fund year table "
                                               "(<TableId>_SummaryExpenditure or <TableId>_SummaryRevenue)")
                                    .arg(table.fundTable),
                                error);
            }
            if (table.key.isEmpty())
                table.key = QStringLiteral("AccountCode");
        } else if (key == u"levy" && section_ == Section::Main) {
            table.source = DefinitionTable::Source::Levy;
            table.levy = std::move(formula);
        } else if (key == u"priorlevy" && section_ == Section::Main) {
            table.priorLevy = std::move(formula);
        } else if (key == u"key" && section_ != Section::Main) {
            table.key = formula.text;
        } else if (key == u"link" && section_ != Section::Main) {
            table.link = std::move(formula);
        } else if (key == u"table" && section_ == Section::Subreport) {
            if (!isName(formula.text))
                return fail(QStringLiteral("\"%1\" is not a table name").arg(formula.text), error);
            table.alias = formula.text;
        } else if (key == u"formula" && section_ == Section::Subreport) {
            return namedFormula(subreports_.back().data.formulas, name, formula.text, formula.lines, error);
        } else {
            return fail(QStringLiteral("unknown key \"%1\" in a [%2] section")
                            .arg(key, section_ == Section::Main     ? QStringLiteral("main")
                                      : section_ == Section::Lookup ? QStringLiteral("lookup")
                                                                    : QStringLiteral("subreport")),
                        error);
        }
        return true;
    }

    bool groupKey(const QString &key, DefinitionFormula formula, QString &error)
    {
        DefinitionGroup &group = report_.groups.back();
        const QString label = QStringLiteral("group %1 ").arg(report_.groups.size());
        formula.name = label + key;
        if (key == u"by") {
            group.folders = formula.text.compare(QLatin1String("folders"), Qt::CaseInsensitive) == 0;
            if (!group.folders)
                group.by = std::move(formula);
        } else if (key == u"header") {
            group.header = std::move(formula);
        } else if (key == u"total") {
            group.total = std::move(formula);
        } else if (key == u"newpage") {
            group.newPage = std::move(formula);
        } else {
            return fail(QStringLiteral("unknown key \"%1\" in [group]").arg(key), error);
        }
        return true;
    }

    bool columnKey(const QString &key, DefinitionFormula formula, QString &error)
    {
        DefinitionColumn &column = report_.columns.back();
        formula.name = QStringLiteral("column %1 %2").arg(report_.columns.size()).arg(key);
        if (key == u"name") {
            if (!isName(formula.text))
                return fail(QStringLiteral("\"%1\" is not a column name").arg(formula.text), error);
            for (const DefinitionColumn &other : report_.columns) {
                if (&other != &column && other.name.compare(formula.text, Qt::CaseInsensitive) == 0)
                    return fail(QStringLiteral("two columns named %1").arg(formula.text), error);
            }
            column.name = formula.text;
        } else if (key == u"heading") {
            column.heading = std::move(formula);
        } else if (key == u"kind") {
            static const QHash<QString, ReportTable::Kind> kinds{
                {QStringLiteral("text"), ReportTable::Kind::Text},
                {QStringLiteral("amount"), ReportTable::Kind::Amount},
                {QStringLiteral("percent"), ReportTable::Kind::Percent},
                {QStringLiteral("number"), ReportTable::Kind::Number},
                {QStringLiteral("date"), ReportTable::Kind::Date}};
            const QString kind = formula.text.toLower();
            if (!kinds.contains(kind))
                return fail(QStringLiteral("unknown column kind \"%1\" (text, amount, percent, number or date)")
                                .arg(formula.text),
                            error);
            column.kind = kinds.value(kind);
        } else if (key == u"width") {
            bool ok = false;
            column.width = formula.text.toInt(&ok);
            if (!ok || column.width <= 0)
                return fail(QStringLiteral("width \"%1\" is not a positive whole number").arg(formula.text), error);
        } else if (key == u"value") {
            column.value = std::move(formula);
        } else if (key == u"total") {
            return yesNo(key, formula.text, column.total, error);
        } else if (key == u"totalvalue") {
            column.totalValue = std::move(formula);
        } else if (key == u"show") {
            column.show = std::move(formula);
        } else {
            return fail(QStringLiteral("unknown key \"%1\" in [column]").arg(key), error);
        }
        return true;
    }

    bool chartKey(const QString &key, const QString &name, DefinitionFormula formula, QString &error)
    {
        DefinitionChart &chart = report_.charts.back();
        formula.name = QStringLiteral("chart %1 %2").arg(report_.charts.size()).arg(key);
        if (key == u"title") {
            chart.title = std::move(formula);
        } else if (key == u"category") {
            chart.category = std::move(formula);
        } else if (key == u"series") {
            formula.name += u' ' + name;
            chart.series.emplace_back(name, std::move(formula));
        } else {
            return fail(QStringLiteral("unknown key \"%1\" in [chart]").arg(key), error);
        }
        return true;
    }

    bool checkTable(const DefinitionTable &table, bool isMain, QString &error) const
    {
        if (!sourced_.contains(table.name.toLower()))
            return fail(table.line, QStringLiteral("table %1 has none of sql, fund and levy").arg(table.name), error);
        if (!isMain && table.key.isEmpty() != table.link.text.isEmpty())
            return fail(table.line, QStringLiteral("table %1: \"key\" and \"link\" go together").arg(table.name),
                        error);
        if (table.source != DefinitionTable::Source::Levy && !table.priorLevy.text.isEmpty())
            return fail(table.line, QStringLiteral("table %1: \"priorlevy\" without \"levy\"").arg(table.name), error);
        return true;
    }

    bool finish(QString &error) const
    {
        if (!seenReport_)
            return fail(1, QStringLiteral("no [report] section"), error);
        if (!seenMain_)
            return fail(1, QStringLiteral("no [main] section"), error);
        if (!checkTable(report_.main, true, error))
            return false;
        for (const DefinitionTable &table : report_.lookups) {
            if (!checkTable(table, false, error))
                return false;
        }
        for (const ParsedSubreport &sub : subreports_) {
            if (!checkTable(sub.data.main, false, error))
                return false;
        }
        int folderGroups = 0;
        for (const DefinitionGroup &group : report_.groups) {
            if (!group.folders && group.by.text.isEmpty())
                return fail(group.line, QStringLiteral("a [group] needs \"by\""), error);
            if (group.folders && ++folderGroups > 1)
                return fail(group.line, QStringLiteral("only one group may be \"by = folders\""), error);
            if (group.folders && report_.folder.text.isEmpty())
                return fail(group.line, QStringLiteral("\"by = folders\" needs \"folder\" in [report]"), error);
        }
        for (const DefinitionColumn &column : report_.columns) {
            if (column.value.text.isEmpty())
                return fail(column.line, QStringLiteral("a [column] needs \"value\""), error);
        }
        for (const DefinitionChart &chart : report_.charts) {
            if (chart.category.text.isEmpty() || chart.series.empty())
                return fail(chart.line, QStringLiteral("a [chart] needs \"category\" and a \"series\""), error);
        }
        return true;
    }

    QString file_;
    ReportDefinitionData &report_;
    std::vector<ParsedSubreport> &subreports_;
    Section section_ = Section::None;
    DefinitionTable *table_ = nullptr;
    QSet<QString> sourced_; // tables (lower-case names) whose source is given
    QSet<QString> keys_;
    int line_ = 0;
    bool seenReport_ = false;
    bool seenParameters_ = false;
    bool seenFormulas_ = false;
    bool seenMain_ = false;
};

} // namespace

bool parseReportDefinition(const QString &fileLabel, const QString &text, ReportDefinitionData &report,
                           std::vector<ParsedSubreport> &subreports, QString &error)
{
    return Parser(fileLabel, report, subreports).parse(text, error);
}
