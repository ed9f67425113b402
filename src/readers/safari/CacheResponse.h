#pragma once

#include "base/ByteView.h"
#include "time/Date.h"

#include <string>

namespace nv {

/// What the response object of a cached file tells. Dates are UTC.
struct CacheResponse {
    enum class Form {
        xml,
        binary,    ///< a later form, of which nothing but its text is taken
        unreadable ///< no property list, or a damaged one: what stood before the damage is taken
    };

    Form form = Form::xml;
    std::string text; ///< the whole object, without its zero bytes
    std::string contentType;
    Date lastModified;
    Date date;                     ///< when the server sent the file
    bool dateIsUnreadable = false; ///< a date is there, in a form that gives none
};

CacheResponse readCacheResponse(ByteView object);

} // namespace nv
