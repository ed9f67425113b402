#pragma once

#include "readers/chrome/history/History.h"
#include "support/FactsOf.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromeHistory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nv::test {

constexpr std::int64_t kStamp = 1767258000; // 2026-01-01 09:00

/// All that a history holds, beyond the classic rules.
class ChromiumHistoryFixture : public testing::Test {
  protected:
    ChromiumHistoryFixture() { reading.emplace(); }
    ChromeHistory &history() {
        if (!m_history)
            m_history.emplace(file(), ChromeHistory::Version::schema70);
        return *m_history;
    }
    std::filesystem::path file() const { return folder.path() / "Profile 1" / "History"; }

    void page(std::int64_t id, std::int64_t lastVisit, const std::string &url = "http://page/") {
        history().add({.id = id,
                       .url = url + std::to_string(id),
                       .title = "Page " + std::to_string(id),
                       .lastVisitTime = lastVisit});
    }
    /// `columns` and `values` of further columns, such as ",from_visit" and ",1".
    void visit(std::int64_t id, std::int64_t page, std::int64_t time,
               const std::string &columns = "", const std::string &values = "") {
        history().run("INSERT INTO visits(id,url,visit_time" + columns + ") VALUES(" +
                      std::to_string(id) + "," + std::to_string(page) + "," + std::to_string(time) +
                      values + ")");
    }
    const std::vector<UrlRecord> &read() {
        m_history.reset();
        reading.emplace();
        reading->read(parseChromeHistoryFile, file());
        EXPECT_TRUE(std::filesystem::is_empty(reading->scratch.path()));
        return reading->records();
    }
    std::vector<const UrlRecord *> ofKind(std::string_view kind) const {
        std::vector<const UrlRecord *> records;
        for (const UrlRecord &record : reading->records())
            if (record.cacheType == kind)
                records.push_back(&record);
        return records;
    }
    const UrlRecord &only(std::string_view kind) {
        const auto records = ofKind(kind);
        EXPECT_EQ(records.size(), 1U) << kind;
        return records.empty() ? m_none : *records.front();
    }

    TempFolder folder;
    std::optional<SqliteHistoryReading> reading;

  private:
    std::optional<ChromeHistory> m_history;
    UrlRecord m_none;
};

} // namespace nv::test
