#include "readers/BrowserPlaces.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr bool kNeedsDataFolder = true;
constexpr bool kIsProfile = true;

constexpr BrowserPlace chromium(std::string_view folders, std::string_view browser) {
    return {folders, browser};
}
constexpr BrowserPlace named(std::string_view folder, std::string_view browser,
                             Engine engine = Engine::chromium) {
    return {folder, browser, engine, kNeedsDataFolder};
}
constexpr BrowserPlace opera(std::string_view folders, std::string_view browser) {
    return {folders, browser, Engine::chromium, false, kIsProfile};
}
constexpr BrowserPlace gecko(std::string_view folders, std::string_view browser) {
    return {folders, browser, Engine::gecko};
}

constexpr BrowserPlace kPlaces[] = {
    chromium("google/chrome", "Google Chrome"),
    chromium("google/chrome beta", "Google Chrome Beta"),
    chromium("google/chrome dev", "Google Chrome Dev"),
    chromium("google/chrome sxs", "Google Chrome Canary"),
    chromium("google/chrome canary", "Google Chrome Canary"),
    chromium("google/chrome for testing", "Google Chrome for Testing"),
    named("google-chrome", "Google Chrome"),
    named("google-chrome-beta", "Google Chrome Beta"),
    named("google-chrome-unstable", "Google Chrome Dev"),
    chromium("com.android.chrome", "Google Chrome"),
    chromium("com.chrome.beta", "Google Chrome Beta"),
    chromium("com.chrome.dev", "Google Chrome Dev"),
    chromium("com.chrome.canary", "Google Chrome Canary"),
    named("chromium", "Chromium"),
    chromium("org.chromium.chrome", "Chromium"),
    chromium("microsoft/edge", "Microsoft Edge"),
    chromium("microsoft/edge beta", "Microsoft Edge Beta"),
    chromium("microsoft/edge dev", "Microsoft Edge Dev"),
    chromium("microsoft/edge sxs", "Microsoft Edge Canary"),
    named("microsoft edge", "Microsoft Edge"),
    named("microsoft edge beta", "Microsoft Edge Beta"),
    named("microsoft edge dev", "Microsoft Edge Dev"),
    named("microsoft edge canary", "Microsoft Edge Canary"),
    named("microsoft-edge", "Microsoft Edge"),
    named("microsoft-edge-beta", "Microsoft Edge Beta"),
    named("microsoft-edge-dev", "Microsoft Edge Dev"),
    chromium("com.microsoft.emmx", "Microsoft Edge"),
    chromium("com.microsoft.emmx.beta", "Microsoft Edge Beta"),
    chromium("com.microsoft.emmx.dev", "Microsoft Edge Dev"),
    chromium("com.microsoft.emmx.canary", "Microsoft Edge Canary"),
    chromium("bravesoftware/brave-browser", "Brave"),
    chromium("bravesoftware/brave-browser-beta", "Brave Beta"),
    chromium("bravesoftware/brave-browser-dev", "Brave Dev"),
    chromium("bravesoftware/brave-browser-nightly", "Brave Nightly"),
    chromium("com.brave.browser", "Brave"),
    chromium("com.brave.browser_beta", "Brave Beta"),
    chromium("com.brave.browser_nightly", "Brave Nightly"),
    named("vivaldi", "Vivaldi"),
    named("vivaldi-snapshot", "Vivaldi Snapshot"),
    chromium("com.vivaldi.browser", "Vivaldi"),
    chromium("com.vivaldi.browser.snapshot", "Vivaldi Snapshot"),
    opera("opera software/opera stable", "Opera"),
    opera("opera software/opera next", "Opera Beta"),
    opera("opera software/opera developer", "Opera Developer"),
    opera("opera software/opera gx stable", "Opera GX"),
    opera("com.operasoftware.opera", "Opera"),
    opera("com.operasoftware.operanext", "Opera Beta"),
    opera("com.operasoftware.operadeveloper", "Opera Developer"),
    opera("com.operasoftware.operagx", "Opera GX"),
    {"opera", "Opera", Engine::chromium, kNeedsDataFolder, kIsProfile},
    {"opera-beta", "Opera Beta", Engine::chromium, kNeedsDataFolder, kIsProfile},
    {"opera-developer", "Opera Developer", Engine::chromium, kNeedsDataFolder, kIsProfile},
    chromium("com.opera.browser", "Opera"),
    chromium("com.opera.browser.beta", "Opera Beta"),
    chromium("com.opera.gx", "Opera GX"),
    chromium("com.opera.mini.native", "Opera Mini"),
    chromium("yandex/yandexbrowser", "Yandex Browser"),
    named("yandex-browser", "Yandex Browser"),
    named("yandex-browser-beta", "Yandex Browser Beta"),
    chromium("com.yandex.browser", "Yandex Browser"),
    chromium("com.yandex.browser.beta", "Yandex Browser Beta"),
    chromium("com.sec.android.app.sbrowser", "Samsung Internet"),
    chromium("com.sec.android.app.sbrowser.beta", "Samsung Internet Beta"),
    chromium("com.sec.android.app.sbrowser.beta/app_sbrowser", "Samsung Internet Beta"),
    chromium("app_sbrowser", "Samsung Internet"),
    chromium("naver/naver whale", "Naver Whale"),
    chromium("comodo/dragon", "Comodo Dragon"),
    chromium("microsoft/teams", "Microsoft Teams (Electron)"),
    chromium("microsoft/skype for desktop", "Skype (Electron)"),
    named("discord", "Discord (Electron)"),
    named("slack", "Slack (Electron)"),
    named("signal", "Signal (Electron)"),

    gecko("mozilla/firefox", "Firefox"),
    gecko(".mozilla/firefox", "Firefox"),
    {"firefox", "Firefox", Engine::gecko, kNeedsDataFolder},
    gecko("org.mozilla.firefox", "Firefox"),
    gecko("org.mozilla.firefox_beta", "Firefox Beta"),
    gecko("org.mozilla.fenix", "Firefox Nightly"),
    gecko("org.mozilla.fennec_fdroid", "Fennec"),
    gecko("org.mozilla.klar", "Firefox Klar"),
    gecko("org.mozilla.focus", "Firefox Focus"),
    gecko("mozilla/seamonkey", "SeaMonkey"),
    gecko(".mozilla/seamonkey", "SeaMonkey"),
    gecko(".thunderbird", "Thunderbird"),
    named("thunderbird", "Thunderbird", Engine::gecko),
    gecko("torbrowser/data/browser", "Tor Browser"),
    gecko("torbrowser-data/browser", "Tor Browser"),
    gecko("org.torproject.torbrowser", "Tor Browser"),
    gecko(".librewolf", "LibreWolf"),
    named("librewolf", "LibreWolf", Engine::gecko),
    gecko(".waterfox", "Waterfox"),
    named("waterfox", "Waterfox", Engine::gecko),
    gecko(".floorp", "Floorp"),
    named("floorp", "Floorp", Engine::gecko),
    gecko(".zen", "Zen"),
    named("zen", "Zen", Engine::gecko),
    gecko("moonchild productions/pale moon", "Pale Moon"),

    named("epiphany", "Epiphany", Engine::webkit),
    named("falkon", "Falkon", Engine::webkit),
    {"microsoft.microsoftedge_8wekyb3d8bbwe", "Microsoft Edge Legacy", Engine::internetExplorer},
    {"apple computer/safari", "Safari", Engine::safari},
    {"library/safari", "Safari", Engine::safari},
    {"com.apple.safari", "Safari", Engine::safari},
};

