#include "app/cli/Examples.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

constexpr Example kExamples[] = {
    {"", "import case.nvp /mnt/seized", "all that is found below a folder"},
    {"", "list case.nvp --host example.com", "the rows of a host as a table"},
    {"", "query case.nvp \"SELECT TOP 5 URL FROM URLs WHERE ActionDateUTC > #1/15/2009#\"", ""},
    {"", "show case.nvp 17", "everything about one row"},
    {"", "extract case.nvp 17 page.html", "its cached content as a file"},
    {"", "rebuild case.nvp 17 --out pages", "the page with its parts, for offline view"},
    {"", "report case.nvp --type graphical --tagged --out report", "to be handed over"},

    {"import", "import case.nvp /mnt/seized", "all that is found below a folder"},
    {"import", "import case.nvp /mnt/seized/History --zone Europe/Berlin",
     "one file, dates by the law of that zone"},
    {"import", "import case.nvp /mnt/seized --thumbnails",
     "pictures and pages drawn small as well"},
    {"list", "list case.nvp --host example.com", "the rows of a host as a table"},
    {"list", "list case.nvp --filter CacheURLs,JPEG", "cached JPEG pictures only"},
    {"list", "list case.nvp --format csv > rows.csv", "all rows and columns for a spreadsheet"},
    {"query", "query case.nvp \"SELECT TOP 5 URL FROM URLs WHERE ActionDateUTC > #1/15/2009#\"",
     ""},
    {"query", "query case.nvp \"SELECT Host, count(*) FROM URLs GROUP BY Host\" --format csv", ""},
    {"queries", "queries case.nvp", "what the project holds"},
    {"queries", "list case.nvp --query \"TOP 25 URLs\"", "the rows of one"},
    {"queries save", "queries save case.nvp Often \"SELECT * FROM URLs WHERE Visits > 9\"", ""},
    {"queries save", "queries save case.nvp Often \"SELECT * FROM URLs\" --overwrite", ""},
    {"queries show", "queries show case.nvp \"TOP 25 URLs\"", ""},
    {"queries show", "queries show case.nvp Often > often.sql", "kept as a file"},
    {"queries delete", "queries delete case.nvp Often", ""},
    {"queries delete", "queries delete case.nvp \"TOP 25 URLs\"", ""},
    {"show", "show case.nvp 17", "a line a property, as in the window"},
    {"show", "show case.nvp 17 --format jsonl", "every column of the row"},
    {"dump", "dump index.dat", "recognised by its name and first bytes"},
    {"dump", "dump carved.bin --as ie-cache --format jsonl", "whatever the file is called"},
    {"extract", "extract case.nvp 17 page.html", "unpacked; its size and MD5 are told"},
    {"extract", "extract case.nvp 17 - | strings", "to another program"},
    {"zones", "zones", "the numbers for import --zone"},
    {"zones", "zones --format csv", ""},
    {"zones", "zones --exact", "the names for import --zone"},
    {"rebuild", "rebuild case.nvp 17 42 --out pages", "two pages, each in a folder of its own"},
    {"rebuild", "rebuild case.nvp --tagged --out pages --no-scripts", "those with the tick"},
    {"audit", "audit case.nvp 17", "a page that was rebuilt"},
    {"audit", "audit case.nvp 17 --format csv", ""},
    {"tag", "tag case.nvp 17 42", ""},
    {"tag", "tag case.nvp --where \"Visits > 5\"", "by a condition"},
    {"tag", "tag case.nvp 17 --off", "takes the tick away"},
    {"template create", "template create case.nvp 17", "of a page that was rebuilt"},
    {"template create", "template create case.nvp 17 --folder mine --overwrite", ""},
    {"template list", "template list", ""},
    {"template list", "template list --folder mine", ""},
    {"template apply", "template apply case.nvp inbox.NVT 42", "by its name in the folder"},
    {"template apply", "template apply case.nvp mine/inbox.NVT 42 --any-title", "by its path"},
    {"template apply", "template apply case.nvp inbox.NVT 42 --out pages",
     "and the page with its parts into a folder"},
    {"thumbnails", "thumbnails case.nvp --all", "what has none yet"},
    {"thumbnails", "thumbnails case.nvp 17 --redo", "one row anew"},
    {"gallery", "gallery case.nvp --out page1.html", "the first page"},
    {"gallery", "gallery case.nvp --pard 15-40 --sizes l,xl --out p.html", "large photographs"},
    {"gallery", "gallery case.nvp --page 2 --per-page 50 --out page2.png", "as one picture"},
    {"trail", "trail case.nvp", ""},
    {"trail", "trail case.nvp --format csv > trail.csv", ""},
    {"verify", "verify case.nvp", "exit code 2 when a file has changed or is gone"},
    {"verify", "verify case.nvp --format csv > hashes.csv", ""},
    {"links", "links case.nvp", "the analysis of all rows"},
    {"links", "links case.nvp --url 17", "what it found for one"},
    {"note", "note case.nvp 17", "prints the note"},
    {"note", "note case.nvp 17 \"seen by two examiners\"", "writes it"},
    {"note", "note case.nvp 17 --delete", "takes it away"},
    {"hex", "hex case.nvp 17 --length 64", "the first bytes of its content"},
    {"hex", "hex case.nvp 17 --source", "the artefact where the record lies"},
    {"hex", "hex case.nvp 17 --find password --ignore-case", "every place of a text"},
    {"exif", "exif case.nvp 17", ""},
    {"exif", "exif case.nvp 17 --format jsonl", ""},
    {"text", "text case.nvp 17", ""},
    {"text", "text case.nvp 17 > page.txt", ""},
    {"hosts", "hosts case.nvp", "by name"},
    {"hosts", "hosts case.nvp --by-visits --format csv", "most visited first"},
    {"report", "report case.nvp --type graphical --tagged --out report", "to be handed over"},
    {"report", "report case.nvp --type tabular --query \"TOP 25 URLs\" --out top --trail", ""},
    {"export", "export case.nvp rows.xlsx", "the form follows from the name"},
    {"export", "export case.nvp rows.txt --delimiter tab --tagged", "rows with the tick"},
    {"export", "export case.nvp - --format csv | less", "to the standard output"},
    {"upgrade", "upgrade case.nvp", "compares, changes nothing"},
    {"upgrade", "upgrade case.nvp --fix", "makes a new file, and keeps the old one"},
    {"options get", "options get", "all settings"},
    {"options get", "options get RootPath --project case.nvp", "a value of a project"},
    {"options set", "options set GalleryRecordsPerPage 50", ""},
    {"options set", "options set RootPath /mnt/moved --project case.nvp", "evidence was moved"},
};

} // namespace

std::span<const Example> examples() {
    return kExamples;
}

std::string examplesText(std::string_view command) {
    std::string text;
    for (const Example &example : kExamples) {
        if (example.command != command)
            continue;
        text += text.empty() ? "Examples:" : "";
        text += example.what.empty()
                    ? fmt::format("\n  norvelane-cli {}", example.line)
                    : fmt::format("\n  norvelane-cli {:<54} {}", example.line, example.what);
    }
    return text;
}

} // namespace nv::cli
