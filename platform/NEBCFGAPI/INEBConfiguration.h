// The configuration as its readers see it. Any thread may call.
//
// Example:
//     #include "NEBCFGAPI/NEBConfigurationFactory.h"
//     INEBConfiguration& configuration = NEBConfigurationFactory::getInstance();
//     bool const hasGateway = !configuration.getConfigurationValue("gatewayUrl", nullptr).empty();

#ifndef NEBCFGAPI_INEBCONFIGURATION_H
#define NEBCFGAPI_INEBCONFIGURATION_H

#include "NEBCore/I18NString.h"

class __attribute__((visibility("default"))) INEBConfiguration
{
public:
    virtual ~INEBConfiguration() = default;
    // Returns the setting's value, empty for an unknown key. The last argument is reserved.
    virtual I18NString getConfigurationValue(I18NString const& key, void*) = 0;
};

#endif
