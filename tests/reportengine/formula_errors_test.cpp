#include "formulatesting.h"

#include <algorithm>

namespace {
struct Refusal {
    const char *formula;
    int position;
    const char *message;
};

void expectRefusedAtParse(const Refusal &c)
{
    FormulaError error;
    EXPECT_FALSE(Formula::parse(QString::fromUtf8(c.formula), error)) << c.formula;
    EXPECT_EQ(error.position, c.position) << c.formula;
    EXPECT_EQ(error.message, QString::fromUtf8(c.message)) << c.formula;
}
} // namespace

TEST(FormulaErrors, SyntaxIsRefusedWhenParsedNamingTheFaultAndPosition)
{
    const Refusal cases[] = {
        {"({T.A} + 2) * (3 - 1", 20, "Expected ')' at position 20"},
        {"round(1.5, 2 * 3", 16, "Expected ',' or ')' at position 16"},
        {"1 +", 3, "Expected a value at position 3"},
        {"1 * )", 4, "Expected a value, not ')' at position 4"},
        {"1 2", 2, "Unexpected '2' at position 2"},
        {"1 < 2 < 3", 6, "Unexpected '<' at position 6"},
        {"if true then 1", 14, "Expected 'else' at position 14"},
        {"if {T.A} = 1 'x' else 'y'", 13, "Expected 'then' at position 13"},
        {"if true then else 2", 13, "Expected a value, not 'else' at position 13"},
        {"{T.A} in 1, 2", 9, "Expected '[' at position 9"},
        {"{T.A} in [1, 2", 14, "Expected ',' or ']' at position 14"},
        {"{T.A} in [1 2]", 12, "Expected ',' or ']' at position 12"},
        {"'Line one & chr(13)", 0, "Text not closed with ' at position 0"},
        {"{SummaryTree.ID in [1]", 22, "Expected '}' at position 22"},
        {"1 + {SummaryTree}", 4, "Expected a field as {Table.Field}, not {SummaryTree} at position 4"},
        {"{?} = 1", 0, "Expected a parameter name at position 0"},
        {"{@ }", 0, "Expected a formula name at position 0"},
        {"1 # 2", 2, "Unexpected character '#' at position 2"},
        {"1.2.3", 0, "Invalid number '1.2.3' at position 0"},
        {"'a' & foo(1)", 6, "Unknown function 'foo' at position 6"},
        {"Total + 1", 0, "Unknown name 'Total' at position 0"},
        {"chr(13, 10)", 0, "Function 'chr' takes 1 argument, not 2 at position 0"},
        {"1 + ROUND()", 4, "Function 'ROUND' takes 1 or 2 arguments, not 0 at position 4"},
        {"left('abc')", 0, "Function 'left' takes 2 arguments, not 1 at position 0"},
    };
    for (const auto &c : cases)
        expectRefusedAtParse(c);
}

TEST(FormulaErrors, EvaluationFaultsComeBackWithPositionAndANullResult)
{
    MapContext row;
    row.fields["T.Name"] = text("Instruction");
    row.fields["T.Zero"] = number("0");
    row.fields["T.Day"] = ReportValue::date(QDate(2025, 7, 1));
    const Refusal cases[] = {
        {"{T.Name} = 1", 9, "Text and a number cannot be compared at position 9"},
        {"1 <> {T.Name}", 2, "A number and text cannot be compared at position 2"},
        {"{T.Name} in [1, 2]", 9, "Text and a number cannot be compared at position 9"},
        {"true = 1", 5, "A truth value and a number cannot be compared at position 5"},
        {"{T.Day} > 20250101", 8, "A date and a number cannot be compared at position 8"},
        {"10 / {T.Zero}", 3, "Division by zero at position 3"},
        {"if true then 1 % ({T.Zero} * 5) else 0", 15, "Division by zero at position 15"},
        {"{T.Name} - 1", 9, "Text and a number cannot be subtracted at position 9"},
        {"2 * {T.Name}", 2, "A number and text cannot be multiplied at position 2"},
        {"{T.Name} + 1", 9, "Text and a number cannot be added at position 9"},
        {"-{T.Name}", 0, "Text cannot be negated at position 0"},
        {"not {T.Zero}", 0, "Expected a truth value, not a number at position 0"},
        {"if {T.Name} then 1 else 2", 0, "Expected a truth value, not text at position 0"},
        {"{T.Missing} + 1", 0, "Unknown field {T.Missing} at position 0"},
        {"'x' & {?Nowhere}", 6, "Unknown parameter {?Nowhere} at position 6"},
        {"{@Nothing}", 0, "Unknown formula {@Nothing} at position 0"},
        {"left({T.Zero}, 2)", 0, "Function 'left' expects text, not a number at position 0"},
        {"left('abc', -1)", 0, "Function 'left' expects a whole number of 0 or more, not -1 at position 0"},
        {"chr(1.5)", 0, "Function 'chr' expects a whole number from 0 to 65535, not 1.5 at position 0"},
        {"round(1, 5)", 0, "Function 'round' expects a whole number from 0 to 4, not 5 at position 0"},
        {"date(2025, 2, 30)", 0, "Function 'date' expects a day of the month, not 2/30/2025 at position 0"},
        {"year(2025)", 0, "Function 'year' expects a date, not a number at position 0"},
    };
    for (const auto &c : cases) {
        FormulaError error;
        const auto formula = Formula::parse(QString::fromUtf8(c.formula), error);
        ASSERT_TRUE(formula) << c.formula << ": " << error.message.toStdString();
        EXPECT_EQ(formula->evaluate(row, error), ReportValue()) << c.formula;
        EXPECT_EQ(error.position, c.position) << c.formula;
        EXPECT_EQ(error.message, QString::fromUtf8(c.message)) << c.formula;
    }
}

TEST(FormulaErrors, FormulasTooDeepForTheStackAreRefusedNotCrashed)
{
    const QString deepParentheses = QString(1000, u'(') + u'1' + QString(1000, u')');
    EXPECT_EQ(refusal(deepParentheses), "Formula nested too deeply at position 200");
    EXPECT_EQ(refusal(QStringLiteral("not ").repeated(1000) + "true"), "Formula nested too deeply at position 796");
    QStringList terms(1000, QStringLiteral("1"));
    EXPECT_EQ(refusal(terms.join(u'+')), "Formula nested too deeply at position 399");
    // What the reports write stays well inside: long folder lists are wide, not deep.
    EXPECT_EQ(evaluated(QString(150, u'(') + u'1' + QString(150, u')')), number("1"));
    QStringList ids;
    for (int id = 1; id <= 5000; ++id)
        ids.append(QString::number(id));
    std::reverse(ids.begin(), ids.end());
    const QString list = "in [ " + ids.join(u',') + "]";
    EXPECT_EQ(evaluated("4999 " + list + " and 1 " + list + " and 5000 " + list + " and not 5001 " + list),
              ReportValue::boolean(true));
}
