#include "formulaparser.h"

#include "formulafunctions.h"
#include "formulalexer.h"

namespace {
using NodePtr = std::unique_ptr<FormulaNode>;

bool isKeyword(const QString &name)
{
    static const QStringList keywords = {"if", "then", "else", "and", "or", "not", "in", "true", "false"};
    return keywords.contains(name, Qt::CaseInsensitive);
}

NodePtr makeNode(FormulaNode::Kind kind, int position)
{
    auto node = std::make_unique<FormulaNode>();
    node->kind = kind;
    node->position = position;
    return node;
}

NodePtr makeOperation(FormulaOperator op, int position, NodePtr left, NodePtr right = nullptr)
{
    auto node = makeNode(right ? FormulaNode::Kind::Binary : FormulaNode::Kind::Unary, position);
    node->op = op;
    node->children.push_back(std::move(left));
    if (right)
        node->children.push_back(std::move(right));
    return node;
}

struct OperatorSpelling {
    const char *spelling;
    FormulaOperator op;
};

// Recursive descent, one method per level of the grammar, loosest first.
class Parser {
public:
    explicit Parser(const QString &text) : tokens_(tokenizeFormula(text)) {}

    NodePtr run()
    {
        if (peek().kind == FormulaToken::Kind::End)
            return nullptr;
        NodePtr root = expression();
        if (peek().kind != FormulaToken::Kind::End)
            failFormula(peek().position, QStringLiteral("Unexpected '%1'").arg(spellingOf(peek())));
        return root;
    }

private:
    const FormulaToken &peek() const { return tokens_[at_]; }
    const FormulaToken &take() { return tokens_[at_++]; }

    static QString spellingOf(const FormulaToken &token)
    {
        switch (token.kind) {
        case FormulaToken::Kind::Text:
            return token.value.asText();
        case FormulaToken::Kind::Field:
            return QStringLiteral("{%1.%2}").arg(token.table, token.text);
        case FormulaToken::Kind::Parameter:
            return QStringLiteral("{?%1}").arg(token.text);
        case FormulaToken::Kind::FormulaReference:
            return QStringLiteral("{@%1}").arg(token.text);
        default:
            return token.text;
        }
    }

    bool atSymbol(const char *symbol) const
    {
        return peek().kind == FormulaToken::Kind::Symbol && peek().text == QLatin1String(symbol);
    }
    static bool spells(const FormulaToken &token, const char *keyword)
    {
        return token.text.compare(QLatin1String(keyword), Qt::CaseInsensitive) == 0;
    }
    bool atKeyword(const char *keyword) const
    {
        return peek().kind == FormulaToken::Kind::Name && spells(peek(), keyword);
    }
    void expect(bool present, const QString &what)
    {
        if (!present)
            failFormula(peek().position, QStringLiteral("Expected %1").arg(what));
        ++at_;
    }
    static QString quotedWord(const char *word) { return QStringLiteral("'%1'").arg(QLatin1String(word)); }
    void expectSymbol(const char *symbol) { expect(atSymbol(symbol), quotedWord(symbol)); }
    void expectKeyword(const char *keyword) { expect(atKeyword(keyword), quotedWord(keyword)); }

    // One left-associative level: next (op next)*.
    template <size_t N>
    NodePtr leftAssociative(NodePtr (Parser::*next)(), const OperatorSpelling (&ops)[N], bool keywords)
    {
        NodePtr left = (this->*next)();
        for (;;) {
            const OperatorSpelling *found = nullptr;
            for (const auto &candidate : ops) {
                if (keywords ? atKeyword(candidate.spelling) : atSymbol(candidate.spelling))
                    found = &candidate;
            }
            if (!found)
                return left;
            const int position = take().position;
            left = makeOperation(found->op, position, std::move(left), (this->*next)());
        }
    }

    NodePtr expression()
    {
        if (!atKeyword("if"))
            return orLevel();
        auto node = makeNode(FormulaNode::Kind::If, take().position);
        node->children.push_back(expression());
        expectKeyword("then");
        node->children.push_back(expression());
        expectKeyword("else");
        node->children.push_back(expression());
        return node;
    }

    NodePtr orLevel()
    {
        static const OperatorSpelling ops[] = {{"or", FormulaOperator::Or}};
        return leftAssociative(&Parser::andLevel, ops, true);
    }

    NodePtr andLevel()
    {
        static const OperatorSpelling ops[] = {{"and", FormulaOperator::And}};
        return leftAssociative(&Parser::notLevel, ops, true);
    }

    NodePtr notLevel()
    {
        if (!atKeyword("not"))
            return compareLevel();
        const int position = take().position;
        return makeOperation(FormulaOperator::Not, position, notLevel());
    }

    NodePtr compareLevel()
    {
        static const OperatorSpelling ops[] = {
            {"=", FormulaOperator::Equal},        {"<>", FormulaOperator::NotEqual},
            {"<", FormulaOperator::Less},         {">", FormulaOperator::Greater},
            {"<=", FormulaOperator::LessOrEqual}, {">=", FormulaOperator::GreaterOrEqual},
        };
        NodePtr left = joinLevel();
        if (atKeyword("in"))
            return inList(std::move(left));
        for (const auto &candidate : ops) {
            if (atSymbol(candidate.spelling)) {
                const int position = take().position;
                return makeOperation(candidate.op, position, std::move(left), joinLevel());
            }
        }
        return left;
    }

