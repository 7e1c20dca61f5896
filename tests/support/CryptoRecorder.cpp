#include "support/CryptoRecorder.h"

#include <thread>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "NEBCore/I18NInitialize.h"

CryptoRecorder CryptoRecorder::s_instance;

namespace
{
std::mutex s_lock;  // for what several threads may change
CryptoRecorder& s_recorder = CryptoRecorder::s_instance;
CryptoRecorder::Session s_noSession{"null"};

char* allocated(std::string const& bytes, char const* kind)
{
    std::lock_guard const guard(s_lock);
    char* const memory = new char[bytes.size()];
    bytes.copy(memory, bytes.size());
    s_recorder.m_memory[memory] = {kind, std::unique_ptr<char[]>(memory)};
    return memory;
}

// Records a call and carries out the fault that is planned for it. Returns 1 for Fault::NullSession.
std::int32_t answer(std::string const& function, std::string const& arguments, char** details = nullptr)
{
    std::unique_lock guard(s_lock);
    s_recorder.m_calls.push_back(function + (arguments.empty() ? "" : " ") + arguments);
    auto& [callsLeft, planned] = s_recorder.m_faults[function];
    Fault const fault = --callsLeft == 0 ? std::exchange(planned, Fault::None) : Fault::None;
    guard.unlock();
    std::this_thread::yield();  // an invitation to other threads
    if (details && (fault == Fault::Details || fault == Fault::Exception))
        *details = allocated({"reason", 7}, "details");
    if (fault == Fault::Exception)
        throw std::runtime_error("raised");
    return fault == Fault::None ? 0 : fault == Fault::NullSession ? 1 : -1;
}

CryptoRecorder::Session& sessionOf(void* token)
{
    return token ? *static_cast<CryptoRecorder::Session*>(token) : s_noSession;
}

// The same for a call on a session, null included. Two calls on one session at a time are a failure.
std::int32_t answerOn(void* token, std::string const& function, std::string const& arguments,
                      char** details = nullptr)
{
    CryptoRecorder::Session& session = sessionOf(token);
    std::unique_lock const use(session.m_use, std::try_to_lock);
    EXPECT_TRUE(use.owns_lock()) << "two calls at once: " << session.m_name;
    EXPECT_FALSE(session.m_closed) << "used after its end: " << session.m_name;
    if (s_recorder.m_duringProtect && function == "KRY_ProtectData")
        s_recorder.m_duringProtect();
    return answer(function, session.m_name + arguments, details);
}
}  // namespace

void CryptoRecorder::expectNothingLeft() const
{
    for (auto const& memory : m_memory)
        ADD_FAILURE() << "not freed: " << memory.second.first;
    for (Session const& session : m_sessions)
        EXPECT_TRUE(session.m_closeAsked) << "not closed: " << session.m_name;
}

std::int32_t KRY_CryptoInitialize(char const* document, void*, char** details)
{
    return answer("KRY_CryptoInitialize", document, details);
}

std::int32_t KRY_CryptoTerminate(char const* document, void*, char** details)
{
    return answer("KRY_CryptoTerminate", document, details);
}

std::int32_t KRY_PersistentInitialize(void** session, char const* document, void*, char** details)
{
    std::int32_t const status = answer("KRY_PersistentInitialize", document, details);
    std::lock_guard const guard(s_lock);
    if (status == 0)
        *session =
            &s_recorder.m_sessions.emplace_back("S" + std::to_string(s_recorder.m_sessions.size() + 1));
    return status;
}

std::int32_t KRY_SetInfo(void* session, char const* document, void*)
{
    std::int32_t const status = answerOn(session, "KRY_SetInfo", std::string(" ") + document);
    if (status == 0)
        sessionOf(session).m_infoDoc = document;
    return status;
}

std::int32_t KRY_GetInfo(void* session, void*, void*, void*)
{
    return answerOn(session, "KRY_GetInfo", "");
}

std::int32_t KRY_ProtectData(void* session, char const* data, std::uint32_t size, char** outData,
                             std::uint32_t* outSize, void*)
{
    // A large piece is not read: it may be a mapping without pages.
    std::string const bytes = size > 0xFFFFFF ? std::to_string(size) + " bytes" : std::string(data, size);
    std::int32_t const status = answerOn(session, "KRY_ProtectData", " " + bytes);
    // A failed call returns memory too, so that a caller who checks only the status loses it.
    if (sessionOf(session).m_infoDoc.find("file") == std::string::npos)
    {
        *outData = allocated("<" + bytes + ">", "data");
        *outSize = size + 2;
    }
    return status;
}

std::int32_t KRY_UnprotectData(void* session, char const* data, std::uint32_t size, char** outData,
                               std::uint32_t* outSize, void*)
{
    std::string const words = " " + std::string(data, size) + " wanted " + std::to_string(*outSize);
    std::int32_t const status = answerOn(session, "KRY_UnprotectData", words);
    *outData = allocated("plain", "data");
    *outSize = 5;
    return status;
}

std::int32_t KRY_CloseHandle(void** session, void*, char** details)
{
    sessionOf(*session).m_closeAsked = true;
    std::int32_t const status = answerOn(*session, "KRY_CloseHandle", "", details);
    sessionOf(*session).m_closed = status == 0;
    return status;
}

std::int32_t KRY_CryptoFree(void* memory, void*)
{
    std::unique_lock guard(s_lock);
    auto const known = s_recorder.m_memory.extract(memory);
    guard.unlock();
    EXPECT_TRUE(known || !memory) << "freed, but not allocated here";
    return answer("KRY_CryptoFree", known ? known.mapped().first : "null");
}

std::int32_t KRY_CryptoGetLastErrorDetails(void* session, void*, char** details)
{
    std::int32_t const status = answerOn(session, "KRY_CryptoGetLastErrorDetails", "", details);
    if (status == 0)
        *details = allocated({"reason", 7}, "details");
    return status;
}

std::int32_t I18NInitialize()
{
    return answer("I18NInitialize", "");
}

void I18NTerminate()
{
    answer("I18NTerminate", "");
}

INEBConfiguration& NEBConfigurationFactory::getInstance()
{
    static class final : public INEBConfiguration
    {
        I18NString getConfigurationValue(I18NString const& key, void*) override
        {
            answer("configuration", key.c_str());
            return s_recorder.m_settings[key.c_str()].c_str();
        }
    } s_configuration;
    return s_configuration;
}
