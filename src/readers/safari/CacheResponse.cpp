// The response object of a cached file, in XML form:
//   plist = dict { Version integer  Array array { url:dict  time:real  integer  status:integer
//                  headers:dict  length:integer  type:string } }
// `headers` holds a key and a string for each field of the HTTP header.

#include "readers/safari/CacheResponse.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "readers/HeaderDate.h"
#include "readers/Limits.h"
#include "readers/plist/PropertyList.h"
#include "readers/sqlite/KeptMessage.h"

namespace nv {

namespace {

void takeField(CacheResponse &response, std::string_view key, const std::string &value) {
    if (value.empty())
        return;
    const std::string name = toLower(key);
    if (name == "content-type") {
        response.contentType = value;
    } else if (name == "last-modified") {
        response.lastModified = headerDate(value);
        response.dateIsUnreadable |= !response.lastModified.has();
    } else if (name == "date") {
        response.date = headerDateBehindDayName(value);
        response.dateIsUnreadable |= !response.date.has();
    }
}

/// True when the list could be read to its end.
bool takeFields(CacheResponse &response, std::string_view xml) {
    const PropertyList list(xml, limits::kResponseBytes);
    for (const pugi::xpath_node &array : list.arrays())
        for (const pugi::xml_node dict : array.node().children("dict"))
            eachValue(dict, [&response](std::string_view key, pugi::xml_node value) {
                takeField(response, key, textOf(value));
            });
    return list.damage().empty();
}

} // namespace

CacheResponse readCacheResponse(ByteView object) {
    CacheResponse response;
    const std::string text = replaceAll(object.raw(), std::string_view("\0", 1), "");
    response.text = decodeText(text);
    if (isBinaryPropertyList(object)) {
        response.form = CacheResponse::Form::binary;
        return response;
    }
    KeptMessage unused; // the count of such objects says it, and the text is kept whole
    if (!trapped(unused, Severity::Low, "", "", false, [&] { return takeFields(response, text); }))
        response.form = CacheResponse::Form::unreadable;
    return response;
}

} // namespace nv
