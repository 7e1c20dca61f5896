// Where readers get the configuration from. Any thread may call.
//
// Example:
//     I18NString const value = NEBConfigurationFactory::getInstance().getConfigurationValue("gatewayUrl",
//     nullptr);

#ifndef NEBCFGAPI_NEBCONFIGURATIONFACTORY_H
#define NEBCFGAPI_NEBCONFIGURATIONFACTORY_H

#include "NEBCFGAPI/INEBConfiguration.h"

class __attribute__((visibility("default"))) NEBConfigurationFactory
{
public:
    // The configuration of the process, which lives until its end: NEBConfigurationStore.
    static INEBConfiguration& getInstance();
};

#endif
