#include "readers/PathOrigin.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace nv {
namespace {

struct Case {
    Engine engine;
    const char *path;
    const char *browser;
    const char *profile;
    const char *person;
};

constexpr Engine C = Engine::chromium;
constexpr Engine G = Engine::gecko;
constexpr Engine None = Engine::unknown;

constexpr Case kWindows[] = {
    {C, "/e/C/Users/alice/AppData/Local/Google/Chrome/User Data/Default/History", "Google Chrome",
     "Default", "alice"},
    {C, "C:\\Users\\alice\\AppData\\Local\\Google\\Chrome\\User Data\\Profile 3\\Network\\Cookies",
     "Google Chrome", "Profile 3", "alice"},
    {C,
     "/e/Documents and Settings/bob/Local Settings/Application Data/Google/Chrome/User "
     "Data/Default/Cache/index",
     "Google Chrome", "Default", "bob"},
    {C, "/e/Users/a/AppData/Local/Google/Chrome SxS/User Data/Default/History",
     "Google Chrome Canary", "Default", "a"},
    {C, "/e/Users/a/AppData/Local/Google/Chrome Beta/User Data/Guest Profile/History",
     "Google Chrome Beta", "Guest Profile", "a"},
    {C, "/e/Users/a/AppData/Local/Chromium/User Data/Default/History", "Chromium", "Default", "a"},
    {C, "/e/Users/a/AppData/Local/Microsoft/Edge/User Data/Default/Cache/Cache_Data/data_1",
     "Microsoft Edge", "Default", "a"},
    {C, "/e/Users/a/AppData/Local/Microsoft/Edge Dev/User Data/Profile 1/History",
     "Microsoft Edge Dev", "Profile 1", "a"},
    {C, "/e/Users/a/AppData/Local/BraveSoftware/Brave-Browser/User Data/Default/History", "Brave",
     "Default", "a"},
    {C, "/e/Users/a/AppData/Local/Vivaldi/User Data/Default/History", "Vivaldi", "Default", "a"},
    {C, "/e/Users/a/AppData/Local/Yandex/YandexBrowser/User Data/Default/History", "Yandex Browser",
     "Default", "a"},
    {C, "/e/Users/a/AppData/Roaming/Opera Software/Opera Stable/History", "Opera", "Opera Stable",
     "a"},
    {C, "/e/Users/a/AppData/Roaming/Opera Software/Opera Stable/Default/History", "Opera",
     "Default", "a"},
    {C, "/e/Users/a/AppData/Local/Opera Software/Opera GX Stable/Cache/Cache_Data/index",
     "Opera GX", "Opera GX Stable", "a"},
    {Engine::opera, "/e/Users/a/AppData/Roaming/Opera/Opera/global_history.dat", "Opera", "", "a"},
    {C,
     "/e/Users/a/AppData/Local/Packages/MSTeams_8wekyb3d8bbwe/LocalCache/Microsoft/MSTeams/"
     "EBWebView/Default/History",
     "WebView2 (MSTeams)", "Default", "a"},
    {C,
     "/e/Users/a/AppData/Local/Packages/Mail_8wekyb3d8bbwe/LocalState/EBWebView/Default/Cache/"
     "Cache_Data/index",
     "WebView2 (Mail)", "Default", "a"},
    {C, "/e/Users/a/AppData/Local/Ledger.exe.WebView2/EBWebView/Default/Network/Cookies",
     "WebView2 (Ledger)", "Default", "a"},
    {C, "/e/Users/a/AppData/Roaming/discord/Cache/Cache_Data/index", "Discord (Electron)", "", "a"},
    {C, "/e/Users/a/AppData/Roaming/Microsoft/Teams/Cache/data_1", "Microsoft Teams (Electron)", "",
     "a"},
    {C, "/e/Users/a/AppData/Roaming/Maker/Ledger Pro/Network/Cookies", "Ledger Pro (Electron)", "",
     "a"},
    {C,
     "/e/Windows/System32/config/systemprofile/AppData/Local/Microsoft/Edge/User Data/Default/"
     "History",
     "Microsoft Edge", "Default", "systemprofile"},
    {G,
     "/e/Users/a/AppData/Roaming/Mozilla/Firefox/Profiles/abcd1234.default-release/places.sqlite",
     "Firefox", "abcd1234.default-release", "a"},
    {G, "/e/Users/a/AppData/Local/Mozilla/Firefox/Profiles/x.default/cache2/entries/0A", "Firefox",
     "x.default", "a"},
    {G,
     "/e/Documents and Settings/kiosk/Application Data/Mozilla/Firefox/Profiles/k.default/"
     "history.dat",
     "Firefox", "k.default", "kiosk"},
    {G, "/e/Users/a/AppData/Roaming/Thunderbird/Profiles/m.default/places.sqlite", "Thunderbird",
     "m.default", "a"},
    {G,
     "/e/Users/a/Desktop/Tor Browser/Browser/TorBrowser/Data/Browser/profile.default/"
     "places.sqlite",
     "Tor Browser", "profile.default", ""},
    {G, "/e/Users/a/AppData/Roaming/librewolf/Profiles/l.default/places.sqlite", "LibreWolf",
     "l.default", "a"},
    {G, "/e/Users/a/AppData/Roaming/Waterfox/Profiles/w.default/places.sqlite", "Waterfox",
     "w.default", "a"},
    {Engine::internetExplorer,
     "/e/Documents and Settings/bob/Local Settings/Temporary Internet Files/Content.IE5/index.dat",
     "", "", "bob"},
    {Engine::internetExplorer, "/e/Documents and Settings/bob/Cookies/index.dat", "", "", "bob"},
};

constexpr Case kMac[] = {
    {C, "/e/Users/alice/Library/Application Support/Google/Chrome/Default/History", "Google Chrome",
     "Default", "alice"},
    {C, "/e/Users/a/Library/Caches/Google/Chrome/Profile 2/Cache/Cache_Data/index", "Google Chrome",
     "Profile 2", "a"},
    {C, "/e/Users/a/Library/Application Support/Microsoft Edge/Default/History", "Microsoft Edge",
     "Default", "a"},
    {C, "/e/Users/a/Library/Application Support/BraveSoftware/Brave-Browser/Default/History",
     "Brave", "Default", "a"},
    {C, "/e/Users/a/Library/Application Support/com.operasoftware.Opera/Default/History", "Opera",
     "Default", "a"},
    {C, "/e/Users/a/Library/Application Support/Vivaldi/Default/History", "Vivaldi", "Default",
     "a"},
    {C, "/e/Users/a/Library/Application Support/Yandex/YandexBrowser/Default/History",
     "Yandex Browser", "Default", "a"},
    {C, "/e/Users/a/Library/Application Support/Slack/Cache/Cache_Data/index", "Slack (Electron)",
     "", "a"},
    {G, "/e/Users/a/Library/Application Support/Firefox/Profiles/m.default/places.sqlite",
     "Firefox", "m.default", "a"},
    {G, "/e/Users/a/Library/Caches/Firefox/Profiles/m.default/cache2/entries/0A", "Firefox",
     "m.default", "a"},
    {G, "/e/Users/a/Library/Thunderbird/Profiles/t.default/places.sqlite", "Thunderbird",
     "t.default", "a"},
    {G, "/e/Users/a/Library/Application Support/TorBrowser-Data/Browser/q.default/places.sqlite",
     "Tor Browser", "q.default", "a"},
    {Engine::safari, "/e/Users/a/Library/Safari/History.db", "Safari", "", "a"},
};

constexpr Case kLinux[] = {
    {C, "/e/home/ada/.config/google-chrome/Default/History", "Google Chrome", "Default", "ada"},
    {C, "/e/home/ada/.cache/google-chrome/Profile 1/Cache/Cache_Data/index", "Google Chrome",
     "Profile 1", "ada"},
    {C, "/e/home/ada/.config/chromium/Default/Cookies", "Chromium", "Default", "ada"},
    {C, "/e/home/ada/snap/chromium/common/chromium/Default/History", "Chromium", "Default", "ada"},
    {C, "/e/home/ada/.var/app/com.google.Chrome/config/google-chrome/Default/History",
     "Google Chrome", "Default", "ada"},
    {C, "/e/home/ada/.config/microsoft-edge/Default/History", "Microsoft Edge", "Default", "ada"},
    {C, "/e/home/ada/.config/BraveSoftware/Brave-Browser/Default/History", "Brave", "Default",
     "ada"},
    {C, "/e/home/ada/.config/opera/Default/History", "Opera", "Default", "ada"},
    {C, "/e/home/ada/.config/opera/History", "Opera", "opera", "ada"},
    {C, "/e/home/ada/.config/vivaldi/Default/History", "Vivaldi", "Default", "ada"},
    {C, "/e/home/ada/.config/yandex-browser/Default/History", "Yandex Browser", "Default", "ada"},
    {C, "/e/home/ada/.config/Ledger/Cache/Cache_Data/index", "Ledger (Electron)", "", "ada"},
    {C, "/e/home/ada/.local/share/Reader/QtWebEngine/Default/Cookies", "Qt WebEngine (Reader)",
     "Default", "ada"},
    {C, "/e/" "root/.config/chromium/Default/History", "Chromium", "Default", "root"},
    {G, "/e/home/ada/.mozilla/firefox/abcd1234.default-esr/places.sqlite", "Firefox",
     "abcd1234.default-esr", "ada"},
    {G, "/e/home/ada/.config/mozilla/firefox/x.default/places.sqlite", "Firefox", "x.default",
     "ada"},
    {G, "/e/home/ada/.cache/mozilla/firefox/x.default/cache2/entries/0A", "Firefox", "x.default",
     "ada"},
    {G, "/e/home/ada/snap/firefox/common/.mozilla/firefox/s.default/places.sqlite", "Firefox",
     "s.default", "ada"},
    {G, "/e/home/ada/.thunderbird/t.default/places.sqlite", "Thunderbird", "t.default", "ada"},
    {G, "/e/home/ada/.librewolf/l.default/places.sqlite", "LibreWolf", "l.default", "ada"},
    {G, "/e/home/ada/.waterfox/w.default/places.sqlite", "Waterfox", "w.default", "ada"},
    {G,
     "/e/home/ada/.local/share/torbrowser/tbb/x86_64/tor-browser/Browser/TorBrowser/Data/"
     "Browser/profile.default/places.sqlite",
     "Tor Browser", "profile.default", "ada"},
    {None, "/e/home/ada/.local/share/epiphany/ephy-history.db", "Epiphany", "", "ada"},
    {None, "/e/home/ada/.cache/epiphany/WebKitCache/Version 17/salt", "Epiphany", "", "ada"},
    {None, "/e/home/ada/.config/falkon/profiles/default/browsedata.db", "Falkon", "default", "ada"},
};

constexpr Case kAndroid[] = {
    {C, "/e/data/data/com.android.chrome/app_chrome/Default/History", "Google Chrome", "Default",
     ""},
    {C, "/e/data/data/com.android.chrome/cache/Cache/index", "Google Chrome", "", ""},
    {C, "/e/data/user/10/com.android.chrome/app_chrome/Default/History", "Google Chrome", "Default",
     "user 10"},
    {C, "/e/data/data/com.sec.android.app.sbrowser/app_sbrowser/Default/History",
     "Samsung Internet", "Default", ""},
    {C, "/e/data/data/com.microsoft.emmx/app_chrome/Default/History", "Microsoft Edge", "Default",
     ""},
    {C, "/e/data/data/com.brave.browser/app_chrome/Default/History", "Brave", "Default", ""},
    {C, "/e/data/data/com.example.shop/app_webview/Default/Cookies",
     "Android WebView (com.example.shop)", "Default", ""},
    {G, "/e/data/data/org.mozilla.firefox/files/mozilla/ab.default/places.sqlite", "Firefox",
     "ab.default", ""},
    {G, "/e/data/data/org.mozilla.firefox/files/places.sqlite", "Firefox", "", ""},
};

constexpr Case kUnknown[] = {
    // A name alone says little: it may be the examiner's folder.
    {C, "/cases/chromium/History", "", "", ""},
    {C, "/cases/opera/firefox/History", "", "", ""},
    {C, "/home/examiner/evidence/Default/History", "", "", ""},
    {C, "/home/examiner/.local/share/case 7/Default/History", "", "", ""},
    {C, "/e/Users/a/AppData/Local/Iridium/User Data/Default/History", "", "", "a"},
    {C, "History", "", "", ""},
    {C, "", "", "", ""},
    {G, "/cases/7/places.sqlite", "", "", ""},
    // The image of one person in the home of another.
    {C, "/home/examiner/.config/img/Users/alice/AppData/Local/Google/Chrome/User Data/Default/H",
     "Google Chrome", "Default", "alice"},
    {C, "/home/examiner/cases/Google/Chrome/User Data/Default/History", "Google Chrome", "Default",
     ""},
};

template <std::size_t Count>
void expectAll(const Case (&cases)[Count]) {
    for (const Case &each : cases) {
        const Origin origin = originOfPath(each.path, each.engine);
        EXPECT_EQ(origin.Browser, each.browser) << each.path;
        EXPECT_EQ(origin.Profile, each.profile) << each.path;
        EXPECT_EQ(origin.Person, each.person) << each.path;
    }
}

TEST(PathOrigin, windows) {
    expectAll(kWindows);
}
TEST(PathOrigin, macOS) {
    expectAll(kMac);
}
TEST(PathOrigin, linuxSystems) {
    expectAll(kLinux);
}
TEST(PathOrigin, android) {
    expectAll(kAndroid);
}
TEST(PathOrigin, whatAPathDoesntTellStaysEmpty) {
    expectAll(kUnknown);
}

TEST(PathOrigin, profilesHaveTheNamesThatChromiumGives) {
    for (const char *name : {"Default", "default", "Profile 1", "Profile 22", "Guest Profile"})
        EXPECT_TRUE(isChromiumProfileName(name)) << name;
    for (const char *name : {"", "Profile", "Profile ", "Profile x", "Defaults", "Cache"})
        EXPECT_FALSE(isChromiumProfileName(name)) << name;
}

TEST(BrowserPlaces, areWrittenAsTheyAreCompared) {
    const auto isLower = [](std::string_view text) {
        return std::ranges::none_of(text, [](char c) { return c >= 'A' && c <= 'Z'; });
    };
    for (const BrowserPlace &place : browserPlaces()) {
        EXPECT_TRUE(isLower(place.folders)) << place.folders;
        EXPECT_LE(place.browser.size(), 50u) << place.browser;
    }
    for (const Engine engine : {C, G})
        for (const InstallPlace &place : installPlaces(engine))
            EXPECT_TRUE(isLower(place.part)) << place.part;
}

} // namespace
} // namespace nv
