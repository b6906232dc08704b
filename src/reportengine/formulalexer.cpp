#include "formulalexer.h"

#include "formulanode.h"

namespace {
class Lexer {
public:
    explicit Lexer(const QString &text) : text_(text) {}

    std::vector<FormulaToken> run()
    {
        std::vector<FormulaToken> tokens;
        for (skipBlanks(); at_ < text_.size(); skipBlanks())
            tokens.push_back(next());
        tokens.push_back({FormulaToken::Kind::End, int(text_.size()), {}, {}, {}});
        return tokens;
    }

private:
    void skipBlanks()
    {
        while (at_ < text_.size() && text_.at(at_).isSpace())
            ++at_;
    }

    FormulaToken next()
    {
        const QChar c = text_.at(at_);
        if (c.isDigit() || (c == u'.' && at_ + 1 < text_.size() && text_.at(at_ + 1).isDigit()))
            return number();
        if (c == u'\'' || c == u'"')
            return quoted(c);
        if (c.isLetter() || c == u'_')
            return name();
        if (c == u'{')
            return reference();
        return symbol();
    }

    FormulaToken number()
    {
        const int start = at_;
        while (at_ < text_.size() && (text_.at(at_).isDigit() || text_.at(at_) == u'.'))
            ++at_;
        const QString digits = text_.mid(start, at_ - start);
        const auto amount = digits.count(u'.') <= 1 ? Currency::parse(digits) : std::nullopt;
        if (!amount)
            failFormula(start, QStringLiteral("Invalid number '%1'").arg(digits));
        return {FormulaToken::Kind::Number, start, digits, {}, ReportValue::number(*amount)};
    }

    // 'text' or "text"; the quote doubled stands for itself.
    FormulaToken quoted(QChar quote)
    {
        const int start = at_++;
        QString value;
        while (at_ < text_.size()) {
            const QChar c = text_.at(at_++);
            if (c != quote) {
                value += c;
            } else if (at_ < text_.size() && text_.at(at_) == quote) {
                value += c;
                ++at_;
            } else {
                return {FormulaToken::Kind::Text, start, value, {}, ReportValue::text(value)};
            }
        }
        failFormula(start, QStringLiteral("Text not closed with %1").arg(quote));
    }

    FormulaToken name()
    {
        const int start = at_;
        while (at_ < text_.size() && (text_.at(at_).isLetterOrNumber() || text_.at(at_) == u'_'))
            ++at_;
        return {FormulaToken::Kind::Name, start, text_.mid(start, at_ - start), {}, {}};
    }

    // {Table.Field}, {?Parameter} or {@Formula}; names may hold blanks.
    FormulaToken reference()
    {
        const int start = at_;
        const qsizetype close = text_.indexOf(u'}', start);
        if (close < 0)
            failFormula(int(text_.size()), QStringLiteral("Expected '}'"));
        at_ = int(close) + 1;
        const QString inside = text_.mid(start + 1, close - start - 1);
        const QChar sigil = inside.isEmpty() ? QChar() : inside.front();
        if (sigil == u'?' || sigil == u'@') {
            const QString referenced = inside.mid(1).trimmed();
            if (referenced.isEmpty())
                failFormula(start, sigil == u'?' ? QStringLiteral("Expected a parameter name")
                                                 : QStringLiteral("Expected a formula name"));
            const auto kind = sigil == u'?' ? FormulaToken::Kind::Parameter : FormulaToken::Kind::FormulaReference;
            return {kind, start, referenced, {}, {}};
        }
        const qsizetype dot = inside.indexOf(u'.');
        const QString table = inside.left(dot).trimmed();
        const QString field = inside.mid(dot + 1).trimmed();
        if (dot < 0 || table.isEmpty() || field.isEmpty())
            failFormula(start, QStringLiteral("Expected a field as {Table.Field}, not {%1}").arg(inside));
        return {FormulaToken::Kind::Field, start, field, table, {}};
    }

    FormulaToken symbol()
    {
        const int start = at_;
        static const char *const twoCharacter[] = {"<>", "<=", ">="};
        for (const char *pair : twoCharacter) {
            if (QStringView(text_).mid(at_, 2) == QLatin1String(pair)) {
                at_ += 2;
                return {FormulaToken::Kind::Symbol, start, QString::fromLatin1(pair), {}, {}};
            }
        }
        const QChar c = text_.at(at_);
        if (!QStringLiteral("=<>&+-*/%()[],").contains(c))
            failFormula(start, QStringLiteral("Unexpected character '%1'").arg(c));
        ++at_;
        return {FormulaToken::Kind::Symbol, start, QString(c), {}, {}};
    }

    const QString &text_;
    int at_ = 0;
};
} // namespace

std::vector<FormulaToken> tokenizeFormula(const QString &text)
{
    return Lexer(text).run();
}
