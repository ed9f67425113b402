#include "readers/firefox/cache/CachedAddress.h"

#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/PageObjects.h"

#include <utility>

namespace nv {

void setCachedAddress(UrlRecord &url, std::string address, std::string raw) {
    url.URL = std::move(address);
    url.URLRawValue = std::move(raw);
    url.host = parseHost(url.URL);
    url.HashedURL = hashOfUrl(url.URL);
    url.CacheFileName = getFilenameFromPath(url.URL);
    url.CacheFileNameDecoded = url.CacheFileName;
    url.URLProtocol = getURLProtocol(url.URL);
    url.URLParameters = parametersOf(url.URL);
    url.User = parseUserFromURL(url.URL);
    setPageObjects(url);
}

} // namespace nv
