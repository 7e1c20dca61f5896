// Single owner of an object that goes back to whoever made it instead of being deleted. For one scope and
// thread.
//
// The base's destructor can't reach destroy any more, so a subclass empties the guard by giveBack in its own.

#ifndef ARXIUM_PROD_SMARTPOINTERS_NEBAUTOFACTORYPOINTER_H
#define ARXIUM_PROD_SMARTPOINTERS_NEBAUTOFACTORYPOINTER_H

#include "NEBCore/NEBAutoPointer.h"
#include "frame/ARXAssert.h"

template <class T>
class NEBAutoFactoryPointer : public NEBAutoPointer<T>
{
public:
    explicit NEBAutoFactoryPointer(T* pointer) : NEBAutoPointer<T>(pointer) {}
    // Raises NEBAssertError, and deletes, if a subclass left something in the guard.
    virtual ~NEBAutoFactoryPointer() noexcept(false)
    {
        NEB_ASSERT_NAMED(!NEBAutoPointer<T>::get(), "auto_ptr must be NULL");
    }

    NEBAutoFactoryPointer(NEBAutoFactoryPointer const&) = delete;
    NEBAutoFactoryPointer& operator=(NEBAutoFactoryPointer const&) = delete;

    // Gives pointer back to its maker. Slot 1.
    virtual void destroy(T* pointer) = 0;

    // Destroys what is held, null too, unless it is pointer itself, and holds pointer. If destroy raises, the
    // guard is empty and pointer still the caller's.
    void reset(T* pointer)
    {
        T* const held = NEBAutoPointer<T>::release();
        if (held != pointer)
            destroy(held);
        NEBAutoPointer<T>::reset(pointer);
    }

protected:
    // What the destructor of every subclass does. What destroy raises is discarded, and the object given up.
    void giveBack() noexcept
    {
        try
        {
            if (T* const held = NEBAutoPointer<T>::release())
                destroy(held);
            NEBAutoPointer<T>::reset(nullptr);  // deletes what destroy may have put here
        }
        catch (...)
        {
            return;
        }
    }
};

#endif
