#include "db/marks/RebuiltParts.h"

#include "db/marks/PageNotes.h"
#include "db/schema/SchemaCatalogue.h"
#include "db/sql/BindId.h"
#include "db/sql/Savepoint.h"
#include "db/sql/StoredText.h"

#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

namespace nv {

namespace {

constexpr const char *kColumns =
    "Document_ID, Element, Attribute, OriginalValue, Address, FoundBy, PartURL_ID, LocalName, "
    "PartDateUTC, SecondsFromPage, Candidates, CandidateCount, SHA256Hash";

void insertNote(SQLite::Statement &insert, UrlId page, std::int64_t reference,
                const PartNote &note) {
    const std::string candidates = fmt::format("{}", fmt::join(note.candidates, " "));
    insert.reset();
    insert.clearBindings();
    bindId(insert, 1, page);
    insert.bind(2, reference);
    bindId(insert, 3, note.document);
    bindText(insert, 4, note.element);
    bindText(insert, 5, note.attribute);
    bindText(insert, 6, note.original);
    bindText(insert, 7, note.address);
    bindText(insert, 8, note.rule);
    bindId(insert, 9, note.part);
    bindText(insert, 10, note.localName);
    if (note.time.has())
        insert.bind(11, note.time.days());
    if (note.seconds)
        insert.bind(12, *note.seconds);
    bindText(insert, 13, candidates);
    insert.bind(14, note.candidateCount);
    bindText(insert, 15, note.sha256);
    insert.exec();
}

PartNote noteIn(SQLite::Statement &row) {
    const auto text = [&row](int at) { return row.getColumn(at).getString(); };
    PartNote note;
    note.document = UrlId{row.getColumn(0).getInt64()};
    note.element = text(1);
    note.attribute = text(2);
    note.original = text(3);
    note.address = text(4);
    note.rule = text(5);
    note.part = UrlId{row.getColumn(6).getInt64()};
    note.localName = text(7);
    if (!row.getColumn(8).isNull())
        note.time = Date::fromDays(row.getColumn(8).getDouble());
    if (!row.getColumn(9).isNull())
        note.seconds = row.getColumn(9).getInt64();
    note.candidates = numbersIn(text(10));
    note.candidateCount = row.getColumn(11).getInt64();
    note.sha256 = text(12);
    return note;
}

} // namespace

void RebuiltParts::forget(UrlId page) {
    forgetPage(m_database, kRebuiltPartsTable, page);
}

void RebuiltParts::store(UrlId page, std::span<const PartNote> notes) {
    Savepoint whole(m_database);
    SchemaCatalogue(m_database).addOnFirstUse(kRebuiltPartsTable);
    forget(page);
    SQLite::Statement insert(m_database,
                             fmt::format("INSERT INTO RebuiltParts (URL_ID, Reference, {}) VALUES "
                                         "(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                                         kColumns));
    std::int64_t reference = 0;
    for (const PartNote &note : notes)
        insertNote(insert, page, ++reference, note);
    whole.release();
}

std::vector<PartNote> RebuiltParts::notes(UrlId page) const {
    std::vector<PartNote> all;
    if (!m_database.tableExists(kRebuiltPartsTable))
        return all;
    SQLite::Statement row(
        m_database,
        fmt::format("SELECT {} FROM RebuiltParts WHERE URL_ID = ? ORDER BY Part_ID", kColumns));
    bindId(row, 1, page);
    while (row.executeStep())
        all.push_back(noteIn(row));
    return all;
}

} // namespace nv
