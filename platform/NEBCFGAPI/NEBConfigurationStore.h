// The configuration in memory, which a host fills by calls or from a file. Any thread may read and write at
// any time.

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

    // Adds the settings of a file of lines "key=value", UTF-8. Blanks around key and value do not count;
    // empty lines and lines that begin with # are skipped. A file that can't be read, or a line without "="
    // or key, or a key set twice, raises NEBException that names the file and the line; no setting of a
    // refused file is taken.
    void load(std::string const& path);

private:
    NEBConfigurationStore();

    using Settings = std::map<I18NString, I18NString>;

    NEBThreadCriticalSection m_lock;
    Settings m_settings NEB_GUARDED_BY(m_lock);
};

#endif
