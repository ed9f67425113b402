#include "reports/case/CaseRow.h"

#include "base/Text.h"
#include "rebuild/RebuildMethod.h"
#include "reports/report/ReportValues.h"
#include "time/DateFormat.h"
#include "views/record/SourcePlace.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>

namespace nv {

namespace {

UrlRecord recordOf(const ReportContext &ctx, UrlId id) {
    auto record = ctx.rebuild.records.getURL(id);
    if (!record)
        throw std::runtime_error(fmt::format("the record {} can't be read", id));
    return std::move(*record);
}

std::string localText(const UrlRecord &record, const ReportContext &ctx) {
    const ZoneDate date = actionDate(record, ctx);
    return date.text.empty() ? std::string()
                             : fmt::format("{} {} {}", date.text, date.bias, date.daylight);
}

} // namespace

bool tellsContent(std::string_view field) {
    return field.starts_with("content_") || field == "sha256" || field == "body" ||
           field.starts_with("hashset_");
}

std::string CaseRow::who() const {
    std::string text;
    for (const std::string *part : {&browser, &profile, &person, &user})
        if (!part->empty() && (part != &user || user != person))
            text += (text.empty() ? "" : ", ") + *part;
    return text;
}

bool CaseRows::isLeftOut(UrlId id) {
    const UrlRecord record = recordOf(m_ctx, id);
    std::vector<std::string_view> texts = {record.URL,
                                           record.URLRawValue,
                                           record.host,
                                           record.WebpageTitle,
                                           record.User,
                                           record.Person,
                                           record.Profile,
                                           record.Referrer,
                                           record.Notes,
                                           record.Status,
                                           record.CacheFileName,
                                           record.Action,
                                           record.CacheFolderName,
                                           record.HistoryFilePath};
    std::vector<std::string> facts;
    for (const RecordFact &fact : m_ctx.rebuild.records.factsOf(id))
        facts.push_back(factText(fact));
    for (const RowTag &tag : m_tags.of(id))
        facts.insert(facts.end(), {tag.tag.name, tag.note});
    texts.insert(texts.end(), facts.begin(), facts.end());
    return m_redactor.leavesOut(record, texts);
}

CaseRow CaseRows::row(UrlId id, RowFacts facts) {
    return rowOf(recordOf(m_ctx, id), facts);
}

CaseRow CaseRows::rowOf(const UrlRecord &record, RowFacts facts) {
    CaseRow row;
    row.id = record.URLID;
    row.ticked = record.Tag;
    row.hidden = m_redactor.hidesHost(hostOf(record));
    row.group = groupOf(record.cacheType);
    row.kind = text(record.cacheType);
    row.action = text(record.Action);
    row.utc = isoUtc(record.ActionDateUTC);
    row.local = localText(record, m_ctx);
    const auto about = [&](const std::string &value) {
        if (!row.hidden || value.empty())
            return text(value);
        ++m_redactor.counts.placesBlurred;
        return std::string(kRedacted);
    };
    row.address = about(record.URL);
    row.host = about(record.host);
    row.title = about(record.WebpageTitle);
    row.referrer = about(record.Referrer);
    row.cacheFile = about(record.CacheFolderName.empty() || record.CacheFileName.empty()
                              ? record.CacheFileName
                              : record.CacheFolderName + "/" + record.CacheFileName);
    row.browser = text(record.Browser);
    row.profile = text(record.Profile);
    row.person = text(record.Person);
    row.user = text(record.User);
    row.visits = visitsText(record.Visits);
    row.status = text(record.Status);
    row.source = text(record.HistoryFilePath);
    const FactList stored = m_ctx.rebuild.records.factsOf(record.URLID);
    row.sourceOffset = offsetInSource(stored, record.MapFileOffset);
    if (!row.source.empty())
        row.place = text(placeInSource(
            {record.HistoryFilePath, record.cacheType, record.HistoryVersion, record.MapFileOffset},
            stored));
    if (withNotes)
        row.notes = text(record.Notes);
    for (const RowTag &tag : m_tags.of(record.URLID))
        row.tags.push_back(
            {text(tag.tag.name), tag.tag.color, withTagNotes ? text(tag.note) : std::string()});
    if (record.CacheFileRebuilt)
        row.rebuilt = text(record.RebuiltDateTime) +
                      (isRebuiltExactly(record) ? " (exact method)" : " (classic method)");
    if (facts == RowFacts::with && !row.hidden)
        addFacts(row, record, stored);
    return row;
}

void CaseRows::addFacts(CaseRow &row, const UrlRecord &record, const FactList &stored) {
    const bool isSecret = m_redactor.isOn() && (m_redactor.pictureOf(record.URLID) ||
                                                m_redactor.isOfHost(hostOf(record)));
    for (const RecordFact &fact : stored)
        if (!isSecret || !tellsContent(fact.name))
            row.facts.emplace_back(fact.name, text(factText(fact)));
}

} // namespace nv
