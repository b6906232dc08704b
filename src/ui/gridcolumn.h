#pragma once

#include <QString>

enum class GridColumnType { Text, Amount, Check };

// The settings of a column when it is added. Amount columns show "#,##0.00".
// A check column holds its checked or its unchecked value ("1" and "0"
// unless it defines others, such as a component flag's "A" and " "); any
// non-blank text but "0", "false" or the unchecked value reads as checked.
// A twin column keeps the value its column was loaded with, so that changed
// rows can be found; it is always hidden and read-only.
struct GridColumnOptions {
    QString caption2; // second caption line, e.g. a budget-year label
    int widthTwips = 1440;
    GridColumnType type = GridColumnType::Text;
    bool hidden = false;
    bool editable = false;
    int maxLength = 0; // 0: no limit
    bool sortSimple = true;
    bool sortComplex = false;
    bool total = false;
    bool grouping = false; // shows a value only where it starts a new group
    QString checkedValue = QStringLiteral("1");
    QString uncheckedValue = QStringLiteral("0");
    QString twinOf; // the key of the column this one is the twin of
};

class classGridColumn {
public:
    classGridColumn(const QString &key, const QString &description, const GridColumnOptions &options);

    const QString &Key() const { return key_; }
    void setKey(const QString &key) { key_ = key; }
    const QString &Description() const { return description_; }
    void setDescription(const QString &text) { description_ = text; }
    bool SortSimple() const { return options_.sortSimple; }
    void setSortSimple(bool on) { options_.sortSimple = on; }
    bool SortComplex() const { return options_.sortComplex; }
    void setSortComplex(bool on) { options_.sortComplex = on; }
    bool Total() const { return options_.total; }
    void setTotal(bool on) { options_.total = on; }

    bool Grouping() const { return options_.grouping; }
    void setGrouping(bool on) { options_.grouping = on; }

    const QString &Caption2() const { return options_.caption2; }
    GridColumnType Type() const { return options_.type; }
    bool Hidden() const { return options_.hidden; }
    void setHidden(bool on) { options_.hidden = on; }
    bool Editable() const { return options_.editable; }
    void setEditable(bool on) { options_.editable = on; }
    int MaxLength() const { return options_.maxLength; }
    int WidthTwips() const { return options_.widthTwips; }
    void setWidthTwips(int twips) { options_.widthTwips = twips; }
    const QString &Extra1() const { return extra1_; }
    void setExtra1(const QString &text) { extra1_ = text; }

    // The heading as shown: both caption lines, the second under the first.
    QString Heading() const;
    // The heading on one line, for exports and the sorting dialog.
    QString HeadingOneLine() const;
    bool IsOrigTwin() const { return !options_.twinOf.isEmpty(); }
    const QString &TwinOf() const { return options_.twinOf; }
    // The value a check cell stores for a value given to it.
    const QString &CheckValue(bool checked) const { return checked ? options_.checkedValue : options_.uncheckedValue; }
    bool IsChecked(const QString &value) const;

private:
    QString key_;
    QString description_;
    GridColumnOptions options_;
    QString extra1_;
};