constexpr BrowserFile kFiles[] = {
    {"ephy-history.db", "Epiphany"},
    {"browsedata.db", "Falkon"},
    {"sbrowser.db", "Samsung Internet"},
    {"sbrowser2.db", "Samsung Internet"},
};

constexpr InstallPlace kChromiumInstalls[] = {
    {"/google/chrome beta/application/", "Google Chrome Beta"},
    {"/google/chrome dev/application/", "Google Chrome Dev"},
    {"/google/chrome sxs/application/", "Google Chrome Canary"},
    {"/google/chrome/application/", "Google Chrome"},
    {"/opt/google/chrome-beta/", "Google Chrome Beta"},
    {"/opt/google/chrome-unstable/", "Google Chrome Dev"},
    {"/opt/google/chrome/", "Google Chrome"},
    {"/google chrome.app/", "Google Chrome"},
    {"/microsoft/edge beta/application/", "Microsoft Edge Beta"},
    {"/microsoft/edge dev/application/", "Microsoft Edge Dev"},
    {"/microsoft/edge sxs/application/", "Microsoft Edge Canary"},
    {"/microsoft/edge/application/", "Microsoft Edge"},
    {"/opt/microsoft/msedge-beta/", "Microsoft Edge Beta"},
    {"/opt/microsoft/msedge-dev/", "Microsoft Edge Dev"},
    {"/opt/microsoft/msedge/", "Microsoft Edge"},
    {"/microsoft edge.app/", "Microsoft Edge"},
    {"/bravesoftware/brave-browser-beta/application/", "Brave Beta"},
    {"/bravesoftware/brave-browser-nightly/application/", "Brave Nightly"},
    {"/bravesoftware/brave-browser/application/", "Brave"},
    {"/opt/brave.com/brave/", "Brave"},
    {"/brave browser.app/", "Brave"},
    {"/vivaldi/application/", "Vivaldi"},
    {"/opt/vivaldi/", "Vivaldi"},
    {"/vivaldi.app/", "Vivaldi"},
    {"/programs/opera gx/", "Opera GX"},
    {"/programs/opera/", "Opera"},
    {"/x86_64-linux-gnu/opera/", "Opera"},
    {"/opera gx.app/", "Opera GX"},
    {"/opera.app/", "Opera"},
    {"/yandex/yandexbrowser/application/", "Yandex Browser"},
    {"/opt/yandex/browser/", "Yandex Browser"},
    {"/yandex.app/", "Yandex Browser"},
    {"/usr/lib/chromium/", "Chromium"},
    {"/usr/lib/chromium-browser/", "Chromium"},
    {"/usr/lib64/chromium-browser/", "Chromium"},
    {"/chromium/application/", "Chromium"},
    {"/chromium.app/", "Chromium"},
};

