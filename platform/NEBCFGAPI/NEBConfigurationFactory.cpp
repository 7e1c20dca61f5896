#include "NEBCFGAPI/NEBConfigurationFactory.h"

#include "NEBCFGAPI/NEBConfigurationStore.h"

INEBConfiguration& NEBConfigurationFactory::getInstance()
{
    return NEBConfigurationStore::getStore();
}
