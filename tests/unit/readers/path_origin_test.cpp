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

constexpr Engine c = Engine::chromium;
constexpr Engine g = Engine::gecko;
constexpr Engine none = Engine::unknown;

constexpr Case kWindows[] = {
    {c, "/e/C/Users/alice/AppData/Local/Google/Chrome/User Data/Default/History", "Google Chrome",
     "Default", "alice"},
    {c, "C:\\Users\\alice\\AppData\\Local\\Google\\Chrome\\User Data\\Profile 3\\Network\\Cookies",
     "Google Chrome", "Profile 3", "alice"},
    {c,
     "/e/Documents and Settings/bob/Local Settings/Application Data/Google/Chrome/User "
     "Data/Default/Cache/index",
     "Google Chrome", "Default", "bob"},
    {c, "/e/Users/a/AppData/Local/Google/Chrome SxS/User Data/Default/History",
     "Google Chrome Canary", "Default", "a"},
    {c, "/e/Users/a/AppData/Local/Google/Chrome Beta/User Data/Guest Profile/History",
     "Google Chrome Beta", "Guest Profile", "a"},
    {c, "/e/Users/a/AppData/Local/Chromium/User Data/Default/History", "Chromium", "Default", "a"},
    {c, "/e/Users/a/AppData/Local/Microsoft/Edge/User Data/Default/Cache/Cache_Data/data_1",
     "Microsoft Edge", "Default", "a"},
    {c, "/e/Users/a/AppData/Local/Microsoft/Edge Dev/User Data/Profile 1/History",
     "Microsoft Edge Dev", "Profile 1", "a"},
    {c, "/e/Users/a/AppData/Local/BraveSoftware/Brave-Browser/User Data/Default/History", "Brave",
     "Default", "a"},
    {c, "/e/Users/a/AppData/Local/Vivaldi/User Data/Default/History", "Vivaldi", "Default", "a"},
    {c, "/e/Users/a/AppData/Local/Yandex/YandexBrowser/User Data/Default/History", "Yandex Browser",
     "Default", "a"},
    {c, "/e/Users/a/AppData/Roaming/Opera Software/Opera Stable/History", "Opera", "Opera Stable",
     "a"},
    {c, "/e/Users/a/AppData/Roaming/Opera Software/Opera Stable/Default/History", "Opera",
     "Default", "a"},
    {c, "/e/Users/a/AppData/Local/Opera Software/Opera GX Stable/Cache/Cache_Data/index",
     "Opera GX", "Opera GX Stable", "a"},
    {Engine::opera, "/e/Users/a/AppData/Roaming/Opera/Opera/global_history.dat", "Opera", "", "a"},
    {c,
     "/e/Users/a/AppData/Local/Packages/MSTeams_8wekyb3d8bbwe/LocalCache/Microsoft/MSTeams/"
     "EBWebView/Default/History",
     "WebView2 (MSTeams)", "Default", "a"},
    {c,
     "/e/Users/a/AppData/Local/Packages/Mail_8wekyb3d8bbwe/LocalState/EBWebView/Default/Cache/"
     "Cache_Data/index",
     "WebView2 (Mail)", "Default", "a"},
    {c, "/e/Users/a/AppData/Local/Ledger.exe.WebView2/EBWebView/Default/Network/Cookies",
     "WebView2 (Ledger)", "Default", "a"},
    {c, "/e/Users/a/AppData/Roaming/discord/Cache/Cache_Data/index", "Discord (Electron)", "", "a"},
    {c, "/e/Users/a/AppData/Roaming/Microsoft/Teams/Cache/data_1", "Microsoft Teams (Electron)", "",
     "a"},
    {c, "/e/Users/a/AppData/Roaming/Maker/Ledger Pro/Network/Cookies", "Ledger Pro (Electron)", "",
     "a"},
    {c,
     "/e/Windows/System32/config/systemprofile/AppData/Local/Microsoft/Edge/User Data/Default/"
     "History",
     "Microsoft Edge", "Default", "systemprofile"},
    {c, "/e/Users/a/AppData/Local/Microsoft/Edge SxS/User Data/Default/History",
     "Microsoft Edge Canary", "Default", "a"},
    {c, "/e/Users/a/AppData/Local/Google/Chrome/User Data/System Profile/History", "Google Chrome",
     "System Profile", "a"},
    {g, "/e/Users/a/AppData/Roaming/Floorp/Profiles/f.default/places.sqlite", "Floorp", "f.default",
     "a"},
    {g, "/e/Users/a/AppData/Roaming/zen/Profiles/z.Default/places.sqlite", "Zen", "z.Default", "a"},
    {g,
     "/e/Users/a/AppData/Roaming/Mozilla/Firefox/Profiles/abcd1234.default-release/places.sqlite",
     "Firefox", "abcd1234.default-release", "a"},
    {g, "/e/Users/a/AppData/Local/Mozilla/Firefox/Profiles/x.default/cache2/entries/0A", "Firefox",
     "x.default", "a"},
    {g,
     "/e/Documents and Settings/kiosk/Application Data/Mozilla/Firefox/Profiles/k.default/"
     "history.dat",
     "Firefox", "k.default", "kiosk"},
    {g, "/e/Users/a/AppData/Roaming/Thunderbird/Profiles/m.default/places.sqlite", "Thunderbird",
     "m.default", "a"},
    {g,
     "/e/Users/a/Desktop/Tor Browser/Browser/TorBrowser/Data/Browser/profile.default/"
     "places.sqlite",
     "Tor Browser", "profile.default", ""},
    {g, "/e/Users/a/AppData/Roaming/librewolf/Profiles/l.default/places.sqlite", "LibreWolf",
     "l.default", "a"},
    {g, "/e/Users/a/AppData/Roaming/Waterfox/Profiles/w.default/places.sqlite", "Waterfox",
     "w.default", "a"},
    {Engine::internetExplorer,
     "/e/Documents and Settings/bob/Local Settings/Temporary Internet Files/Content.IE5/index.dat",
     "", "", "bob"},
    {Engine::internetExplorer, "/e/Documents and Settings/bob/Cookies/index.dat", "", "", "bob"},
};

