// A list that only grows at its end and whose copies share its values.
//
// Exceptions carry their back trace and messages in such lists: a throw copies the exception, and that copy
// may neither need memory nor depend on the original, which dies as the stack unwinds. One list serves one
// thread at a time.

#ifndef NEBCORE_NEBSHAREDLIST_H
#define NEBCORE_NEBSHAREDLIST_H

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

template <class Value>
class NEBSharedList
{
public:
    // Without memory raises std::bad_alloc and leaves the list as it was.
    void push(std::shared_ptr<Value> value)
    {
        Values grown = values();
        grown.push_back(std::move(value));
        m_values = std::make_shared<Values const>(std::move(grown));
    }

    // Oldest first; the pointers live as long as this list.
    std::vector<Value*> entries() const
    {
        std::vector<Value*> result;
        for (auto const& value : values())
            result.push_back(value.get());
        return result;
    }

    // Moves what source holds to the end of this list. What both share, one being a copy of the other, stays
    // once.
    void transferFrom(NEBSharedList& source)
    {
        if (&source == this)
            return;
        Values merged = values();
        for (auto const& value : source.values())
            if (std::find(merged.begin(), merged.end(), value) == merged.end())
                merged.push_back(value);
        m_values = std::make_shared<Values const>(std::move(merged));
        source.m_values.reset();
    }

private:
    using Values = std::vector<std::shared_ptr<Value>>;

    Values values() const { return m_values ? *m_values : Values(); }

    std::shared_ptr<Values const> m_values;  // null when empty
};

#endif
