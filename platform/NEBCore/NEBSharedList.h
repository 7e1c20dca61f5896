// A list that only grows at its end and whose copies share their nodes.
//
// Exceptions carry their back trace and messages in such lists: a throw copies the exception, and that copy
// may neither need memory nor depend on the original, which dies as the stack unwinds. One list serves one
// thread at a time.

#ifndef NEBCORE_NEBSHAREDLIST_H
#define NEBCORE_NEBSHAREDLIST_H

#include <memory>
#include <utility>
#include <vector>

template <class Value>
class NEBSharedList
{
public:
    // Strong guarantee: without memory (std::bad_alloc) the list stays as it was.
    void push(Value value) { m_newest = std::make_shared<Node const>(std::move(value), m_newest); }

    // Oldest first; the pointers live as long as this list.
    std::vector<Value const*> entries() const { return entriesBehind(nullptr); }

    // Moves over what source holds, leaving it empty. Nodes that this list shares with source, being its
    // copy, already stand here and are not taken twice.
    void transferFrom(NEBSharedList& source)
    {
        if (&source == this)
            return;
        Node const* shared = source.m_newest.get();
        while (shared && !holds(shared))
            shared = shared->m_older.get();

        NEBSharedList result = *this;
        for (Value const* value : source.entriesBehind(shared))
            result.push(*value);
        *this = std::move(result);
        source.m_newest.reset();
    }

private:
    struct Node
    {
        Node(Value&& value, std::shared_ptr<Node const> older)
            : m_value(std::move(value)), m_older(std::move(older))
        {
        }
        // Releases unshared older nodes one by one: each from within the next would use up the stack.
        ~Node()
        {
            std::shared_ptr<Node const> next = std::move(m_older);
            while (next && next.use_count() == 1)
                next = std::shared_ptr<Node const>(next->m_older);
        }
        Node(Node const&) = delete;
        Node& operator=(Node const&) = delete;

        Value m_value;
        std::shared_ptr<Node const> m_older;
    };

    bool holds(Node const* wanted) const
    {
        Node const* node = m_newest.get();
        while (node && node != wanted)
            node = node->m_older.get();
        return node != nullptr;
    }

    std::vector<Value const*> entriesBehind(Node const* end) const
    {
        std::vector<Value const*> newestFirst;
        for (Node const* node = m_newest.get(); node != end; node = node->m_older.get())
            newestFirst.push_back(&node->m_value);
        return {newestFirst.rbegin(), newestFirst.rend()};
    }

    std::shared_ptr<Node const> m_newest;  // null when empty
};

#endif
