#include "import/AskedKinds.h"
#include "readers/RecordKind.h"
#include "readers/Registry.h"
#include "unit/import/ImportFixture.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using enum HistoryFileType;

AskedKinds askedFor(std::initializer_list<const char *> keys) {
    AskedKinds asked;
    for (const char *key : keys)
        EXPECT_TRUE(asked.add(key)) << key;
    return asked;
}

TEST(AskedKinds, takeEverythingWhenNothingIsNamed) {
    const AskedKinds asked;
    for (const Reader *reader : registry())
        EXPECT_TRUE(asked.wants(*reader) && asked.wants(*reader, "Any Word")) << reader->key;
}

TEST(AskedKinds, aReaderGivesAllItsKinds) {
    const AskedKinds asked = askedFor({"ie-history"});
    const Reader &history = *readerByKey("ie-history");
    EXPECT_TRUE(asked.wants(history));
    EXPECT_TRUE(asked.wantsAllOf(history));
    EXPECT_TRUE(asked.wants(history, "IE Daily"));
    EXPECT_FALSE(asked.wants(*readerByKey("ie-cache")));
}

TEST(AskedKinds, aKindIsReadByEachOfItsReadersAndStoredAlone) {
    const AskedKinds asked = askedFor({"ie-daily"});
    for (const char *key : {"ie-history", "ie-cache"}) {
        const Reader &reader = *readerByKey(key);
        EXPECT_TRUE(asked.wants(reader)) << key;
        EXPECT_FALSE(asked.wantsAllOf(reader));
        EXPECT_TRUE(asked.wants(reader, "IE Daily"));
        EXPECT_FALSE(asked.wants(reader, "IE Cache"));
        EXPECT_FALSE(asked.wants(reader, "no kind that is known"));
        EXPECT_FALSE(asked.wants(reader, ""));
    }
    EXPECT_FALSE(asked.wants(*readerByKey("opera-history")));
}

TEST(AskedKinds, knowEachKeyAndNoOther) {
    AskedKinds asked;
    const auto keys = keysToAskFor();
    for (const std::string &key : keys)
        EXPECT_TRUE(asked.add(key)) << key;
    for (const RecordKind *kind : recordKinds())
        EXPECT_EQ(std::ranges::count(keys, kind->key), 1) << kind->key;
    EXPECT_FALSE(asked.add("nonsense"));
    EXPECT_FALSE(asked.add(""));
}

ReadResult readTwoKinds(ReadContext &ctx) {
    for (const char *kind : {"IE History", "IE Cache", "IE History"}) {
        UrlRecord record;
        record.URL = "http://host/";
        record.cacheType = kind;
        record.ActionDateUTC = Date::fromCivil({2011, 3, kind[3] == 'H' ? 5 : 6});
        ctx.sink.save(record);
    }
    return {ReadState::complete, {}, 0, {{"empty", 2}}};
}
const Reader *readerOfTwoKinds(HistoryFileType type) {
    static constexpr Reader reader = test::madeUp(ieHistory, "two-kinds", readTwoKinds);
    return type == ieHistory ? &reader : nullptr;
}

class AskedImportTest : public test::ImportFixture {};

TEST_F(AskedImportTest, whatIsntAskedForIsCountedAndNotStored) {
    add(ieHistory, "a", "");
    ASSERT_TRUE(job.asked.add("ie-daily"));
    Unwatched task;
    const ImportSummary summary = import(task, readerOfTwoKinds);
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(summary.artefacts[0].passedOver,
              (std::map<std::string, std::uint64_t>{{"empty", 2}, {"not asked for", 3}}));
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::complete);
}

TEST_F(AskedImportTest, rowsAreCountedByKindAndDate) {
    add(ieHistory, "Users/alice/AppData/Local/x/index.dat", "1");
    add(ieHistory, "index.dat", "2");
    Unwatched task;
    const ImportSummary summary = import(task, readerOfTwoKinds);
    const RowsByKind &kinds = summary.artefacts[0].byKind;
    ASSERT_EQ(kinds.size(), 2u);
    EXPECT_EQ(kinds.at("IE History").rows, 2u);
    EXPECT_EQ(kinds.at("IE Cache").rows, 1u);
    EXPECT_EQ(kinds.at("IE History").first, Date::fromCivil({2011, 3, 5}));
    EXPECT_EQ(rowsOf(kinds), summary.artefacts[0].rowsSaved);
    EXPECT_EQ(summary.byKind().at("IE History").rows, 4u);
    const auto profiles = summary.byProfile();
    ASSERT_EQ(profiles.size(), 2u);
    EXPECT_EQ(profiles[0].origin.person, "");
    EXPECT_EQ(profiles[1].origin.person, "alice");
    EXPECT_EQ(profiles[1].rows(), 3u);
    EXPECT_EQ(profiles[1].all().first, Date::fromCivil({2011, 3, 5}));
    EXPECT_EQ(profiles[1].all().last, Date::fromCivil({2011, 3, 6}));
}

TEST_F(AskedImportTest, theSourceFileSaysWhetherTheClassicRulesAloneReadIt) {
    add(ieHistory, "a", "1");
    job.classicOnly = true;
    Unwatched task;
    import(task, readerOfTwoKinds);
    EXPECT_EQ(project.number("SELECT ClassicOnly FROM SourceFiles"), 1);
    job.classicOnly = false;
    import(task, readerOfTwoKinds);
    EXPECT_EQ(project.text("SELECT group_concat(ClassicOnly) FROM SourceFiles"), "0");
    job.classicOnly = true;
    import(task, readerOfTwoKinds);
    EXPECT_EQ(project.text("SELECT group_concat(ClassicOnly) FROM SourceFiles"), "0");
}

TEST(RowsByKind, zerosOfClocksAreNoFirstEvent) {
    KindRows kind;
    for (const double days : {Date::kFileTimeEpoch, 0.0, Date::kUnixEpoch})
        kind.count(Date::fromDays(days));
    kind.count(Date());
    EXPECT_EQ(kind.rows, 4u);
    EXPECT_FALSE(kind.first.has() || kind.last.has());
    kind.count(Date::fromCivil({2026, 7, 14}));
    kind.count(Date::fromCivil({2009, 1, 1}));
    EXPECT_EQ(kind.first, Date::fromCivil({2009, 1, 1}));
    EXPECT_EQ(kind.last, Date::fromCivil({2026, 7, 14}));
    KindRows sum;
    sum.add(KindRows());
    sum.add(kind);
    EXPECT_EQ(sum.first, kind.first);
    EXPECT_EQ(sum.rows, 6u);
}

} // namespace
} // namespace nv
