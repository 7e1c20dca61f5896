// Single owner of an object that its maker destroys. For one scope and thread.
//
// The destructor of this base can't call destroy any more, so the destructor of each subclass calls giveBack.

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

    // Returns pointer to its maker. Slot 1.
    virtual void destroy(T* pointer) = 0;

    // Destroys what is held, null too, unless it is pointer itself, and then holds pointer. If destroy
    // raises, the guard is empty and the caller still owns pointer.
    void reset(T* pointer)
    {
        T* const held = NEBAutoPointer<T>::release();
        if (held != pointer)
            destroy(held);
        NEBAutoPointer<T>::reset(pointer);
    }

protected:
    // For the destructor of every subclass. Discards what destroy raises, and gives the object up.
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