constexpr Case kMac[] = {
    {c, "/e/Users/alice/Library/Application Support/Google/Chrome/Default/History", "Google Chrome",
     "Default", "alice"},
    {c, "/e/Users/a/Library/Caches/Google/Chrome/Profile 2/Cache/Cache_Data/index", "Google Chrome",
     "Profile 2", "a"},
    {c, "/e/Users/a/Library/Application Support/Microsoft Edge/Default/History", "Microsoft Edge",
     "Default", "a"},
    {c, "/e/Users/a/Library/Application Support/BraveSoftware/Brave-Browser/Default/History",
     "Brave", "Default", "a"},
    {c, "/e/Users/a/Library/Application Support/com.operasoftware.Opera/Default/History", "Opera",
     "Default", "a"},
    {c, "/e/Users/a/Library/Application Support/Vivaldi/Default/History", "Vivaldi", "Default",
     "a"},
    {c, "/e/Users/a/Library/Application Support/Yandex/YandexBrowser/Default/History",
     "Yandex Browser", "Default", "a"},
    {c, "/e/Users/a/Library/Application Support/Slack/Cache/Cache_Data/index", "Slack (Electron)",
     "", "a"},
    {g, "/e/Users/a/Library/Application Support/Firefox/Profiles/m.default/places.sqlite",
     "Firefox", "m.default", "a"},
    {g, "/e/Users/a/Library/Caches/Firefox/Profiles/m.default/cache2/entries/0A", "Firefox",
     "m.default", "a"},
    {g, "/e/Users/a/Library/Thunderbird/Profiles/t.default/places.sqlite", "Thunderbird",
     "t.default", "a"},
    {g, "/e/Users/a/Library/Application Support/TorBrowser-Data/Browser/q.default/places.sqlite",
     "Tor Browser", "q.default", "a"},
    {Engine::safari, "/e/Users/a/Library/Safari/History.db", "Safari", "", "a"},
};

