#include "app/cli/Grammar.h"

namespace nv::cli {

void Grammar::addViewers() {
    const auto addRow = [this](CLI::App *to, RowArguments &row) {
        addProject(to, row.project);
        to->add_option("URL_ID", row.urlId, "Key of the row")->required();
    };
    CLI::App *note = command("note", "Print, write or take away the note of a row",
                             [this](Session &s) { return noteCommand(s, m_note); });
    addRow(note, m_note.row);
    note->add_option("TEXT", m_note.text, "The new note, not empty (default: print the note)");
    note->add_flag("--delete", m_note.remove, "Take the note away");

    CLI::App *hex = command("hex", "The bytes of a row's cached content",
                            [this](Session &s) { return hexCommand(s, m_hex); });
    addRow(hex, m_hex.row);
    hex->add_flag("--source", m_hex.source,
                  "The source file at the record's offset, not the cached content");
    hex->add_option("--offset", m_hex.offset, "Where to begin, decimal or as 0x1F40");
    hex->add_option("--length", m_hex.length, "How many bytes")->capture_default_str();
    hex->add_option("--find", m_hex.find,
                    "Every place of this text, in Windows-1252, UTF-8 and UTF-16");
    hex->add_option("--find-bytes", m_hex.findBytes, "Every place of bytes as \"4A 46 49 46\"");
    hex->add_flag("--ignore-case", m_hex.ignoreCase, "Letters of --find in either case");

    CLI::App *exif = command("exif", "What the camera wrote into a row's picture",
                             [this](Session &s) { return exifCommand(s, m_row, m_format); });
    addRow(exif, m_row);
    addFormat(exif);

    addRow(command("text", "A row's cached content as text, whatever its encoding",
                   [this](Session &s) { return textCommand(s, m_row); }),
           m_row);
}

} // namespace nv::cli
