#include "support/CryptoRecorder.h"

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <utility>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "NEBCore/I18NInitialize.h"

namespace
{
CryptoRecorder& s_recorder = CryptoRecorder::get();

std::string textOf(char const* text)
{
    return text ? text : "null";
}
}  // namespace

CryptoRecorder& CryptoRecorder::get()
{
    static CryptoRecorder s_recorder;
    return s_recorder;
}

void CryptoRecorder::reset()
{
    std::lock_guard const guard(m_lock);
    for (auto const& memory : m_memory)
        delete[] static_cast<char*>(memory.first);
    m_memory.clear(), m_sessions.clear(), m_settings.clear();
    m_calls.clear(), m_problems.clear(), m_counts.clear();
    m_faults.clear(), m_duringProtect = nullptr;
}

void CryptoRecorder::failCall(std::string const& function, int call, Fault fault)
{
    m_faults[function] = {call, fault};
    m_counts[function] = 0;
}

std::vector<std::string> CryptoRecorder::takeCalls()
{
    std::lock_guard const guard(m_lock);
    return std::exchange(m_calls, {});
}

std::string CryptoRecorder::takeStory()
{
    std::string story;
    for (std::string const& call : takeCalls())
    {
        std::size_t const prefix = call.rfind("KRY_Crypto", 0) == 0 ? 10 : call.rfind("KRY_", 0) == 0 ? 4 : 0;
        story += (story.empty() ? "" : ", ") + call.substr(prefix);
    }
    return story;
}

std::vector<std::string> CryptoRecorder::problems()
{
    std::lock_guard const guard(m_lock);
    std::vector<std::string> problems = m_problems;
    for (auto const& memory : m_memory)
        problems.push_back("not freed: " + memory.second);
    for (auto const& session : m_sessions)
        if (!session->m_closeAsked)
            problems.push_back("not closed: " + session->m_name);
    return problems;
}

Fault CryptoRecorder::record(std::string const& function, std::string const& arguments)
{
    std::lock_guard const guard(m_lock);
    m_calls.push_back(arguments.empty() ? function : function + " " + arguments);
    int const count = ++m_counts[function];
    auto const fault = m_faults.find(function);
    if (fault == m_faults.end() || fault->second.first != count)
        return Fault::None;
    return std::exchange(fault->second.second, Fault::None);
}

std::int32_t CryptoRecorder::answer(Fault fault, char** details)
{
    if (details && (fault == Fault::Details || fault == Fault::Exception))
        *details = handOut(std::string("reason") + '\0', "details");
    if (fault == Fault::Exception)
        throw std::runtime_error("raised");
    return fault == Fault::Details || fault == Fault::Status ? -1 : 0;
}

CryptoRecorder::Session* CryptoRecorder::open()
{
    std::lock_guard const guard(m_lock);
    m_sessions.push_back(std::make_unique<Session>());
    m_sessions.back()->m_name = "S" + std::to_string(m_sessions.size());
    return m_sessions.back().get();
}

std::string CryptoRecorder::use(void* session)
{
    std::lock_guard const guard(m_lock);
    auto const known = std::find_if(m_sessions.begin(), m_sessions.end(),
                                    [session](auto const& candidate) { return candidate.get() == session; });
    if (known == m_sessions.end())
        return session ? "unknown" : "null";
    if ((*known)->m_closed)
        m_problems.push_back("used behind its end: " + (*known)->m_name);
    return (*known)->m_name;
}

char* CryptoRecorder::handOut(std::string const& bytes, char const* kind)
{
    std::lock_guard const guard(m_lock);
    char* const memory = new char[bytes.size()];
    std::copy(bytes.begin(), bytes.end(), memory);
    m_memory[memory] = kind;
    return memory;
}

std::string CryptoRecorder::takeBack(void* memory)
{
    std::lock_guard const guard(m_lock);
    auto const known = m_memory.extract(memory);
    if (known)
        delete[] static_cast<char*>(memory);
    else if (memory)
        m_problems.push_back("freed, but not handed out");
    return known ? known.mapped() : "null";
}

void CryptoRecorder::complain(std::string const& problem)
{
    std::lock_guard const guard(m_lock);
    m_problems.push_back(problem);
}

std::int32_t KRY_CryptoInitialize(char const* document, void*, char** details)
{
    return s_recorder.answer(s_recorder.record("KRY_CryptoInitialize", document), details);
}