constexpr Case kLinux[] = {
    {c, "/e/home/ada/.config/google-chrome/Default/History", "Google Chrome", "Default", "ada"},
    {c, "/e/home/ada/.cache/google-chrome/Profile 1/Cache/Cache_Data/index", "Google Chrome",
     "Profile 1", "ada"},
    {c, "/e/home/ada/.config/chromium/Default/Cookies", "Chromium", "Default", "ada"},
    {c, "/e/home/ada/snap/chromium/common/chromium/Default/History", "Chromium", "Default", "ada"},
    {c, "/e/home/ada/.var/app/com.google.Chrome/config/google-chrome/Default/History",
     "Google Chrome", "Default", "ada"},
    {c, "/e/home/ada/.config/microsoft-edge/Default/History", "Microsoft Edge", "Default", "ada"},
    {c, "/e/home/ada/.config/BraveSoftware/Brave-Browser/Default/History", "Brave", "Default",
     "ada"},
    {c, "/e/home/ada/.config/opera/Default/History", "Opera", "Default", "ada"},
    {c, "/e/home/ada/.config/opera/History", "Opera", "opera", "ada"},
    {c, "/e/home/ada/.config/vivaldi/Default/History", "Vivaldi", "Default", "ada"},
    {c, "/e/home/ada/.config/yandex-browser/Default/History", "Yandex Browser", "Default", "ada"},
    {c, "/e/home/ada/.config/Ledger/Cache/Cache_Data/index", "Ledger (Electron)", "", "ada"},
    {c, "/e/home/ada/.local/share/Reader/QtWebEngine/Default/Cookies", "Qt WebEngine (Reader)",
     "Default", "ada"},
    {c,
     "/e/"
     "root/.config/chromium/Default/History",
     "Chromium", "Default", "root"},
    {g, "/e/home/ada/.mozilla/firefox/abcd1234.default-esr/places.sqlite", "Firefox",
     "abcd1234.default-esr", "ada"},
    {g, "/e/home/ada/.config/mozilla/firefox/x.default/places.sqlite", "Firefox", "x.default",
     "ada"},
    {g, "/e/home/ada/.cache/mozilla/firefox/x.default/cache2/entries/0A", "Firefox", "x.default",
     "ada"},
    {c, "/e/home/ada/.cache/microsoft-edge/Default/Cache/Cache_Data/index", "Microsoft Edge",
     "Default", "ada"},
    {c, "/e/home/ada/.var/app/com.brave.Browser/cache/BraveSoftware/Brave-Browser/Default/Cache/x",
     "Brave", "Default", "ada"},
    {c, "/e/home/ada/snap/opera/12/.config/opera/Default/History", "Opera", "Default", "ada"},
    {g, "/e/home/ada/.var/app/org.mozilla.firefox/.mozilla/firefox/v.default/places.sqlite",
     "Firefox", "v.default", "ada"},
    {g, "/e/home/ada/.zen/z.default/places.sqlite", "Zen", "z.default", "ada"},
    {g, "/e/home/ada/snap/firefox/common/.mozilla/firefox/s.default/places.sqlite", "Firefox",
     "s.default", "ada"},
    {g, "/e/home/ada/.thunderbird/t.default/places.sqlite", "Thunderbird", "t.default", "ada"},
    {g, "/e/home/ada/.librewolf/l.default/places.sqlite", "LibreWolf", "l.default", "ada"},
    {g, "/e/home/ada/.waterfox/w.default/places.sqlite", "Waterfox", "w.default", "ada"},
    {g,
     "/e/home/ada/.local/share/torbrowser/tbb/x86_64/tor-browser/Browser/TorBrowser/Data/"
     "Browser/profile.default/places.sqlite",
     "Tor Browser", "profile.default", "ada"},
    {none, "/e/home/ada/.local/share/epiphany/ephy-history.db", "Epiphany", "", "ada"},
    {none, "/e/home/ada/.cache/epiphany/WebKitCache/Version 17/salt", "Epiphany", "", "ada"},
    {none, "/e/home/ada/.config/falkon/profiles/default/browsedata.db", "Falkon", "default", "ada"},
};

constexpr Case kAndroid[] = {
    {c, "/e/data/data/com.android.chrome/app_chrome/Default/History", "Google Chrome", "Default",
     ""},
    {c, "/e/data/data/com.android.chrome/cache/Cache/index", "Google Chrome", "", ""},
    {c, "/e/data/user/10/com.android.chrome/app_chrome/Default/History", "Google Chrome", "Default",
     "user 10"},
    {c, "/e/data/data/com.sec.android.app.sbrowser/app_sbrowser/Default/History",
     "Samsung Internet", "Default", ""},
    {c, "/e/data/data/com.microsoft.emmx/app_chrome/Default/History", "Microsoft Edge", "Default",
     ""},
    {c, "/e/data/data/com.brave.browser/app_chrome/Default/History", "Brave", "Default", ""},
    {c, "/e/data/data/com.example.shop/app_webview/Default/Cookies",
     "Android WebView (com.example.shop)", "Default", ""},
    {c, "/e/data/data/com.microsoft.emmx.beta/app_chrome/Default/History", "Microsoft Edge Beta",
     "Default", ""},
    {c, "/e/data/data/com.brave.browser_beta/app_chrome/Default/History", "Brave Beta", "Default",
     ""},
    {c, "/e/data/data/com.vivaldi.browser/app_chrome/Default/History", "Vivaldi", "Default", ""},
    {c, "/e/data/data/com.opera.gx/app_opera/History", "Opera GX", "", ""},
    {c, "/e/data/data/com.yandex.browser/app_chromium/Default/History", "Yandex Browser", "Default",
     ""},
    {c, "/e/data/data/com.sec.android.app.sbrowser.beta/app_sbrowser/Default/History",
     "Samsung Internet Beta", "Default", ""},
    {none, "/e/data/data/com.sec.android.app.sbrowser/databases/SBrowser.db", "Samsung Internet",
     "", ""},
    {g, "/e/data/data/org.mozilla.fennec_fdroid/files/mozilla/f.default/places.sqlite", "Fennec",
     "f.default", ""},
    {g, "/e/data/data/org.mozilla.firefox/files/mozilla/ab.default/places.sqlite", "Firefox",
     "ab.default", ""},
    {g, "/e/data/data/org.mozilla.firefox/files/places.sqlite", "Firefox", "", ""},
};

