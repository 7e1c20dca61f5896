#include "NEBCore/I18NInitialize.h"

std::int32_t I18NInitialize()
{
    return 1;
}

void I18NTerminate() {}