    // value in [ item, ... ]; an empty list holds nothing.
    NodePtr inList(NodePtr value)
    {
        auto node = makeNode(FormulaNode::Kind::In, take().position);
        node->children.push_back(std::move(value));
        expectSymbol("[");
        commaList(*node, "]");
        return node;
    }

    NodePtr joinLevel()
    {
        static const OperatorSpelling ops[] = {{"&", FormulaOperator::Join}};
        return leftAssociative(&Parser::sumLevel, ops, false);
    }

    NodePtr sumLevel()
    {
        static const OperatorSpelling ops[] = {{"+", FormulaOperator::Add}, {"-", FormulaOperator::Subtract}};
        return leftAssociative(&Parser::productLevel, ops, false);
    }

    NodePtr productLevel()
    {
        static const OperatorSpelling ops[] = {
            {"*", FormulaOperator::Multiply}, {"/", FormulaOperator::Divide}, {"%", FormulaOperator::Percent}};
        return leftAssociative(&Parser::unaryLevel, ops, false);
    }

    NodePtr unaryLevel()
    {
        if (!atSymbol("-"))
            return primary();
        const int position = take().position;
        return makeOperation(FormulaOperator::Negate, position, unaryLevel());
    }

    NodePtr primary()
    {
        const FormulaToken &token = peek();
        switch (token.kind) {
        case FormulaToken::Kind::Number:
        case FormulaToken::Kind::Text: {
            auto node = makeNode(FormulaNode::Kind::Literal, take().position);
            node->literal = token.value;
            return node;
        }
        case FormulaToken::Kind::Field: {
            auto node = makeNode(FormulaNode::Kind::Field, take().position);
            node->table = token.table;
            node->name = token.text;
            return node;
        }
        case FormulaToken::Kind::Parameter:
        case FormulaToken::Kind::FormulaReference: {
            const auto kind = token.kind == FormulaToken::Kind::Parameter ? FormulaNode::Kind::Parameter
                                                                          : FormulaNode::Kind::FormulaReference;
            auto node = makeNode(kind, take().position);
            node->name = token.text;
            return node;
        }
        case FormulaToken::Kind::Name:
            return named();
        case FormulaToken::Kind::Symbol:
            if (atSymbol("(")) {
                take();
                NodePtr inner = expression();
                expectSymbol(")");
                return inner;
            }
            break;
        case FormulaToken::Kind::End:
            break;
        }
        if (token.kind == FormulaToken::Kind::End)
            failFormula(token.position, QStringLiteral("Expected a value"));
        failFormula(token.position, QStringLiteral("Expected a value, not '%1'").arg(spellingOf(token)));
    }

    // item, item, ... up to and including `close`; the list may be empty.
    void commaList(FormulaNode &node, const char *close)
    {
        if (atSymbol(close)) {
            take();
            return;
        }
        node.children.push_back(expression());
        while (atSymbol(",")) {
            take();
            node.children.push_back(expression());
        }
        expect(atSymbol(close), QStringLiteral("',' or '%1'").arg(QLatin1String(close)));
    }

    // true, false, or a function call.
    NodePtr named()
    {
        const FormulaToken &token = take();
        if (spells(token, "true") || spells(token, "false")) {
            auto node = makeNode(FormulaNode::Kind::Literal, token.position);
            node->literal = ReportValue::boolean(spells(token, "true"));
            return node;
        }
        if (isKeyword(token.text))
            failFormula(token.position, QStringLiteral("Expected a value, not '%1'").arg(token.text));
        const FormulaFunction *function = findFormulaFunction(token.text);
        if (!function && !atSymbol("("))
            failFormula(token.position, QStringLiteral("Unknown name '%1'").arg(token.text));
        if (!function)
            failFormula(token.position, QStringLiteral("Unknown function '%1'").arg(token.text));
        auto node = makeNode(FormulaNode::Kind::Call, token.position);
        node->function = function;
        expectSymbol("(");
        commaList(*node, ")");
        checkArgumentCount(*node, token.text);
        return node;
    }

    static void checkArgumentCount(const FormulaNode &call, const QString &written)
    {
        const FormulaFunction &function = *call.function;
        const int count = int(call.children.size());
        if (count >= function.minArguments && count <= function.maxArguments)
            return;
        const QString expected = function.minArguments == function.maxArguments
            ? QString::number(function.minArguments)
            : QStringLiteral("%1 or %2").arg(function.minArguments).arg(function.maxArguments);
        failFormula(call.position, QStringLiteral("Function '%1' takes %2 argument%3, not %4")
                                       .arg(written, expected, function.maxArguments == 1 ? "" : "s")
                                       .arg(count));
    }

    std::vector<FormulaToken> tokens_;
    size_t at_ = 0;
};
} // namespace

std::unique_ptr<FormulaNode> parseFormulaText(const QString &text)
{
    return Parser(text).run();
}