constexpr Case kUnknown[] = {
    // A name alone says little: it may be the examiner's folder.
    {c, "/cases/chromium/History", "", "", ""},
    {c, "/cases/opera/firefox/History", "", "", ""},
    {c, "/home/examiner/evidence/Default/History", "", "", ""},
    {c, "/home/examiner/.local/share/case 7/Default/History", "", "", ""},
    {c, "/e/Users/a/AppData/Local/Iridium/User Data/Default/History", "", "", "a"},
    {c, "History", "", "", ""},
    {c, "", "", "", ""},
    {g, "/cases/7/places.sqlite", "", "", ""},
    // The image of one person in the home of another.
    {c, "/home/examiner/.config/img/Users/alice/AppData/Local/Google/Chrome/User Data/Default/H",
     "Google Chrome", "Default", "alice"},
    {c, "/home/examiner/cases/Google/Chrome/User Data/Default/History", "Google Chrome", "Default",
     ""},
};

template <std::size_t Count>
void expectAll(const Case (&cases)[Count]) {
    for (const Case &each : cases) {
        const Origin origin = originOfPath(each.path, each.engine);
        EXPECT_EQ(origin.browser, each.browser) << each.path;
        EXPECT_EQ(origin.profile, each.profile) << each.path;
        EXPECT_EQ(origin.person, each.person) << each.path;
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
        return std::ranges::none_of(text,
                                    [](char letter) { return letter >= 'A' && letter <= 'Z'; });
    };
    for (const BrowserPlace &place : browserPlaces()) {
        EXPECT_TRUE(isLower(place.folders)) << place.folders;
        EXPECT_LE(place.browser.size(), 50u) << place.browser;
    }
    for (const Engine engine : {c, g})
        for (const InstallPlace &place : installPlaces(engine))
            EXPECT_TRUE(isLower(place.part)) << place.part;
}

TEST(PathOrigin, aTreeIsWhatLiesAboveTheAccounts) {
    EXPECT_EQ(treeOfPath("/ev/pc1/home/ada/.config/chromium/Default/History"), "/ev/pc1");
    EXPECT_EQ(treeOfPath("/ev/pc1/home/ada/.cache/chromium/Default/Cache/x"), "/ev/pc1");
    EXPECT_EQ(treeOfPath("/home/ada/.config/chromium/Default/History"), "/");
    EXPECT_EQ(treeOfPath("D:\\Users\\ada\\AppData\\Local\\x\\index.dat"), "D:");
    EXPECT_EQ(treeOfPath("/ev/pc1/Users/ada/Library/Safari/History.db"), "/ev/pc1");
    // Without an account that above its browsers, without these that above the profile.
    EXPECT_EQ(treeOfPath("/ev/ada/.config/chromium/Default/History"), "/ev/ada");
    EXPECT_EQ(treeOfPath("/ev/ada/.mozilla/firefox/x.default/places.sqlite"), "/ev/ada");
    EXPECT_EQ(treeOfPath("/ev/ada/Profile 1/History"), "/ev/ada");
    EXPECT_EQ(treeOfPath("/ev/ada/History"), "");
    EXPECT_EQ(treeOfPath("History"), "");
    EXPECT_EQ(treeOfPath(""), "");
    TreesOfPaths trees;
    EXPECT_EQ(trees("/ev/pc1/home/ada/.config/chromium/Default/History"), "/ev/pc1");
    EXPECT_EQ(trees("/ev/pc1/home/ada/.config/chromium/Default/Cookies"), "/ev/pc1");
    EXPECT_EQ(trees("/ev/pc2/home/ada/.config/chromium/Default/Cookies"), "/ev/pc2");
    EXPECT_EQ(trees("x"), "");
}

} // namespace
} // namespace nv
