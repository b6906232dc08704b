#include "formulaparser.h"

#include "formulafunctions.h"
#include "formulalexer.h"

#include <algorithm>

namespace {
using NodePtr = std::unique_ptr<FormulaNode>;

bool isKeyword(const QString &name)
{
    static const QStringList keywords = {"if", "then", "else", "and", "or", "not", "in", "true", "false"};
    return keywords.contains(name, Qt::CaseInsensitive);
}

// Deeper formulas are refused rather than risk the stack: parsing, evaluating
// and freeing a tree all recurse along its depth. Real formulas stay far below.
constexpr int maximumDepth = 200;

NodePtr makeNode(FormulaNode::Kind kind, int position)
{
    auto node = std::make_unique<FormulaNode>();
    node->kind = kind;
    node->position = position;
    return node;
}

void adopt(FormulaNode &parent, NodePtr child)
{
    parent.depth = std::max(parent.depth, child->depth + 1);
    if (parent.depth > maximumDepth)
        failFormula(parent.position, QStringLiteral("Formula nested too deeply"));
    parent.children.push_back(std::move(child));
}

NodePtr makeOperation(FormulaOperator op, int position, NodePtr left, NodePtr right = nullptr)
{
    auto node = makeNode(right ? FormulaNode::Kind::Binary : FormulaNode::Kind::Unary, position);
    node->op = op;
    adopt(*node, std::move(left));
    if (right)
        adopt(*node, std::move(right));
    return node;
}

struct OperatorSpelling {
    const char *spelling; // a keyword when it starts with a letter
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

    template <size_t N>
    const OperatorSpelling *atOperator(const OperatorSpelling (&ops)[N]) const
    {
        for (const auto &candidate : ops) {
            if (QChar(QLatin1Char(candidate.spelling[0])).isLetter() ? atKeyword(candidate.spelling)
                                                                      : atSymbol(candidate.spelling))
                return &candidate;
        }
        return nullptr;
    }

    // One left-associative level: next (op next)*.
    template <size_t N>
    NodePtr leftAssociative(NodePtr (Parser::*next)(), const OperatorSpelling (&ops)[N])
    {
        NodePtr left = (this->*next)();
        while (const OperatorSpelling *found = atOperator(ops)) {
            const int position = take().position;
            left = makeOperation(found->op, position, std::move(left), (this->*next)());
        }
        return left;
    }

    // Counts the parser's own recursion, which runs ahead of the tree's depth.
    struct Nesting {
        explicit Nesting(Parser &parser) : parser_(parser)
        {
            if (++parser_.nesting_ > maximumDepth)
                failFormula(parser_.peek().position, QStringLiteral("Formula nested too deeply"));
        }
        ~Nesting() { --parser_.nesting_; }
        Parser &parser_;
    };

    NodePtr expression()
    {
        const Nesting nesting(*this);
        if (!atKeyword("if"))
            return orLevel();
        auto node = makeNode(FormulaNode::Kind::If, take().position);
        adopt(*node, expression());
        expectKeyword("then");
        adopt(*node, expression());
        expectKeyword("else");
        adopt(*node, expression());
        return node;
    }

    NodePtr orLevel()
    {
        static const OperatorSpelling ops[] = {{"or", FormulaOperator::Or}};
        return leftAssociative(&Parser::andLevel, ops);
    }

    NodePtr andLevel()
    {
        static const OperatorSpelling ops[] = {{"and", FormulaOperator::And}};
        return leftAssociative(&Parser::notLevel, ops);
    }

    NodePtr notLevel()
    {
        if (!atKeyword("not"))
            return compareLevel();
        const Nesting nesting(*this);
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
        const OperatorSpelling *found = atOperator(ops);
        if (!found)
            return left;
        const int position = take().position;
        return makeOperation(found->op, position, std::move(left), joinLevel());
    }

    // value in [ item, ... ]; an empty list holds nothing.
    NodePtr inList(NodePtr value)
    {
        auto node = makeNode(FormulaNode::Kind::In, take().position);
        adopt(*node, std::move(value));
        expectSymbol("[");
        commaList(*node, "]");
        const bool allNumbers = std::all_of(node->children.begin() + 1, node->children.end(), [](const NodePtr &item) {
            return item->kind == FormulaNode::Kind::Literal && item->literal.type() == ReportValue::Type::Number;
        });
        if (allNumbers && node->children.size() > 1) {
            for (auto item = node->children.begin() + 1; item != node->children.end(); ++item)
                node->sortedNumbers.push_back((*item)->literal.asNumber());
            std::sort(node->sortedNumbers.begin(), node->sortedNumbers.end());
        }
        return node;
    }

    NodePtr joinLevel()
    {
        static const OperatorSpelling ops[] = {{"&", FormulaOperator::Join}};
        return leftAssociative(&Parser::sumLevel, ops);
    }

    NodePtr sumLevel()
    {
        static const OperatorSpelling ops[] = {{"+", FormulaOperator::Add}, {"-", FormulaOperator::Subtract}};
        return leftAssociative(&Parser::productLevel, ops);
    }

    NodePtr productLevel()
    {
        static const OperatorSpelling ops[] = {
            {"*", FormulaOperator::Multiply}, {"/", FormulaOperator::Divide}, {"%", FormulaOperator::Percent}};
        return leftAssociative(&Parser::unaryLevel, ops);
    }

    NodePtr unaryLevel()
    {
        if (!atSymbol("-"))
            return primary();
        const Nesting nesting(*this);
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
        adopt(node, expression());
        while (atSymbol(",")) {
            take();
            adopt(node, expression());
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
    int nesting_ = 0;
};
} // namespace

std::unique_ptr<FormulaNode> parseFormulaText(const QString &text)
{
    return Parser(text).run();
}
