#include "url/ARXUriDispatchHelper.h"

#include <initializer_list>
#include <memory>
#include <string_view>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationFactory.h"
#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBFmDir.h"
#include "crypto/ARXKRYDataPtr.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "frame/ARXAssert.h"
#include "url/ARXHelper.h"

namespace
{
char constexpr s_sessionConfigDocument[] =
    "<sessionConfigDocument><serviceID>TALM</serviceID></sessionConfigDocument>";
char constexpr s_setInfoDocument[] =
    "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>";

using Web64Text = std::unique_ptr<char[]>;

// All or nothing: without memory url stays as it was.
void appendPieces(std::string& url, std::initializer_list<std::string_view> pieces)
{
    std::size_t size = url.size();
    for (std::string_view const piece : pieces)
        size += piece.size();
    url.reserve(size);
    for (std::string_view const piece : pieces)
        url += piece;
}

char const* toText(I18NString const& text)
{
    return text.c_str(nullptr, nullptr, nullptr, nullptr);
}

// Replaces url by a configured base path, or empties it.
void startUrl(std::string& url, bool useBasePath, void (*readBasePath)(I18NString&))
{
    url.clear();
    if (!useBasePath)
        return;
    I18NString basePath;
    readBasePath(basePath);
    url = toText(basePath);
}
}  // namespace

ARXUriDispatchHelper::ARXUriDispatchHelper() = default;

ARXUriDispatchHelper::~ARXUriDispatchHelper() = default;

void ARXUriDispatchHelper::generateByteServingUrlFromBasePath(std::string const& path,
                                                              char const* base64SessionID, std::string& url)
{
    std::string name;
    NEBFmDir::splitPath(path, nullptr, &name);
    NEBByteBuffer nameBytes(256, 256);
    nameBytes.appendChars(name.data(), name.size());
    Web64Text const file(ARXHelper::createWeb64(nameBytes));

    NEBByteBuffer nameDigest(256, 256);
    encryptHMAC(name.data(), name.size(), nameDigest);
    Web64Text const key(ARXHelper::createWeb64(nameDigest));

    NEB_ASSERT(base64SessionID);
    name += base64SessionID;
    NEBByteBuffer sessionDigest(256, 256);
    encryptHMAC(name.data(), name.size(), sessionDigest);
    Web64Text const session(ARXHelper::createWeb64(sessionDigest));

    I18NString const dispatcher =
        NEBConfigurationFactory::getInstance().getConfigurationValue("dispatcherID", nullptr);
    appendPieces(url, {"?b_action=dc&f=", file.get(), "&k=", key.get(), "&s=", session.get(),
                       "&did=", toText(dispatcher)});
}

void ARXUriDispatchHelper::genGatewayUrlForFile(std::string const& path, std::string& url,
                                                char const* base64SessionID, bool useBasePath)
{
    startUrl(url, useBasePath, [](I18NString& basePath) { ARXHelper::getGatewayBasePath(basePath, false); });
    generateByteServingUrlFromBasePath(path, base64SessionID, url);
}

void ARXUriDispatchHelper::genUrlForFile(std::string const& path, std::string& url,
                                         char const* base64SessionID, bool useBasePath)
{
    genGatewayUrlForFile(path, url, base64SessionID, useBasePath);
}

void ARXUriDispatchHelper::genExternalDispatcherUrlForFile(std::string const& path, std::string& url,
                                                           char const* base64SessionID, bool useBasePath)
{
    startUrl(url, useBasePath, ARXHelper::getExternalDispatcherBasePath);
    generateByteServingUrlFromBasePath(path, base64SessionID, url);
}

void ARXUriDispatchHelper::encryptHMAC(char const* data, std::size_t size, NEBByteBuffer& output)
{
    NEB_ASSERT(size && data);
    ARXSimpleKRYHandleIPtr const handle(
        ARXKRYHandleFactory::createHandle(s_sessionConfigDocument, s_setInfoDocument));
    NEB_ASSERT(handle.get());
    output.reset();

    char* outData = nullptr;
    std::size_t outSize = 0;
    std::int32_t const status = handle->protectData(data, size, &outData, &outSize, nullptr);
    // Guarded before the status is checked, so that the digest is freed after a failure too.
    ARXKRYDataPtr const digest(handle.get(), outData);
    NEB_ASSERT(KRY_SUCCEEDED(status));
    output.appendChars(digest.get(), outSize);
}
