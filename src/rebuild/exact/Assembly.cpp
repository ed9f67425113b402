#include "rebuild/exact/Assembly.h"

#include "address/WebAddress.h"
#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "markup/PageText.h"
#include "rebuild/LocalNames.h"
#include "rebuild/exact/BasePolicy.h"
#include "rebuild/exact/Bases.h"
#include "rebuild/exact/DrawingText.h"
#include "rebuild/exact/OpenedXml.h"
#include "rebuild/exact/OwnParts.h"
#include "rebuild/exact/PageReferences.h"
#include "rebuild/exact/RecordAddress.h"
#include "rebuild/exact/SameSet.h"
#include "rebuild/exact/Spelling.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "Assembly.Run()";
/// Documents within documents, and sheets that sheets import.
constexpr int kDeepest = 8;
/// Of a page with all that it brings; what it names beyond is neither looked for nor told.
constexpr std::size_t kMostReferences = 50'000;
constexpr double kSecondsOfDay = 86'400;

bool bringsDocument(RefUse use) {
    return use == RefUse::style || use == RefUse::frame || use == RefUse::object;
}

void putIn(std::vector<TextEdit> &edits, std::size_t at, std::string text) {
    if (at != std::string_view::npos && !text.empty())
        edits.push_back({{at, at}, std::move(text)});
}

/// What stands in place of a document that can't be read.
std::string_view emptyDocument(PartForm form) {
    if (form == PartForm::style)
        return "";
    return form == PartForm::svg ? R"(<svg xmlns="http://www.w3.org/2000/svg"></svg>)"
                                 : "<!DOCTYPE html><html><body>This frame can't be shown: it is "
                                   "beyond what the program reads.</body></html>";
}

std::string fragmentOf(const std::string &address) {
    const std::size_t at = address.find('#');
    return at == std::string::npos ? std::string() : address.substr(at);
}

} // namespace

Assembly::Assembly(const UrlRecord &page, fs::path folder, PartFiles &files, PartFinder &finder,
                   const RebuildContext &ctx)
    : m_page(page), m_folder(std::move(folder)), m_files(files), m_finder(finder), m_ctx(ctx) {}

bool Assembly::run(const Bytes &bytes) {
    Document root;
    root.record = m_page.URLID;
    root.name = pageNameOf(m_page.URLID);
    root.url = askedAddress(m_page.URL, m_page.URLRawValue);
    root.headers = headersOf(m_page, m_ctx);
    m_known.insert(root.name);
    m_root = read(root, bytes);
    while (!m_open.empty() && !m_cancelled) {
        const Document next = std::move(m_open.front());
        m_open.pop_front();
        rewrite(next);
        ++m_done;
    }
    return !m_cancelled;
}

std::string Assembly::page(const std::string &banner) const {
    std::vector<TextEdit> edits = m_root.edits;
    putIn(edits, m_root.bannerAt, banner);
    return m_root.source->rewritten(std::move(edits));
}

bool Assembly::goesOn(const std::string &address) {
    const auto done = static_cast<double>(m_done);
    if (m_ctx.task.wantsStep()) {
        const auto counter = static_cast<std::int64_t>(m_named);
        m_ctx.task.show({address, 0, 0, "Reconciling", counter, counter});
    }
    m_cancelled =
        m_cancelled || !m_ctx.task.advance(done / (done + static_cast<double>(m_open.size()) + 1));
    return !m_cancelled;
}

/// A document that fails costs itself: those that name it show that it is missing.
void Assembly::rewrite(const Document &document) {
    const fs::path file = m_folder / document.name;
    const std::size_t notes = m_notes.size();
    const bool isRead = trapped(m_ctx.log, Severity::Warning, kProcedure, kNotSerious, false, [&] {
        const Bytes bytes = readWhole(file);
        Read made = read(document, bytes);
        writeWhole(file, made.source->rewritten(std::move(made.edits)));
        return true;
    });
    if (isRead)
        return;
    writeWhole(file, emptyDocument(document.form));
    m_notes.resize(notes);
    for (PartNote &note : m_notes)
        if (note.localName == document.name)
            note.rule = partrule::kTooLarge;
}

Assembly::Read Assembly::read(const Document &document, const Bytes &bytes) {
    const ByteView view(bytes);
    Read made;
    DecodedPage decoded =
        document.form == PartForm::style
            ? decodedStyle(view, charsetOfHeader(document.headers), document.charset)
        : document.form == PartForm::svg ? decodedDrawing(bytes, document.headers)
                                         : decodedPage(view, document.headers);
    made.foundIn = decoded.foundIn;
    made.source.emplace(view, std::move(decoded));
    if (document.form == PartForm::page && isSentAsXml(document.headers))
        open(made);
    resolve(document, made, scan(document, made));
    return made;
}

