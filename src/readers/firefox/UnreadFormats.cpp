// session = "mozLz40\0" ...

#include "readers/firefox/UnreadFormats.h"

#include "readers/BigEndian.h"
#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/FolderLayout.h"
#include "readers/firefox/Options.h"
#include "readers/sqlite/SchemaTables.h"

namespace nv {

namespace {

using namespace std::string_view_literals;

bool isJsonlz4(const Candidate &file) {
    const bool isNamed = nameHas(file, ".jsonlz4") || file.extension == "baklz4";
    return isNamed && beginsWith(file, "mozLz40\0"sv);
}

bool isStorage(const Candidate &file) {
    if (file.extension != "sqlite")
        return false;
    if (!file.verifySignatures)
        return file.name == "webappsstore.sqlite" || folderName(file) == "idb" ||
               (file.name == "data.sqlite" && folderName(file) == "ls");
    const auto tables = schemaTables(file);
    const auto has = [&tables](const char *table) { return tables.contains(table); };
    return has("webappsstore2") || has("webappsstore") || // local storage, earlier
           (has("data") && has("database")) ||            // local storage
           (has("object_data") && has("object_store"));   // IndexedDB
}

} // namespace

constinit const Reader kFirefoxJsonlz4Format = {
    .type = HistoryFileType{71},
    .key = "firefox-jsonlz4",
    .kind = "Firefox session or backup, packed",
    .option = &kFirefoxHistoryOption,
    .mask = "*.jsonlz4;*.jsonlz4-*;*.baklz4",
    .recognises = isJsonlz4,
    .page = "not-read-yet",
    .form = &kPackedForm,
    .isBeyondClassic = true,
};

constinit const Reader kFirefoxStorageFormat = {
    .type = HistoryFileType{72},
    .key = "firefox-storage",
    .kind = "Firefox storage of sites",
    .option = &kFirefoxOtherOption,
    .mask = "*.sqlite",
    .recognises = isStorage,
    .page = "not-read-yet",
    .form = &kDatabaseForm,
    .isBeyondClassic = true,
};

} // namespace nv
