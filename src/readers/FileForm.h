#pragma once

#include "readers/Reader.h"

#include <string>
#include <string_view>

namespace nv {

/// What a browser's file of a format's name is, so that one which isn't can be told as damaged: a
/// database without its head is taken for none, and would be missed without a word.
struct FileForm {
    std::string_view words; ///< "an SQLite database"
    /// Whether a file that its format doesn't recognise is sound all the same, and something else
    /// that browsers keep under that name. Null: there is no such thing.
    bool (*isSound)(const Candidate &) = nullptr;
    /// Whether bytes that are left, or its name alone, show what the file was wherever it lies.
    bool (*hasRemains)(const Candidate &) = nullptr;
};

extern const FileForm kTablesForm;    ///< a database with the tables of its format
extern const FileForm kDatabaseForm;  ///< a database, whose tables differ with the version
extern const FileForm kJsonForm;      ///< an object; its members differ with program and version
extern const FileForm kBookmarksForm; ///< of Chromium
extern const FileForm kLoginsForm;    ///< of Firefox
extern const FileForm kSessionForm;   ///< windows and tabs of Chromium
extern const FileForm kPackedForm;    ///< what Firefox packs
extern const FileForm kStoreForm;     ///< the file that names the list of a LevelDB store's files

/// Why a file whose name the format takes and whose bytes it doesn't is damaged; names file, place
/// and what was expected. Empty where it may as well be another program's: unless `isNamed`, when
/// the examiner named the file himself, its place has to be a browser's. Throws EvidenceFailure.
std::string damageOfNamed(const Candidate &file, const Reader &format, bool isNamed);

} // namespace nv