std::int32_t KRY_CryptoTerminate(char const* document, void*, char** details)
{
    return s_recorder.answer(s_recorder.record("KRY_CryptoTerminate", document), details);
}

std::int32_t KRY_PersistentInitialize(void** session, char const* document, void*, char** details)
{
    Fault const fault = s_recorder.record("KRY_PersistentInitialize", textOf(document));
    std::this_thread::yield();  // lets in whoever may come
    if (fault == Fault::None)
        *session = s_recorder.open();
    return s_recorder.answer(fault, details);
}

std::int32_t KRY_SetInfo(void* session, char const* document, void*)
{
    Fault const fault = s_recorder.record("KRY_SetInfo", s_recorder.use(session) + " " + textOf(document));
    if (fault == Fault::None && session)
        static_cast<CryptoRecorder::Session*>(session)->m_infoDoc = textOf(document);
    return s_recorder.answer(fault, nullptr);
}

std::int32_t KRY_GetInfo(void* session, void* first, void* second, void* third)
{
    auto const name = [](void* argument) { return " " + textOf(static_cast<char const*>(argument)); };
    return s_recorder.answer(
        s_recorder.record("KRY_GetInfo", s_recorder.use(session) + name(first) + name(second) + name(third)),
        nullptr);
}

std::int32_t KRY_ProtectData(void* session, char const* data, std::uint32_t size, char** outData,
                             std::uint32_t* outSize, void*)
{
    // A large piece is not looked at: it may be a mapping without pages behind it.
    std::string const bytes = size > 0xFFFFFF ? std::to_string(size) + " bytes" : std::string(data, size);
    Fault const fault = s_recorder.record("KRY_ProtectData", s_recorder.use(session) + " " + bytes);
    auto* const known = static_cast<CryptoRecorder::Session*>(session);
    if (known && known->m_busy.exchange(true))
        s_recorder.complain("two calls at once: " + known->m_name);
    if (s_recorder.m_duringProtect)
        s_recorder.m_duringProtect();
    std::this_thread::yield();
    if (known)
        known->m_busy = false;

    std::int32_t const status = s_recorder.answer(fault, nullptr);
    // Something comes back on failure too, so that nobody gets away with looking at the status first.
    if (known && known->m_infoDoc.find("file") == std::string::npos)
        *outData = s_recorder.handOut("<" + bytes + ">", "data"), *outSize = size + 2;
    return status;
}

std::int32_t KRY_UnprotectData(void* session, char const* data, std::uint32_t size, char** outData,
                               std::uint32_t* outSize, void*)
{
    Fault const fault =
        s_recorder.record("KRY_UnprotectData", s_recorder.use(session) + " " + std::string(data, size) +
                                                   " wanted " + std::to_string(*outSize));
    *outData = s_recorder.handOut("plain", "data"), *outSize = 5;
    return s_recorder.answer(fault, nullptr);
}

std::int32_t KRY_CloseHandle(void** session, void*, char** details)
{
    Fault const fault = s_recorder.record("KRY_CloseHandle", s_recorder.use(*session));
    auto* const known = static_cast<CryptoRecorder::Session*>(*session);
    known->m_closeAsked = true;
    known->m_closed = fault == Fault::None;
    return s_recorder.answer(fault, details);
}

std::int32_t KRY_CryptoFree(void* memory, void*)
{
    return s_recorder.answer(s_recorder.record("KRY_CryptoFree", s_recorder.takeBack(memory)), nullptr);
}

std::int32_t KRY_CryptoGetLastErrorDetails(void* session, void*, char** details)
{
    Fault const fault = s_recorder.record("KRY_CryptoGetLastErrorDetails", s_recorder.use(session));
    return s_recorder.answer(fault == Fault::None ? Fault::Details : fault, details);
}

std::int32_t I18NInitialize()
{
    s_recorder.record("I18NInitialize", "");
    return 0;
}

void I18NTerminate()
{
    s_recorder.record("I18NTerminate", "");
}

INEBConfiguration& NEBConfigurationFactory::getInstance()
{
    class Configuration final : public INEBConfiguration
    {
        I18NString getConfigurationValue(I18NString const& key, void*) override
        {
            s_recorder.record("configuration", key.c_str());
            auto const known = s_recorder.m_settings.find(key.c_str());
            return known == s_recorder.m_settings.end() ? "" : known->second.c_str();
        }
    };
    static Configuration s_configuration;
    return s_configuration;
}
