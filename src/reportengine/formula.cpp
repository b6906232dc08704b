#include "formula.h"

#include "formulaevaluator.h"
#include "formulaparser.h"

#include <algorithm>

void failFormula(int position, const QString &what)
{
    throw FormulaFailure{position, QStringLiteral("%1 at position %2").arg(what).arg(position)};
}

struct Formula::Impl {
    QString text;
    std::unique_ptr<FormulaNode> root; // null for an empty formula
    std::vector<FormulaField> fields;
    QStringList parameters;
    QStringList formulas;

    // Gathers every reference once, in the order the text names them.
    void collectReferences(const FormulaNode &node)
    {
        switch (node.kind) {
        case FormulaNode::Kind::Field:
            if (std::none_of(fields.begin(), fields.end(), [&](const FormulaField &known) {
                    return known.table == node.table && known.field == node.name;
                }))
                fields.push_back({node.table, node.name});
            break;
        case FormulaNode::Kind::Parameter:
            if (!parameters.contains(node.name))
                parameters.append(node.name);
            break;
        case FormulaNode::Kind::FormulaReference:
            if (!formulas.contains(node.name))
                formulas.append(node.name);
            break;
        default:
            break;
        }
        for (const auto &child : node.children)
            collectReferences(*child);
    }
};

std::optional<Formula> Formula::parse(const QString &text, FormulaError &error)
{
    auto impl = std::make_shared<Impl>();
    impl->text = text;
    try {
        impl->root = parseFormulaText(text);
    } catch (const FormulaFailure &failure) {
        error = {failure.position, failure.message};
        return std::nullopt;
    }
    if (impl->root)
        impl->collectReferences(*impl->root);
    return Formula(std::move(impl));
}

ReportValue Formula::evaluate(const FormulaContext &context, FormulaError &error) const
{
    if (!impl_->root)
        return {};
    try {
        return evaluateFormulaNode(*impl_->root, context);
    } catch (const FormulaFailure &failure) {
        error = {failure.position, failure.message};
        return {};
    }
}

const QString &Formula::text() const
{
    return impl_->text;
}

std::vector<FormulaField> Formula::fields() const
{
    return impl_->fields;
}

QStringList Formula::parameters() const
{
    return impl_->parameters;
}

QStringList Formula::formulas() const
{
    return impl_->formulas;
}

Formula::Formula(std::shared_ptr<const Impl> impl) : impl_(std::move(impl)) {}
Formula::~Formula() = default;
Formula::Formula(const Formula &) = default;
Formula &Formula::operator=(const Formula &) = default;
Formula::Formula(Formula &&) noexcept = default;
Formula &Formula::operator=(Formula &&) noexcept = default;
