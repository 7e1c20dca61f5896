// Start and stop of the text services.

#ifndef NEBCORE_I18NINITIALIZE_H
#define NEBCORE_I18NINITIALIZE_H

#include <cstdint>

#include "NEBCore/NEBCoreExport.h"

// Calls are counted and may come from any thread. I18NString needs neither: its conversions hold no state, so
// texts work before the first start and behind the last stop.
NEBCORE_API std::int32_t I18NInitialize();  // the number of starts not yet matched by a stop
NEBCORE_API void I18NTerminate();           // a stop with no start before it does nothing

#endif
