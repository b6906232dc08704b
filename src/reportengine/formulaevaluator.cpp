#include "formulaevaluator.h"

#include "formulafunctions.h"
#include "formulaoperators.h"

#include <algorithm>

namespace {
// The message is built only when the reference is missing: this runs for every row.
template <typename Describe>
ReportValue found(const std::optional<ReportValue> &value, int position, Describe describe)
{
    if (!value)
        failFormula(position, QStringLiteral("Unknown %1").arg(describe()));
    return *value;
}

// and/or look at their right side only when the left does not decide, so a
// guard such as "{T.Base} <> 0 and {T.Change} / {T.Base} > 1" is safe.
ReportValue logical(const FormulaNode &node, const FormulaContext &context)
{
    const bool decidesAlone = node.op == FormulaOperator::Or;
    if (truthOf(evaluateFormulaNode(*node.children[0], context), node.position) == decidesAlone)
        return ReportValue::boolean(decidesAlone);
    return ReportValue::boolean(truthOf(evaluateFormulaNode(*node.children[1], context), node.position));
}

ReportValue binary(const FormulaNode &node, const FormulaContext &context)
{
    if (node.op == FormulaOperator::And || node.op == FormulaOperator::Or)
        return logical(node, context);
    const ReportValue left = evaluateFormulaNode(*node.children[0], context);
    const ReportValue right = evaluateFormulaNode(*node.children[1], context);
    switch (node.op) {
    case FormulaOperator::Equal:
    case FormulaOperator::NotEqual:
    case FormulaOperator::Less:
    case FormulaOperator::Greater:
    case FormulaOperator::LessOrEqual:
    case FormulaOperator::GreaterOrEqual:
        return ReportValue::boolean(compareValues(node.op, left, right, node.position));
    default:
        return applyArithmetic(node.op, left, right, node.position);
    }
}

ReportValue unary(const FormulaNode &node, const FormulaContext &context)
{
    const ReportValue operand = evaluateFormulaNode(*node.children[0], context);
    if (node.op == FormulaOperator::Not)
        return ReportValue::boolean(!truthOf(operand, node.position));
    return negateValue(operand, node.position);
}

ReportValue membership(const FormulaNode &node, const FormulaContext &context)
{
    const ReportValue value = evaluateFormulaNode(*node.children[0], context);
    if (!node.sortedNumbers.empty() && (value.isNull() || value.type() == ReportValue::Type::Number)) {
        return ReportValue::boolean(!value.isNull() && std::binary_search(node.sortedNumbers.begin(),
                                                                          node.sortedNumbers.end(), value.asNumber()));
    }
    // Anything else meets each item in turn, which also reports a mismatch of kinds.
    for (size_t item = 1; item < node.children.size(); ++item) {
        if (compareValues(FormulaOperator::Equal, value, evaluateFormulaNode(*node.children[item], context), node.position))
            return ReportValue::boolean(true);
    }
    return ReportValue::boolean(false);
}

ReportValue call(const FormulaNode &node, const FormulaContext &context)
{
    std::vector<ReportValue> arguments;
    arguments.reserve(node.children.size());
    for (const auto &child : node.children) {
        arguments.push_back(evaluateFormulaNode(*child, context));
        if (arguments.back().isNull() && !node.function->acceptsNull)
            return {};
    }
    return node.function->apply(arguments, node.position);
}
} // namespace

ReportValue evaluateFormulaNode(const FormulaNode &node, const FormulaContext &context)
{
    switch (node.kind) {
    case FormulaNode::Kind::Literal:
        return node.literal;
    case FormulaNode::Kind::Field:
        return found(context.field(node.table, node.name), node.position,
                     [&] { return QStringLiteral("field {%1.%2}").arg(node.table, node.name); });
    case FormulaNode::Kind::Parameter:
        return found(context.parameter(node.name), node.position,
                     [&] { return QStringLiteral("parameter {?%1}").arg(node.name); });
    case FormulaNode::Kind::FormulaReference:
        return found(context.formula(node.name), node.position,
                     [&] { return QStringLiteral("formula {@%1}").arg(node.name); });
    case FormulaNode::Kind::Unary:
        return unary(node, context);
    case FormulaNode::Kind::Binary:
        return binary(node, context);
    case FormulaNode::Kind::In:
        return membership(node, context);
    case FormulaNode::Kind::If: {
        const bool condition = truthOf(evaluateFormulaNode(*node.children[0], context), node.position);
        return evaluateFormulaNode(*node.children[condition ? 1 : 2], context);
    }
    case FormulaNode::Kind::Call:
        return call(node, context);
    }
    return {};
}
