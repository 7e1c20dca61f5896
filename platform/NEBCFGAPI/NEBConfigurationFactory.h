// Where readers get the configuration from.

#ifndef NEBCFGAPI_NEBCONFIGURATIONFACTORY_H
#define NEBCFGAPI_NEBCONFIGURATIONFACTORY_H

#include "NEBCFGAPI/INEBConfiguration.h"

class __attribute__((visibility("default"))) NEBConfigurationFactory
{
public:
    // The configuration of the process, alive until it ends. Here that is NEBConfigurationStore's.
    static INEBConfiguration& getInstance();
};

#endif
