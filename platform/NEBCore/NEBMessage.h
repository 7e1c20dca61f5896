// A message of a message file, looked up by number in the catalogue of that name (NEBMessageCatalogue).
//
// A number or file that no catalogue knows gives the text "FILE:NUMBER", so that the message isn't lost.

#ifndef NEBCORE_NEBMESSAGE_H
#define NEBCORE_NEBMESSAGE_H

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBMessageComponents.h"

class NEBCORE_API NEBMessage : public NEBMessageComponents
{
public:
    explicit NEBMessage(I18NString const& file);
    NEBMessage(I18NString const& file, std::uint32_t id);

    NEBMessage* clone() const override;
    char const* getClassName() const override;
    void format(char const* first, char const* second, I18NString& result) override;
    void toString(char const* first, char const* second, I18NString& result, int indent) override;
    // Slots 7 and 8.
    virtual I18NString const& getMsgFile() const;
    virtual void setMsgFile(I18NString const& file);

private:
    I18NString m_file;
};

#endif
