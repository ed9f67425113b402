// The files' members that are read stand in SettingsWalk.cpp.

#include "readers/chrome/profile/Settings.h"

#include "base/Text.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/profile/ProfileRecord.h"
#include "readers/chrome/profile/SettingsWalk.h"
#include "readers/chrome/profile/SiteSettings.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/json/JsonFile.h"

#include <algorithm>
#include <array>
#include <set>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseChromiumSettings()";

/// Who was signed in, and what the profiles are called.
class Accounts {
  public:
    explicit Accounts(ReadContext &ctx) : m_ctx(ctx) {}

    /// An account that the profile is or was signed in with.
    void saveAccount(const SettingsEntry &entry) {
        UrlRecord record = accountRecord(entry.text("email"), entry.text("full_name"));
        m_known.insert(toLower(entry.text("email")));
        record.facts.add("account_id", entry.text("gaia"));
        saveAt(std::move(record), entry.offset);
    }

    /// A profile in the list of all of them.
    void saveProfile(const SettingsEntry &entry) {
        UrlRecord record = accountRecord(entry.text("user_name"), entry.text("gaia_name"));
        record.Profile = entry.path[0];
        setEvent(record, stampDate(entry.number("active_time")), m_ctx.clock);
        record.facts.add("profile_name", entry.text("name"));
        record.facts.add("account_id", entry.text("gaia_id"));
        addStamp(record.facts, "last_used", entry.number("active_time"));
        saveAt(std::move(record), entry.offset);
    }

    /// What single values of the profile's own file say.
    void saveRest(const SettingsValues &values) {
        const auto text = [&](std::string_view name) {
            const auto found = values.find(name);
            return found == values.end() ? std::string() : scalarText(found->second);
        };
        for (const std::string_view name :
             {"google.services.username", "google.services.last_username",
              "google.services.last_signed_in_username"})
            if (const std::string email = text(name);
                !email.empty() && m_known.insert(toLower(email)).second)
                saveAt(accountRecord(email, ""), std::nullopt);
        const auto created = values.find("profile.creation_time");
        if (created == values.end())
            return;
        UrlRecord record = accountRecord("", "");
        setEvent(record, stampDate(numberOf(created->second)), m_ctx.clock);
        record.facts.add("profile_name", text("profile.name"));
        addStamp(record.facts, "created", numberOf(created->second));
        saveAt(std::move(record), std::nullopt);
    }

    std::uint64_t saved() const { return m_saved; }

  private:
    UrlRecord accountRecord(const std::string &email, const std::string &fullName) const {
        UrlRecord record =
            profileRecord(m_ctx, kChromeAccount, "Saved", email.empty() ? "Profile" : "Account");
        record.User = email;
        record.WebpageTitle = fullName;
        record.facts.add("account", email);
        record.facts.add("full_name", fullName);
        return record;
    }

    void saveAt(UrlRecord record, std::optional<std::uint64_t> offset) {
        if (offset) {
            record.MapFileOffset = static_cast<std::int64_t>(*offset);
            record.facts.add("source_offset", record.MapFileOffset);
        }
        m_ctx.sink.save(record);
        ++m_saved;
    }

    ReadContext &m_ctx;
    std::set<std::string> m_known; ///< addresses, lower-case
    std::uint64_t m_saved = 0;
};

/// "156.0.8078.79-64-devel" has more than the version at its end.
std::string versionIn(const std::string &text) {
    constexpr std::size_t kLongest = 40;
    const std::string version = text.substr(0, text.find('-'));
    const bool isVersion =
        version.size() <= kLongest && std::ranges::all_of(version, [](char each) {
            return each == '.' || (each >= '0' && each <= '9');
        });
    return isVersion ? version : std::string();
}

void noteVersion(ReadContext &ctx, const SettingsValues &values) {
    for (const std::string_view name :
         {"extensions.last_chrome_version", "user_experience_metrics.stability.stats_version"}) {
        const auto found = values.find(name);
        if (ctx.file.origin.browserVersion.empty() && found != values.end())
            ctx.file.origin.browserVersion = versionIn(scalarText(found->second));
    }
}

ReadResult readBytes(ReadContext &ctx, ByteView bytes) {
    Accounts accounts(ctx);
    std::uint64_t sites = 0;
    SettingsWalk walk([&](const SettingsEntry &entry) {
        if (entry.kind == SettingsEntry::Kind::account) {
            accounts.saveAccount(entry);
        } else if (entry.kind == SettingsEntry::Kind::profile) {
            accounts.saveProfile(entry);
        } else {
            saveSiteSetting(ctx, entry);
            ++sites;
        }
    });
    const JsonEnd end =
        walkJson(bytes, walk, [&ctx](double part) { return ctx.task.advance(part); });
    if (!end.isCancelled)
        accounts.saveRest(walk.values());
    noteVersion(ctx, walk.values());
    return jsonResult(end, sites + accounts.saved() > 0, ctx, kProcedure);
}

} // namespace

ReadResult parseChromiumSettings(ReadContext &ctx) {
    return readJsonFile(ctx,
                        {"PARSING CHROMIUM SETTINGS FILE", "Google Chrome", "", "chrome-32.png"},
                        kProcedure, [&ctx](ByteView bytes) { return readBytes(ctx, bytes); });
}

} // namespace nv
