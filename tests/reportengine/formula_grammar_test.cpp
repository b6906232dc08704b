#include "formulatesting.h"

namespace {
const ReportValue yes = ReportValue::boolean(true);
const ReportValue no = ReportValue::boolean(false);

MapContext sampleRow()
{
    MapContext row;
    row.fields["SummaryTree.ID"] = number("12");
    row.fields["SummaryTree.Name"] = text("Instruction");
    row.fields["Budget Lines.Prior Year"] = number("1000");
    row.fields["Budget Lines.Proposed"] = number("1100");
    row.parameters["LedgerID"] = text("E");
    row.parameters["Percent"] = text("Y");
    row.formulas["Change"] = number("100");
    return row;
}
} // namespace

TEST(FormulaGrammar, PrecedenceFollowsTheGrammarFromLoosestToTightest)
{
    const struct {
        const char *formula;
        ReportValue expected;
    } cases[] = {
        {"1 + 2 * 3", number("7")},
        {"-2 * 3 + 1", number("-5")},
        {"1 + 2 & 3 * 4", text("312")},           // sums before joins
        {"'a' & 1 + 1 = 'a2'", yes},              // joins before comparisons
        {"not 1 = 2", yes},                       // comparison before not
        {"true or false and false", yes},         // and binds tighter than or
        {"(true or false) and false", no},
        {"not true or true", yes},                // not binds tighter than or
        {"not not true", yes},
        {"1 < 2 and 2 < 3", yes},
        {"2 in [1, 2] and 'b' in ['a']", no},
        {"IF 1 = 1 THEN 'x' ELSE 'y'", text("x")}, // keywords in any case
        {"True And Not FALSE", yes},
    };
    for (const auto &c : cases)
        EXPECT_EQ(evaluated(c.formula), c.expected) << c.formula;
}

TEST(FormulaGrammar, IfThenElseNestsInEitherBranch)
{
    const char *grade = "if {T.N} >= 90 then 'A' else if {T.N} >= 80 then 'B' else "
                        "if {T.N} >= 70 then (if {T.N} = 75 then 'C+' else 'C') else 'F'";
    const struct {
        const char *n;
        const char *expected;
    } cases[] = {{"95", "A"}, {"90", "A"}, {"85", "B"}, {"75", "C+"}, {"72", "C"}, {"10", "F"}};
    for (const auto &c : cases) {
        MapContext row;
        row.fields["T.N"] = number(c.n);
        EXPECT_EQ(evaluated(grade, row), text(c.expected)) << c.n;
    }
    EXPECT_EQ(evaluated("if if true then false else true then 1 else 2"), number("2"));
}

TEST(FormulaGrammar, InListsHoldNumbersOrTexts)
{
    const MapContext row = sampleRow();
    EXPECT_EQ(evaluated("{SummaryTree.ID} in [ 1, 2, 3 ]", row), no);
    EXPECT_EQ(evaluated("{SummaryTree.ID} in [ 4,12,30]", row), yes);
    EXPECT_EQ(evaluated("{SummaryTree.ID} in [ 30, 12.0000, 4 ]", row), yes);
    EXPECT_EQ(evaluated("{SummaryTree.ID} in [ 30, 13, -12, 11.9999 ]", row), no);
    EXPECT_EQ(evaluated("-1.5 in [ 3, -1.5, 2 ]", row), yes);
    EXPECT_EQ(evaluated("{SummaryTree.ID} in [ 6 * 2 ]", row), yes);
    EXPECT_EQ(evaluated("{SummaryTree.ID} in [ ]", row), no); // no folder carries the code
    EXPECT_EQ(evaluated("{?LedgerID} in ['R', 'E']", row), yes);
    EXPECT_EQ(evaluated("{?LedgerID} in ['e']", row), no);
    EXPECT_EQ(evaluated("not {?LedgerID} in ['R']", row), yes);
    // The program appends its folder list to a definition's own selection.
    EXPECT_EQ(evaluated("{?LedgerID} = 'E' and {SummaryTree.ID} in [ 11,12]", row), yes);
}

TEST(FormulaGrammar, TextJoinsWithAmpersandAndPlus)
{
    const MapContext row = sampleRow();
    EXPECT_EQ(evaluated("'Line one' & chr(13) & 'Line two'"), text("Line one\rLine two"));
    EXPECT_EQ(evaluated("\"Budget\" + ' ' + \"2025\""), text("Budget 2025"));
    EXPECT_EQ(evaluated("'It''s ' & \"a \"\"quote\"\"\""), text("It's a \"quote\""));
    EXPECT_EQ(evaluated("{SummaryTree.Name} & ': ' & {Budget Lines.Proposed} / 3", row),
              text("Instruction: 366.6667"));
    EXPECT_EQ(evaluated("'Total ' & 1.50 & ' ' & true & ' ' & date(2025, 7, 1)"), text("Total 1.5 True 07/01/2025"));
}