constexpr InstallPlace kGeckoInstalls[] = {
    {"tor browser", "Tor Browser"}, {"tor-browser", "Tor Browser"}, {"torbrowser", "Tor Browser"},
    {"librewolf", "LibreWolf"},     {"waterfox", "Waterfox"},       {"floorp", "Floorp"},
    {"zen browser", "Zen"},         {"pale moon", "Pale Moon"},     {"palemoon", "Pale Moon"},
    {"seamonkey", "SeaMonkey"},     {"thunderbird", "Thunderbird"}, {"firefox", "Firefox"},
};

constexpr auto kDataFolders = std::to_array<std::string_view>({
    "local",
    "locallow",
    "roaming",
    "application data",
    "anwendungsdaten", // Windows
    "application support",
    "caches",
    "library", // macOS
    ".config",
    ".cache",
    "share",
    "common",
    "current",
    "config",
    "cache",
    "data",
});

} // namespace

std::span<const BrowserPlace> browserPlaces() {
    return kPlaces;
}

std::span<const BrowserFile> browserFiles() {
    return kFiles;
}

std::span<const InstallPlace> installPlaces(Engine engine) {
    if (engine == Engine::chromium)
        return kChromiumInstalls;
    if (engine == Engine::gecko)
        return kGeckoInstalls;
    return {};
}

bool isDataFolder(std::string_view folder) {
    return std::ranges::find(kDataFolders, folder) != kDataFolders.end();
}

std::string_view familyName(Engine engine) {
    switch (engine) {
    case Engine::chromium:
        return "Chromium family";
    case Engine::gecko:
        return "Firefox family";
    case Engine::webkit:
        return "WebKit family";
    case Engine::internetExplorer:
        return "Internet Explorer";
    case Engine::macIE:
        return "Internet Explorer for Macintosh";
    case Engine::opera:
        return "Opera";
    case Engine::safari:
        return "Safari";
    case Engine::unknown:
        break;
    }
    return {};
}

} // namespace nv