/// Its file is called as one of HTML, and read as one.
void Assembly::open(Read &read) {
    std::string opened = read.source->rewritten(openedXml(read.source->text()));
    read.opened.assign(opened.begin(), opened.end());
    DecodedPage decoded =
        decodedPage(ByteView(read.opened),
                    fmt::format("Content-Type: text/html; charset={}", read.source->charset()));
    read.source.emplace(ByteView(read.opened), std::move(decoded));
}

Assembly::Scanned Assembly::scan(const Document &document, Read &read) {
    const std::string &text = read.source->text();
    if (document.form == PartForm::style) {
        read.sheets = document.sheets;
        putIn(read.edits, 0, ownSheetStart(read.source->charset(), read.foundIn));
        return {scanStyle(text), {}, {}};
    }
    PageScan scanned = scanPage(text, m_folder / document.name);
    read.edits = std::move(scanned.disarming);
    read.sheets = {scanned.isQuirky, document.url};
    putIn(read.edits, scanned.headAt, ownHead(read.source->charset()));
    read.bannerAt = scanned.bodyAt == PageScan::npos ? PageScan::npos : scanned.endAt;
    std::vector<std::string> baseSources = baseSourcesIn(document.headers);
    std::ranges::move(scanned.baseSources, std::back_inserter(baseSources));
    return {std::move(scanned.references), std::move(scanned.base), std::move(baseSources)};
}

namespace {

/// Only what elements name is read in the document's own encoding; styles know none.
std::string_view charsetFor(const Reference &reference, const std::string &charset) {
    const bool isOfStyle =
        reference.form == RefForm::styleUrl || reference.form == RefForm::styleString;
    return isOfStyle ? std::string_view() : std::string_view(charset);
}

std::vector<Followed> followed(const std::vector<Reference> &references, Bases &bases,
                               const std::string &charset) {
    std::vector<Followed> all;
    all.reserve(references.size());
    for (const Reference &reference : references)
        all.push_back({&reference,
                       WebAddress::parsed(reference.address, bases.of(reference),
                                          charsetFor(reference, charset)),
                       {},
                       false});
    return all;
}

/// Where a browser shows one of several, it shows the one that the cache has: which size it takes
/// depends on the window, and the others were never fetched.
void fillSets(std::vector<Followed> &all, const std::vector<Reference> &references,
              std::string_view source) {
    const std::vector<std::size_t> sets = setsOf(references, source);
    for (std::size_t begin = 0; begin < all.size();) {
        std::size_t end = begin;
        const FoundPart *shown = nullptr;
        for (; end < all.size() && sets[end] == sets[begin]; ++end)
            if (!shown && all[end].found.file)
                shown = &all[end].found;
        for (std::size_t i = begin; shown && i < end; ++i)
            if (all[i].found.rule == partrule::kNone) {
                all[i].found = *shown;
                all[i].found.rule = partrule::kSameSet;
            }
        begin = end;
    }
}

std::string markedPlace(const Reference &reference, const std::string &address) {
    return missingPart(reference.use, address.empty() ? reference.address : address,
                       reference.form);
}

/// A click leads to where it led; places of the document itself stay in it.
std::string linkFor(const WebAddress &address, const std::string &document) {
    const auto own = WebAddress::parsed(document);
    const bool isOwn =
        own && address.fragment() && own->withoutFragment() == address.withoutFragment();
    return isOwn ? "#" + *address.fragment() : address.href();
}

bool isLink(const Followed &one) {
    return one.reference->use == RefUse::link;
}

/// Where a drawing of the page's own is named by the page's whole address.
bool isOwnPlace(const Followed &one, const std::string &document) {
    return one.reference->element == "use" && one.address &&
           linkFor(*one.address, document).starts_with('#');
}

/// An address of nothing, for which what an "object" holds shows.
std::string emptyAddress(const Reference &reference) {
    std::string text = reference.isQuoted ? "" : "\"\"";
    for (int i = 0; i < reference.nested && !text.empty(); ++i)
        text = attributeValue(text);
    return text;
}

} // namespace

