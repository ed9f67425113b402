#pragma once

#include "readers/Reader.h"
#include "readers/firefox/cache/Cache2Entry.h"

#include <filesystem>
#include <string>

namespace nv {

/// A file of the cache that may hold an entry.
struct Cache2File {
    std::filesystem::path path;
    std::string folder; ///< below the cache's: "entries", "doomed"; empty when it lies in it
    bool isGivenUp = false;
    std::string name; ///< "doomed/1033657517", for people
};

/// The record of an entry, its body where it lies.
UrlRecord parseCache2Record(const Cache2Entry &entry, const Cache2File &file,
                            const ReadContext &ctx);

/// Writes the body of such a record to `target`, as it is stored.
bool fetchFirefoxCache2Body(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