TEST(FormulaGrammar, ReferencesNameFieldsParametersAndFormulas)
{
    const MapContext row = sampleRow();
    EXPECT_EQ(evaluated("{ Budget Lines . Proposed } - {Budget Lines.Prior Year}", row), number("100"));
    EXPECT_EQ(evaluated("if {?Percent} = 'Y' then {@Change} % {Budget Lines.Prior Year} else 0", row), number("10"));

    FormulaError error;
    const auto formula = Formula::parse("{A.X} + {B.Y} * {A.X} & {?P} & {@F} & {?P} & {@G}", error);
    ASSERT_TRUE(formula);
    const auto fields = formula->fields();
    ASSERT_EQ(fields.size(), 2u);
    EXPECT_EQ(fields[0].table + '.' + fields[0].field, "A.X");
    EXPECT_EQ(fields[1].table + '.' + fields[1].field, "B.Y");
    EXPECT_EQ(formula->parameters(), QStringList{"P"});
    EXPECT_EQ(formula->formulas(), QStringList({"F", "G"}));
}

TEST(FormulaGrammar, FunctionsIgnoreCaseAndTreatArgumentsByKind)
{
    const struct {
        const char *formula;
        ReportValue expected;
    } cases[] = {
        {"ToText(1234567.891)", text("1,234,567.89")},
        {"totext(-1234.5, 0)", text("-1,235")},
        {"totext(0.5, 4)", text("0.5000")},
        {"totext('as is')", text("as is")},
        {"TRIM('  x y  ')", text("x y")},
        {"left('Revenue', 3)", text("Rev")},
        {"left('ab', 5)", text("ab")},
        {"Upper('fund a')", text("FUND A")},
        {"chr(65) & chr(66)", text("AB")},
        {"isnull(1)", no},
        {"year(date(2025, 6, 30))", number("2025")},
        {"date(2024, 2, 29) < date(2024, 3, 1)", yes},
    };
    for (const auto &c : cases)
        EXPECT_EQ(evaluated(c.formula), c.expected) << c.formula;
}

TEST(FormulaGrammar, ComparesTextCaseSensitivelyAndNullOnlyWithNull)
{
    MapContext row;
    row.fields["T.Nothing"] = ReportValue();
    const struct {
        const char *formula;
        ReportValue expected;
    } cases[] = {
        {"'abc' = 'abc'", yes},        {"'abc' = 'ABC'", no},
        {"'B' < 'a'", yes},            {"'apple' < 'apples'", yes},
        {"'' <> 'x'", yes},            {"{T.Nothing} = {T.Nothing}", yes},
        {"{T.Nothing} = 0", no},       {"{T.Nothing} = ''", no},
        {"{T.Nothing} <> 0", yes},     {"{T.Nothing} < 1", no},
        {"{T.Nothing} >= 1", no},      {"{T.Nothing} in [0, '']", no},
        {"{T.Nothing} in [0, 1]", no}, {"{T.Nothing} in [1, {T.Nothing}]", yes},
        {"1.10 = 1.1", yes},           {"-1 < 0.0001", yes},
        {"false < true", yes},         {"if {T.Nothing} then 1 else 2", number("2")},
    };
    for (const auto &c : cases)
        EXPECT_EQ(evaluated(c.formula, row), c.expected) << c.formula;
}

TEST(FormulaGrammar, EvaluatesOnlyTheSideThatDecides)
{
    MapContext row;
    row.fields["T.Base"] = number("0");
    row.fields["T.Change"] = number("5");
    EXPECT_EQ(evaluated("{T.Base} <> 0 and {T.Change} / {T.Base} > 1", row), ReportValue::boolean(false));
    EXPECT_EQ(evaluated("{T.Base} = 0 or {T.Change} / {T.Base} > 1", row), ReportValue::boolean(true));
    EXPECT_EQ(evaluated("if {T.Base} = 0 then 'n/a' else totext({T.Change} % {T.Base})", row), text("n/a"));
}

TEST(FormulaGrammar, AnEmptyFormulaIsNull)
{
    EXPECT_EQ(evaluated(""), ReportValue());
    EXPECT_EQ(evaluated(" \n\t"), ReportValue());
}
