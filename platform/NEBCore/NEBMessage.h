// A message of a message file, found by its number.
//
// A file or number that is unknown has the text "FILE:NUMBER", so that the message isn't lost. Texts are
// UTF-8. One object serves one thread at a time.
//
// Example:
//     #include "frame/ARXMessage.h"
//     ARXMessage message(2u);
//     I18NString text;
//     message.format("a.zip", nullptr, text);  // "The archive a.zip can't be read."

#ifndef NEBCORE_NEBMESSAGE_H
#define NEBCORE_NEBMESSAGE_H

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBMessageComponents.h"

class NEBCORE_API NEBMessage : public NEBMessageComponents
{
public:
    explicit NEBMessage(I18NString const& file) : m_file(file) {}
    NEBMessage(I18NString const& file, std::uint32_t id) : m_file(file) { setMessage(id); }

    NEBMessage* clone() const override { return new NEBMessage(*this); }
    char const* getClassName() const override { return "NEBMessage"; }
    void format(char const* first, char const* second, I18NString& result) override;
    void toString(char const* first, char const* second, I18NString& result, int indent) override;
    // Slots 7 and 8.
    virtual I18NString const& getMsgFile() const { return m_file; }
    virtual void setMsgFile(I18NString const& file) { m_file = file; }

private:
    I18NString m_file;
};

#endif
