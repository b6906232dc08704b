#pragma once

#include "runtimeerror.h"

#include <QHash>
#include <QString>
#include <QVariant>

#include <utility>
#include <vector>

// An ordered collection of items under unique text keys, addressed by key or
// by 1-based position. Keys compare exactly (case matters). Wrong use throws
// RuntimeError and leaves the collection as it was.
template <typename T> class classGrouping {
public:
    using Entry = std::pair<QString, T>;

    void Reset()
    {
        entries_.clear();
        positions_.clear();
    }

    int Count() const { return static_cast<int>(entries_.size()); }

    void Add(T item, const QString &key)
    {
        if (key.isEmpty())
            throw RuntimeError(keyNotOptionalError, QStringLiteral("Key not optional"));
        if (FindKey(key) != 0)
            throw RuntimeError(duplicateKeyError, QStringLiteral("Duplicate Key"));
        entries_.emplace_back(key, std::move(item));
        positions_.insert(key, entries_.size());
    }

    // The position of `key`, 0 when absent.
    int FindKey(const QString &key) const
    {
        if (key.isEmpty())
            throw RuntimeError(nullKeyError, QStringLiteral("Key value cannot be null"));
        return static_cast<int>(positions_.value(key, 0));
    }

    // The key at a position.
    const QString &FindIndex(int index) const { return entries_[checked(index)].first; }

    T &Item(int index) { return entries_[checked(index)].second; }
    const T &Item(int index) const { return entries_[checked(index)].second; }
    T &Item(const QString &key) { return Item(LookupPosition(key)); }
    const T &Item(const QString &key) const { return Item(LookupPosition(key)); }
    void setItem(int index, T item) { entries_[checked(index)].second = std::move(item); }

    void Remove(int index)
    {
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(checked(index)));
        reindex();
    }
    void Remove(const QString &key) { Remove(LookupPosition(key)); }

    // A position 1..Count gives itself, any other number 0; a key gives
    // FindKey of it; a value of any other kind gives 0.
    int LookupPosition(int index) const { return index >= 1 && index <= Count() ? index : 0; }
    int LookupPosition(const QString &key) const { return FindKey(key); }
    int LookupPosition(const QVariant &indexOrKey) const
    {
        switch (indexOrKey.typeId()) {
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::LongLong: {
            const qlonglong index = indexOrKey.toLongLong();
            return index >= 1 && index <= Count() ? static_cast<int>(index) : 0;
        }
        case QMetaType::QString:
            return FindKey(indexOrKey.toString());
        default:
            return 0;
        }
    }

    // NewEnum: iterate key/item pairs in order.
    auto begin() const { return entries_.cbegin(); }
    auto end() const { return entries_.cend(); }

private:
    std::size_t checked(int index) const
    {
        if (index < 1 || index > Count())
            throw RuntimeError(indexOutOfRangeError, QStringLiteral("Index out of range"));
        return static_cast<std::size_t>(index - 1);
    }

    void reindex()
    {
        positions_.clear();
        for (std::size_t i = 0; i < entries_.size(); ++i)
            positions_.insert(entries_[i].first, i + 1);
    }

    std::vector<Entry> entries_;
    QHash<QString, std::size_t> positions_;
};
