#include "frame/ARXMessage.h"

#include <utility>

#include "ARXResource/ARXI18NRes.h"

ARXMessage::ARXMessage(std::uint32_t id) : NEBMessage(ARXI18NRes::getString(ARXI18NRes::s_messageFile), id) {}

ARXMessage::ARXMessage(char const* messageFile)
    : NEBMessage(I18NString(messageFile, nullptr, -1, nullptr, nullptr))
{
}

ARXMessage::~ARXMessage() = default;

void ARXMessage::getMessage(char const* formatArgument, std::uint32_t id, I18NString& result)
{
    I18NString const former = std::exchange(result, I18NString());  // formatArgument may be a part of it
    setMessage(id);
    format(formatArgument, formatArgument, result);
}
