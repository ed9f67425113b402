#include "db/schema/SchemaColumns.h"

#include <array>

namespace nv::schema {

namespace {

using enum ColumnType;

constexpr Column kDefaultSettings[] = {
    {"DefaultName", Text, 50, false, "", ""},
    {"DefaultValue", Text, 255, false, "", ""},
};

constexpr Column kLinkAnalysis[] = {
    {"Link_ID", Long, 0, true, "Link_ID", "Unique record ID"},
    {"Parent_ID", Long, 0, false, "Parent_ID", "ID from URL entry from URLs table"},
    {"Child_ID", Long, 0, false, "Child_ID", "Related ID from URL entry from URLs table"},
    {"HashedURL", Text, 40, false, "Hashed URL", "The value hit on"},
    {"URL", Memo, 0, false, "URL Value", "The URL value"},
};

constexpr Column kSourceFiles[] = {
    {"SourceFile_ID", Long, 0, true, "SourceFile_ID", "Unique record ID"},
    {"DateProcessed", Date, 0, false, "Date Processed", "Date file was processed"},
    {"FileName", Memo, 0, false, "File Name", "The cached local file name"},
    {"FileExt", Text, 10, false, "File Ext", "(10)"},
    {"FilePath", Memo, 0, false, "File Path", "The original file path"},
    {"MD5Hash", Memo, 0, false, "MD5 Hash", "The original file hash"},
    {"FileSize", Long, 0, false, "FileSize", "The size of the file in bytes"},
    {"Successful", YesNo, 0, false, "Successful", "Indicates if file was processed Successfully"},
    {"SHA256Hash", Text, 64, false, "SHA-256 Hash", "The original file hash"},
    {"Browser", Text, 50, false, "Browser", "The program whose file it is"},
    {"BrowserVersion", Text, 50, false, "Browser Version",
     "(50) Of the program, or else of the file's schema"},
    {"Profile", Text, 255, false, "Profile", "(255) The folder of the profile"},
    {"Person", Text, 255, false, "Person", "(255) The folder of the account"},
    {"Device", Text, 255, false, "Device", "(255) The other device that synced all of it"},
    {"ClassicOnly", YesNo, 0, false, "Classic Rules Only",
     "Only the classic rules have read the file"},
};

constexpr Column kLinks[] = {
    {"Link_ID", Long, 0, true, "Link_ID", "Unique record ID"},
    {"URL_ID", Long, 0, false, "URL ID", ""},
    {"URL", Memo, 0, false, "URL Value", ""},
    {"HashedURL", Memo, 0, false, "Hashed URL", ""},
};

constexpr Column kTags[] = {
    {"Tag_ID", Long, 0, true, "", "Unique record ID"},
    {"URL_ID", Long, 0, false, "", ""},
    {"TagURLID", Long, 0, false, "", ""},
    {"NewTag", Memo, 0, false, "", ""},
    {"OriginalTag", Memo, 0, false, "", ""},
    {"TagFileName", Memo, 0, false, "", ""},
    {"FileOffset", Long, 0, false, "", ""},
    {"CacheFileSize", Long, 0, false, "", ""},
    {"CacheFolderName", Memo, 0, false, "", ""},
    {"CacheFileName", Memo, 0, false, "", ""},
    {"AccuracyScore", Text, 10, false, "", ""},
    {"TagType", Text, 50, false, "", ""},
    {"TagDefinition", Text, 50, false, "", ""},
    {"TagOption_ID", Long, 0, false, "", ""},
    {"TagSansParentPaths", Memo, 0, false, "", ""},
};

constexpr Column kTagOptions[] = {
    {"TagOption_ID", Long, 0, true, "TagOption_ID", "Unique record ID"},
    {"Tag_ID", Long, 0, false, "Tag ID", ""},
    {"Option", Memo, 0, false, "Option", ""},
    {"TagURLID", Long, 0, false, "", ""},
};

constexpr Column kUrlMetaData[] = {
    {"MetaData_ID", Long, 0, true, "", "Unique record ID"},
    {"URL_ID", Long, 0, false, "", ""},
    {"BucketBlockSize", Long, 0, false, "", ""},
    {"StartingBlockNumber", Long, 0, false, "", ""},
    {"DataBlocksUsed", Long, 0, false, "", ""},
    {"DataBlockFileNumber", Long, 0, false, "", ""},
    {"DataBlockSize", Long, 0, false, "", ""},
    {"ContentSize", Long, 0, false, "", ""},
    {"DataBlockFileOffset", Double, 0, false, "", ""},
    {"AddressAsBinary", Text, 64, false, "", ""},
    {"SeparateFileName", Text, 20, false, "", ""},
};

constexpr Column kKeywords[] = {
    {"Keyword_ID", Long, 0, true, "", "Unique record ID"},
    {"Keyword", Memo, 0, false, "", ""},
};

constexpr Column kUrlSortTable[] = {
    {"URL_ID", Long, 0, false, "", ""},
    {"ActionDateLocal", Date, 0, false, "", ""},
};

// Value and RawValue are numbers where they are numbers, so that queries can compare them.
constexpr Column kRecordFacts[] = {
    {"URL_ID", Long, 0, false, "URL ID", "The record"},
    {"Name", Text, 50, false, "Fact", "(50) What it is"},
    {"Value", Variant, 0, false, "Value", "In words, or in the fact's unit"},
    {"RawValue", Variant, 0, false, "Raw Value", "As the source stores it, where that differs"},
};

constexpr Column kAuditTrail[] = {
    {"Trail_ID", Long, 0, true, "Trail_ID", "Unique record ID"},
    {"ActionDateUTC", Date, 0, false, "Date [UTC]", "When it was done"},
    {"Action", Text, 20, false, "Action", "What was done"},
    {"Detail", Memo, 0, false, "Detail", "How, and what came of it"},
    {"FilePath", Memo, 0, false, "File", "The file that was read or written"},
    {"FileSize", Long, 0, false, "File Size", "The size of the file in bytes"},
    {"MD5Hash", Text, 32, false, "MD5 Hash", "Of that file"},
    {"SHA256Hash", Text, 64, false, "SHA-256 Hash", "Of that file"},
    {"RowCount", Long, 0, false, "Rows", "Records that it was about"},
    {"AppVersion", Text, 20, false, "Version", "Of the program that did it"},
    {"PreviousHash", Text, 64, false, "Hash Before", "(64) SHA-256 of the entry before"},
    {"EntryHash", Text, 64, false, "Hash", "(64) SHA-256 of this entry and the hash before"},
};

constexpr std::string_view kTrailStaysAsWritten =
    "CREATE TRIGGER AuditTrail_NoUpdate BEFORE UPDATE ON AuditTrail BEGIN "
    "SELECT RAISE(ABORT, 'the case trail can''t be changed'); END;"
    "CREATE TRIGGER AuditTrail_NoDelete BEFORE DELETE ON AuditTrail BEGIN "
    "SELECT RAISE(ABORT, 'the case trail can''t be changed'); END";

constexpr Column kRebuildAudit[] = {
    {"Audit_ID", Long, 0, true, "Audit_ID", "Unique record ID"},
    {"URL_ID", Long, 0, false, "URL ID", "The rebuilt page"},
    {"Reference", Long, 0, false, "Reference", "Its line in the page's IngredientIDs, from 1"},
    {"AccuracyScore", Text, 20, false, "Score", "Picks and candidates"},
    {"Rewritten", YesNo, 0, false, "Rewritten", "Whether the page names the part"},
    {"Candidates", Memo, 0, false, "Candidates", "IDs of URLs, the chosen one first"},
};

constexpr Column kRebuiltParts[] = {
    {"Part_ID", Long, 0, true, "Part_ID", "Unique record ID"},
    {"URL_ID", Long, 0, false, "URL ID", "The rebuilt page"},
    {"Reference", Long, 0, false, "Reference", "Its number among those of the page, from 1"},
    {"Document_ID", Long, 0, false, "Document ID", "ID of the URL in whose text it stands"},
    {"Element", Text, 50, false, "Element", "(50) Empty in a style sheet"},
    {"Attribute", Text, 50, false, "Attribute", "(50) Or the property of a style"},
    {"OriginalValue", Memo, 0, false, "Reference", "As the document means it"},
    {"Address", Memo, 0, false, "Address", "Resolved"},
    {"FoundBy", Text, 50, false, "Found By", "(50) The rule, or why there is no part"},
    {"PartURL_ID", Long, 0, false, "Part ID", "ID of the URL that stands for it; 0 for none"},
    {"LocalName", Text, 20, false, "File", "(20) Of the part, beside the page"},
    {"PartDateUTC", Date, 0, false, "Part Date [UTC]", "When the part was answered"},
    {"SecondsFromPage", Long, 0, false, "Seconds", "From the page's date to the part's"},
    {"Candidates", Memo, 0, false, "Candidates", "IDs of URLs, the one taken first"},
    {"CandidateCount", Long, 0, false, "Candidate Count", "Of all that the rule found"},
    {"SHA256Hash", Text, 64, false, "SHA-256 Hash", "(64) Of the part's bytes, unpacked"},
};

constexpr Column kPartChoices[] = {
    {"Choice_ID", Long, 0, true, "Choice_ID", "Unique record ID"},
    {"URL_ID", Long, 0, false, "URL ID", "The page"},
    {"Address", Memo, 0, false, "Address", "Of the reference, resolved"},
    {"PartURL_ID", Long, 0, false, "Part ID", "ID of the URL that stands for it; 0 for none"},
};

constexpr Column kSearchResults[] = {
    {"Result_ID", Long, 0, true, "Result_ID", "Unique record ID"},
    {"Name", Text, 100, false, "Name", "(100) Also that of its stored query"},
    {"Kind", Text, 20, false, "Kind", "(20) Search or Keywords"},
    {"SearchText", Memo, 0, false, "Search", "What was looked for"},
    {"FilePath", Memo, 0, false, "File", "The list of keywords"},
    {"SHA256Hash", Text, 64, false, "SHA-256 Hash", "Of that file"},
    {"MadeUTC", Date, 0, false, "Date [UTC]", "When it was found"},
    {"RowCount", Long, 0, false, "Rows", "Records that it holds"},
    {"AppVersion", Text, 20, false, "Version", "Of the program that found it"},
};

constexpr Column kSearchHits[] = {
    {"Result_ID", Long, 0, false, "Result_ID", "The result"},
    {"URL_ID", Long, 0, false, "URL ID", "The record"},
    {"Term", Memo, 0, false, "Term", "The keyword; empty for a search"},
    {"Field", Text, 20, false, "Field", "(20) Where it stands; empty for a search"},
    {"Hits", Long, 0, false, "Hits", "How often it stands there"},
};

// What an examiner calls tags. Table Tags is another thing: the references of pages.
constexpr Column kNamedTags[] = {
    {"NamedTag_ID", Long, 0, true, "NamedTag_ID", "Unique record ID"},
    {"Name", Text, 100, false, "Name", "(100) As the examiner calls it"},
    {"Color", Text, 7, false, "Color", "(7) #rrggbb"},
    {"Position", Long, 0, false, "Position", "Its place among the tags, from 1"},
    {"Note", Memo, 0, false, "Note", "What the tag is for"},
};

constexpr Column kRecordTags[] = {
    {"NamedTag_ID", Long, 0, false, "NamedTag_ID", "The tag"},
    {"URL_ID", Long, 0, false, "URL ID", "The record that has it"},
    {"Note", Memo, 0, false, "Note", "Why the record has it"},
};

constexpr std::array<Relationship, 7> kRelationships = {{
    {"URLsLinks", "URLs", "URL_ID", "LinkAnalysis", "Parent_ID"},
    {"URLsLinks1", "URLs", "URL_ID", "LinkAnalysis", "Child_ID"},
    {"SourceFilesURLs_Relationship", "SourceFiles", "SourceFile_ID", "URLs", "SourceFile_ID"},
    {"Links_Relationship", "URLs", "URL_ID", "Links", "URL_ID"},
    {"URLTags_Relationship", "URLs", "URL_ID", "Tags", "URL_ID"},
    {"TagOptions_Relationship", "Tags", "Tag_ID", "TagOptions", "Tag_ID"},
    {"RecordFacts_Relationship", "URLs", "URL_ID", "RecordFacts", "URL_ID"},
}};

constexpr std::array<Index, 11> kIndexes = {{
    {"URLIndex", "URLs", "URL"},
    {"Links_Relationship", "Links", "URL_ID"},
    {"URLTags_Relationship", "Tags", "URL_ID"},
    {"TagOptions_Relationship", "TagOptions", "Tag_ID"},
    {"RebuildAudit_Page", "RebuildAudit", "URL_ID"},
    {"RebuiltParts_Page", "RebuiltParts", "URL_ID"},
    {"PartChoices_Page", "PartChoices", "URL_ID"},
    {"RecordFacts_Relationship", "RecordFacts", "URL_ID"},
    {"SearchHits_Result", "SearchHits", "Result_ID"},
    {"RecordTags_Tag", "RecordTags", "NamedTag_ID"},
    {"RecordTags_Record", "RecordTags", "URL_ID"},
}};

} // namespace

std::span<const Table> projectTables() {
    static const std::array<Table, 11> tables = {{
        {"URLs", "URL_ID_PK", urlColumns()},
        {"DefaultSettings", "", kDefaultSettings},
        {"LinkAnalysis", "ParentChild_ID_PK", kLinkAnalysis},
        {"SourceFiles", "SourceFile_ID_PK", kSourceFiles},
        {"Links", "Link_ID_PK", kLinks},
        {"Tags", "Tag_ID_PK", kTags},
        {"TagOptions", "TagOption_ID_PK", kTagOptions},
        {"URLMetaData", "MetaData_ID_PK", kUrlMetaData},
        {"Keywords", "Keyword_ID_PK", kKeywords},
        {"URLSortTable", "", kUrlSortTable},
        {"RecordFacts", "", kRecordFacts},
    }};
    return tables;
}

std::span<const Table> tablesOfFirstUse() {
    static const std::array<Table, 8> tables = {{
        {"AuditTrail", "Trail_ID_PK", kAuditTrail, kTrailStaysAsWritten},
        {"RebuildAudit", "Audit_ID_PK", kRebuildAudit},
        {"RebuiltParts", "Part_ID_PK", kRebuiltParts},
        {"PartChoices", "Choice_ID_PK", kPartChoices},
        {"SearchResults", "Result_ID_PK", kSearchResults},
        {"SearchHits", "", kSearchHits},
        {"NamedTags", "NamedTag_ID_PK", kNamedTags},
        {"RecordTags", "", kRecordTags},
    }};
    return tables;
}

std::span<const Relationship> relationships() {
    return kRelationships;
}

std::span<const Index> indexes() {
    return kIndexes;
}

} // namespace nv::schema
