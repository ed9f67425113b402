// cookies = "cook" ...

#include "readers/safari/UnreadFormats.h"

#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/FolderLayout.h"
#include "readers/safari/Options.h"
#include "readers/sqlite/SchemaTables.h"

namespace nv {

namespace {

bool isDatabase(const Candidate &file) {
    return nameHas(file, "history") && file.extension == "db" &&
           hasTables(file, {"history_items", "history_visits"});
}

bool isBinaryCookies(const Candidate &file) {
    return file.name.ends_with(".binarycookies") && beginsWith(file, "cook");
}

constexpr FileForm kBinaryForm = {.words = "\"cook\" of binary cookies"};

} // namespace

constinit const Reader kSafariDatabaseFormat = {
    .type = HistoryFileType{83},
    .key = "safari-history-db",
    .kind = "Safari history, database",
    .option = &kSafariHistoryOption,
    .mask = "History*.db",
    .recognises = isDatabase,
    .page = "not-read-yet",
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kSafariBinaryCookiesFormat = {
    .type = HistoryFileType{84},
    .key = "safari-binarycookies",
    .kind = "Safari cookies, binary",
    .option = &kSafariCookiesOption,
    .mask = "*.binarycookies",
    .recognises = isBinaryCookies,
    .page = "not-read-yet",
    .form = &kBinaryForm,
    .isBeyondClassic = true,
};

} // namespace nv
