// Two UTF-16 buffers behave as optional std::u16string do, whatever is done to them: a missing text is the
// empty buffer. Bytes come back from an I18NString as they went in.

#include <optional>

#include "NEBCore/I18NString.h"
#include "NEBCore/NEBUtCrc32.h"
#include "fuzz/Fuzz.h"
#include "text/ARNEBI18NBuffer.h"

namespace
{
using Model = std::optional<std::u16string>;

unsigned short const* toUnits(std::u16string const& text)
{
    return reinterpret_cast<unsigned short const*>(text.c_str());
}

// An empty text is no content, except for an I18NString, whose terminator is content.
Model modelOf(std::u16string const& text)
{
    return text.empty() ? Model() : text;
}

void append(Model& target, Model const& source)
{
    if (source)
        target = target.value_or(u"") + *source;
}

struct Pair
{
    ARNEBI18NBuffer m_buffer;
    Model m_model;

    void check() const
    {
        std::size_t const size = m_model ? 2 * m_model->size() + 2 : 0;
        mustHold(m_buffer.getSize() == size && m_buffer.empty() == !m_model, "sizes agree");
        auto const* const bytes = static_cast<char const*>(m_buffer.getBuffer());
        std::u16string const text = m_model.value_or(u"");
        mustHold(std::equal(bytes, bytes + 2 * text.size() + 2, reinterpret_cast<char const*>(text.c_str())),
                 "texts agree, terminator included");
        mustHold(m_buffer.getCrc() == (m_model ? NEBUtCrc32::crc32(0, bytes, size) : 0), "checksums agree");
    }

    void checkAgainst(Pair const& other) const
    {
        std::u16string const mine = m_model.value_or(u""), theirs = other.m_model.value_or(u"");
        bool const canCompare = !theirs.empty() && mine.size() >= theirs.size();
        mustHold((m_buffer == other.m_buffer) == (m_model == other.m_model), "equality agrees");
        mustHold(m_buffer.startsWith(other.m_buffer) ==
                     (canCompare && mine.compare(0, theirs.size(), theirs) == 0),
                 "startsWith agrees");
        mustHold(m_buffer.endsWith(other.m_buffer) ==
                     (canCompare && mine.compare(mine.size() - theirs.size(), theirs.size(), theirs) == 0),
                 "endsWith agrees");
        mustHold(other.m_model != m_model || m_buffer.getCssCrc() == other.m_buffer.getCssCrc(),
                 "equal texts have equal folded checksums");
    }
};

// Assigns or appends a text from the input, in one of the forms that the buffer takes.
void takeText(Pair& pair, FuzzInput& input, unsigned form)
{
    std::u16string const units = unitsOf(input.takeShortText());
    std::u16string const terminated = units.c_str();
    I18NString text;
    text.setTo(units.data(), static_cast<std::uint32_t>(2 * units.size()));
    std::u16string const given = units.substr(0, static_cast<std::size_t>(text.size()) / 2 - 1);
    unsigned short const unit = units.empty() ? 0 : static_cast<unsigned short>(units[0]);
    Model const model = form < 2   ? modelOf(terminated)
                        : form < 4 ? Model(given)
                                   : Model(std::u16string(1, unit));
    switch (form)
    {
    case 0:
        pair.m_buffer = toUnits(units);
        break;
    case 1:
        pair.m_buffer += toUnits(units);
        break;
    case 2:
        pair.m_buffer = text;
        break;
    case 3:
        pair.m_buffer += text;
        break;
    case 4:
        pair.m_buffer = unit;
        break;
    default:
        pair.m_buffer += unit;
        break;
    }
    if (form % 2 == 0)
        pair.m_model = model;
    else
        append(pair.m_model, model);
}

void change(Pair& pair, Pair const& other, FuzzInput& input)
{
    unsigned const operation = input.takeByte() % 12;
    Model const before = other.m_model;  // other may be pair
    std::size_t const count = operation > 9 ? input.takeByte() : 0;
    switch (operation)
    {
    case 6:
        pair.m_buffer = other.m_buffer, pair.m_model = before;
        break;
    case 7:
        pair.m_buffer += other.m_buffer, append(pair.m_model, before);
        break;
    case 8:
        pair.m_buffer.clear(), pair.m_model.reset();
        break;
    case 9:
        pair.m_buffer = ARNEBI18NBuffer(other.m_buffer.getString()), pair.m_model = before.value_or(u"");
        break;
    case 10:
        pair.m_buffer.reserve(count);
        break;
    case 11:
        pair.m_buffer.truncate(count);
        if (pair.m_model && count < pair.m_model->size())
            pair.m_model->resize(count);
        break;
    default:
        takeText(pair, input, operation);
        break;
    }
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    mustHold(I18NString(text.c_str()).c_str() == std::string(text.c_str()), "bytes survive an I18NString");

    FuzzInput input(data, size);
    Pair pairs[2];
    while (!input.empty())
    {
        unsigned const which = input.takeByte();
        Pair& changed = pairs[which & 1];
        change(changed, pairs[which >> 1 & 1], input);
        if (changed.m_model.value_or(u"").size() > 10000)
            changed.m_buffer.clear(), changed.m_model.reset();  // appending itself doubles it
        changed.check();
        pairs[0].checkAgainst(pairs[1]);
        pairs[1].checkAgainst(pairs[0]);
    }
    return 0;
}