void Assembly::resolve(const Document &document, Read &read, const Scanned &scanned) {
    const std::string charset = read.source->charset();
    Bases bases(document.url, scanned.base, scanned.baseSources, charset);
    std::vector<Followed> all = followed(scanned.references, bases, charset);
    std::vector<std::string> addresses;
    addresses.reserve(std::min(all.size(), kMostReferences));
    for (const Followed &one : all)
        if (one.address && !isLink(one) && addresses.size() + m_named < kMostReferences)
            addresses.push_back(one.address->href());
    m_finder.prepare(addresses);
    for (Followed &one : all) {
        if (isLink(one) || isOwnPlace(one, document.url))
            continue;
        if (!goesOn(one.href()))
            return;
        one.isTold = ++m_named <= kMostReferences;
        one.found = partFor(document, read.sheets, *one.reference, one.href());
        if (!one.found.file && !one.reference->codebase.empty())
            lookInCodebase(document, read, one, bases.of(*one.reference));
    }
    fillSets(all, scanned.references, read.source->text());
    ShownParts shown(m_files, read.source->text(), read.bannerAt != std::string_view::npos, m_room,
                     m_ctx.log);
    for (Followed &one : all)
        change(document, read, one, shown);
    putIn(read.edits, read.bannerAt, shown.drawings());
}

/// Browsers of the time of that attribute resolved by it, those of today don't.
void Assembly::lookInCodebase(const Document &document, const Read &read, Followed &one,
                              const WebAddress *base) {
    const auto codebase = WebAddress::parsed(one.reference->codebase, base);
    auto other = codebase ? WebAddress::parsed(one.reference->address, &*codebase) : std::nullopt;
    if (!other)
        return;
    FoundPart found = partFor(document, read.sheets, *one.reference, other->href());
    if (!found.file)
        return;
    one.address = std::move(other);
    one.found = std::move(found);
}

void Assembly::change(const Document &document, Read &read, Followed &one, ShownParts &shown) {
    const Reference &reference = *one.reference;
    const bool isHere = isLink(one) || isOwnPlace(one, document.url);
    if (isHere && !one.address)
        return;
    const std::string address = one.href();
    std::optional<std::string> value;
    if (isHere)
        value = linkFor(*one.address, document.url);
    else if (one.found.file)
        value = shown.address(reference, *one.found.file, fragmentOf(address));
    if (one.found.file && !value)
        one.found.rule = partrule::kTooLarge;
    if (!value && reference.hasFallback)
        read.edits.push_back({reference.at, emptyAddress(reference)});
    else
        read.edits.push_back(
            {reference.at, reference.before +
                               spelled(reference, value ? *value : markedPlace(reference, address),
                                       read.source->text()) +
                               reference.after});
    if (one.isTold)
        m_notes.push_back(noteOf(document, reference, address, one.found));
    if (one.found.file)
        queue(document, *one.found.file, read);
}

namespace {

/// Browsers take sheets of any type for a page of the same server that they show as old ones did.
RefUse useFor(const Reference &reference, bool isQuirky, const std::string &page,
              const std::string &address) {
    if (reference.use != RefUse::style || !isQuirky)
        return reference.use;
    const auto one = WebAddress::parsed(page);
    const auto other = WebAddress::parsed(address);
    const bool isOwn = one && other && one->origin() == other->origin();
    return isOwn ? RefUse::quirkyStyle : reference.use;
}

} // namespace

FoundPart Assembly::partFor(const Document &document, const SheetRules &sheets,
                            const Reference &reference, const std::string &address) {
    FoundPart none;
    if (address.empty())
        none.rule = partrule::kNoAddress;
    else if (m_named > kMostReferences)
        none.rule = partrule::kTooMany;
    else if (document.depth >= kDeepest && bringsDocument(reference.use))
        none.rule = partrule::kTooDeep;
    else
        return m_finder.find(address, useFor(reference, sheets.isQuirky, sheets.page, address));
    return none;
}

PartNote Assembly::noteOf(const Document &document, const Reference &reference,
                          const std::string &address, const FoundPart &found) const {
    PartNote note;
    note.document = document.record;
    note.element = reference.element;
    note.attribute = reference.attribute;
    note.original = reference.address;
    note.address = address;
    note.rule = found.rule;
    note.candidates = found.candidates;
    note.candidateCount = found.candidateCount;
    if (!found.file)
        return note;
    note.part = found.file->record;
    note.localName = found.file->name;
    note.sha256 = found.file->sha256;
    note.time = found.file->time;
    if (note.time.has() && m_page.ActionDateUTC.has())
        note.seconds =
            std::llround((note.time.days() - m_page.ActionDateUTC.days()) * kSecondsOfDay);
    return note;
}

void Assembly::queue(const Document &from, const PartFile &file, const Read &read) {
    if (file.form == PartForm::plain || !m_known.insert(file.name).second)
        return;
    m_open.push_back({file.record, file.form, file.name, file.url, file.headers,
                      read.source->charset(), from.depth + 1, read.sheets});
}

} // namespace nv
