// The single-owner pointer of the product, under the name that assertion texts contain.

#ifndef NEBCORE_NEBAUTOPOINTER_H
#define NEBCORE_NEBAUTOPOINTER_H

#include <memory>

// C++17 removed std::auto_ptr; libstdc++ keeps it as deprecated.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
template <class T>
using NEBAutoPointer = std::auto_ptr<T>;
#pragma GCC diagnostic pop

#endif
