// Start and stop of the text services.

#ifndef NEBCORE_I18NINITIALIZE_H
#define NEBCORE_I18NINITIALIZE_H

#include <cstdint>

#include "NEBCore/NEBCoreExport.h"

// Any thread may call. I18NString needs neither: its conversions hold no state.
NEBCORE_API std::int32_t I18NInitialize();  // returns 1
NEBCORE_API void I18NTerminate();

#endif
