// The single-owner pointer of the product, under the name that assertion texts spell.

#ifndef NEBCORE_NEBAUTOPOINTER_H
#define NEBCORE_NEBAUTOPOINTER_H

#include <memory>

// std::auto_ptr is deprecated but still what this name means; only here is the warning silenced.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
template <class T>
using NEBAutoPointer = std::auto_ptr<T>;
#pragma GCC diagnostic pop

#endif
