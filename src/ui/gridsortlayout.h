#pragma once

#include <QString>

#include <vector>

// One step of a grid's sort order: the column key and the direction.
class classGridSortLayout {
public:
    classGridSortLayout() = default;
    classGridSortLayout(const QString &key, bool ascending) : key_(key), ascending_(ascending) {}

    const QString &Key() const { return key_; }
    void setKey(const QString &key) { key_ = key; }
    bool Ascending() const { return ascending_; }
    void setAscending(bool on) { ascending_ = on; }

    // "Key:A" or "Key:D", the form in which layouts are saved.
    QString GetLayout() const;
    // False (and nothing changes) when the text is not of that form.
    bool SetLayout(const QString &text);

    friend bool operator==(const classGridSortLayout &, const classGridSortLayout &) = default;

private:
    QString key_;
    bool ascending_ = true;
};

using GridSortOrder = std::vector<classGridSortLayout>;

// A whole sort order as one text, steps separated by ";".
QString sortOrderToText(const GridSortOrder &order);
GridSortOrder sortOrderFromText(const QString &text);
