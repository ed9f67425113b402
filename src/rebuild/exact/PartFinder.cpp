#include "rebuild/exact/PartFinder.h"

#include "address/WebAddress.h"
#include "db/marks/PartChoices.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr int kMostRedirects = 5;
/// Of one address with all that its answers lead to: each of them may lead to as many.
constexpr int kMostFollowed = 40;
constexpr std::size_t kMostParts = 10'000;

/// What caches keep answers for.
bool isCached(const std::string &scheme) {
    constexpr std::array<std::string_view, 4> kSchemes = {"http", "https", "ftp", "file"};
    return std::ranges::find(kSchemes, scheme) != kSchemes.end();
}

std::vector<std::int64_t> keysOf(const CandidateList &list) {
    std::vector<std::int64_t> keys;
    keys.reserve(list.best.size());
    for (const PartCandidate &candidate : list.best)
        if (candidate.hasBody)
            keys.push_back(number(candidate.id));
    return keys;
}

void putFirst(std::vector<std::int64_t> &keys, std::int64_t first) {
    std::erase(keys, first);
    keys.insert(keys.begin(), first);
}

FoundPart nothing(const char *rule) {
    FoundPart none;
    none.rule = rule;
    return none;
}

} // namespace

PartFinder::PartFinder(const UrlRecord &page, PartFiles &files, const RebuildContext &ctx)
    : m_files(files), m_candidates(ctx.project, page),
      m_choices(PartChoices(ctx.project).of(page.URLID)) {}

PartFinder::PartFinder(const UrlRecord &page, PartFiles &files, const RebuildContext &ctx,
                       std::span<const PartNote> notes)
    : m_files(files), m_candidates(ctx.project, page) {
    auto &known = m_notes.emplace();
    for (const PartNote &note : notes) {
        if (note.rule == partrule::kSameSet) // its set is looked at anew
            continue;
        PartNote &kept = known.try_emplace(note.address, note).first->second;
        // Of one address a style may be too deep where a picture isn't.
        if (kept.part == UrlId::none && note.part != UrlId::none)
            kept = note;
    }
}

void PartFinder::prepare(std::span<const std::string> addresses) {
    if (!m_notes)
        m_candidates.prepare(addresses);
}

FoundPart PartFinder::find(const std::string &address, RefUse use) {
    const auto known = m_found.find({address, use});
    if (known != m_found.end())
        return known->second;
    m_followed = 0;
    FoundPart found = m_notes ? noted(address, use) : decide(address, use, 0);
    m_found.emplace(std::pair(address, use), found);
    return found;
}

FoundPart PartFinder::noted(const std::string &address, RefUse use) {
    const auto note = m_notes->find(address);
    if (note == m_notes->end())
        return nothing(partrule::kNone);
    FoundPart found;
    found.rule = note->second.rule;
    found.candidates = note->second.candidates;
    found.candidateCount = note->second.candidateCount;
    if (note->second.part != UrlId::none) {
        const auto taken = m_files.take(note->second.part, use);
        if (const auto *file = std::get_if<const PartFile *>(&taken))
            found.file = *file;
    }
    return found;
}

/// What was chosen for an address counts for each of its fragments.
std::optional<FoundPart> PartFinder::chosen(const std::string &address, RefUse use) {
    const auto choice = m_choices.find(address.substr(0, address.find('#')));
    if (choice == m_choices.end())
        return std::nullopt;
    CandidateList others = m_candidates.of(address);
    if (others.count == 0)
        others = m_candidates.byHttps(address);
    if (others.count == 0)
        others = m_candidates.byLetters(address);
    if (others.count == 0)
        others = m_candidates.byOtherQuery(address);
    FoundPart found = nothing(partrule::kLeftOut);
    found.candidates = keysOf(others);
    found.candidateCount = others.count;
    if (choice->second == UrlId::none)
        return found;
    const auto taken = m_files.take(choice->second, use);
    const auto *file = std::get_if<const PartFile *>(&taken);
    if (!file)
        return std::nullopt; // it has no bytes any more
    found.rule = partrule::kChosen;
    found.file = *file;
    putFirst(found.candidates, number(choice->second));
    found.candidateCount =
        std::max(found.candidateCount, static_cast<std::int64_t>(found.candidates.size()));
    return found;
}

FoundPart PartFinder::decide(const std::string &address, RefUse use, int redirects) {
    const auto parsed = WebAddress::parsed(address);
    if (!parsed || !isCached(parsed->scheme()))
        return nothing(parsed ? partrule::kNotOfWeb : partrule::kNoAddress);
    if (const auto choice = chosen(address, use))
        return *choice;
    if (m_files.count() >= kMostParts)
        return nothing(partrule::kTooMany);
    FoundPart found = firstOf(m_candidates.of(address), address, use, redirects);
    if (found.file)
        return found;
    if (FoundPart safe = firstOf(m_candidates.byHttps(address), address, use, redirects); safe.file)
        return safe;
    if (FoundPart same = firstOf(m_candidates.byLetters(address), address, use, redirects);
        same.file)
        return same;
    FoundPart other = firstOf(m_candidates.byOtherQuery(address), address, use, kMostRedirects);
    return other.file ? other : found;
}

FoundPart PartFinder::firstOf(const CandidateList &list, const std::string &address, RefUse use,
                              int redirects) {
    FoundPart found = nothing(partrule::kNone);
    for (const PartCandidate &candidate : list.best) {
        const auto taken = m_files.take(candidate.id, use);
        if (const auto *refused = std::get_if<PartFiles::Refused>(&taken))
            found.rule = refused->rule;
        if (const auto *file = std::get_if<const PartFile *>(&taken)) {
            found = {list.rule, *file, keysOf(list), list.count};
            putFirst(found.candidates, number(candidate.id));
            return found;
        }
        const auto *redirect = std::get_if<PartFiles::Redirect>(&taken);
        const auto from = redirect ? WebAddress::parsed(address) : std::nullopt;
        const auto to = from ? WebAddress::parsed(redirect->location, &*from) : std::nullopt;
        if (!to || redirects >= kMostRedirects || ++m_followed > kMostFollowed)
            continue;
        FoundPart behind = decide(to->href(), use, redirects + 1);
        if (!behind.file)
            continue; // another answer of this address may have its bytes
        if (!behind.rule.starts_with(partrule::kRedirect))
            behind.rule.insert(0, partrule::kRedirect);
        return behind;
    }
    return found;
}

} // namespace nv
