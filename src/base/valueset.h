#pragma once

#include "runtimeerror.h"

#include <QHash>
#include <QSet>

#include <vector>

// A set of values that remembers the order they were added in, so that it
// can also be walked by 1-based position. T needs qHash and ==.
template <typename T> class classSet {
public:
    int Count() const { return static_cast<int>(order_.size()); }

    const T &Item(int index) const
    {
        if (index < 1 || index > Count())
            throw RuntimeError(indexOutOfRangeError, QStringLiteral("Index out of range"));
        return order_[static_cast<std::size_t>(index - 1)];
    }

    // NewEnum: iterate the members in the order they were added.
    auto begin() const { return order_.cbegin(); }
    auto end() const { return order_.cend(); }

    // False (and nothing changes) when the value is already a member.
    bool Add(const T &value)
    {
        if (members_.contains(value))
            return false;
        members_.insert(value);
        order_.push_back(value);
        return true;
    }

    // False when the value was not a member.
    bool Remove(const T &value)
    {
        if (!members_.remove(value))
            return false;
        std::erase(order_, value);
        return true;
    }

    classSet Clone() const { return *this; }

    void Clear()
    {
        members_.clear();
        order_.clear();
    }

    bool InSet(const T &value) const { return members_.contains(value); }

    // Members of both, in this set's order.
    classSet Intersection(const classSet &other) const
    {
        classSet result;
        for (const T &value : order_) {
            if (other.InSet(value))
                result.Add(value);
        }
        return result;
    }

    // This set's members, then the other's that are new, each in its order.
    classSet Union(const classSet &other) const
    {
        classSet result = *this;
        for (const T &value : other.order_)
            result.Add(value);
        return result;
    }

private:
    QSet<T> members_;
    std::vector<T> order_;
};
