// The configuration in memory, which a host fills by calls or from a file. Any thread may call.
//
// Example:
//     NEBConfigurationStore& store = NEBConfigurationStore::getStore();
//     store.load("/etc/product/settings");
//     store.setValue("fileEncryption", "on");

#ifndef NEBCFGAPI_NEBCONFIGURATIONSTORE_H
#define NEBCFGAPI_NEBCONFIGURATIONSTORE_H

#include <map>
#include <string>

#include "NEBCFGAPI/INEBConfiguration.h"
#include "NEBCore/NEBThreadCriticalSection.h"

class __attribute__((visibility("default"))) NEBConfigurationStore final : public INEBConfiguration
{
public:
    // The one store of the process.
    static NEBConfigurationStore& getStore();

    I18NString getConfigurationValue(I18NString const& key, void*) override;
    void setValue(I18NString const& key, I18NString const& value);
    void clear();

    // Adds the settings of a UTF-8 file with a line "key=value" for each. Blanks around key and value are
    // dropped; empty lines and those that begin with # are skipped. A file that can't be read, a line without
    // "=" or key, or a key that is set twice raises NEBException with file and line, and no setting of the
    // file is taken.
    void load(std::string const& path);

private:
    NEBConfigurationStore() = default;

    using Settings = std::map<I18NString, I18NString>;

    NEBThreadCriticalSection m_lock{0};
    Settings m_settings NEB_GUARDED_BY(m_lock);
};

#endif
