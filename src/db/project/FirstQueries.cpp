#include "db/project/StoredQueries.h"
#include "db/sql/Dialect.h"

#include <fmt/format.h>

// The stored queries of a new project. Examiners know them by name and by what they find, so their
// conditions stand as they are, ".ppt" twice included.
namespace nv {

namespace {

constexpr std::string_view kDateOrder = " ORDER BY ActionDateLocal ASC";
constexpr std::string_view kRebuilt = "Len(CacheFileRebuiltBLOB) > 0 OR Len(IngredientIDs) > 0";
constexpr std::string_view kPictureFile =
    "(UCase(URLFileExt) = 'JPG' OR UCase(URLFileExt) = 'GIF' OR UCase(URLFileExt) = 'BMP' OR "
    "UCase(URLFileExt) = 'PNG' OR UCase(URLFileExt) = 'TIF')";
constexpr std::string_view kMovieFile =
    "(UCase(URLFileExt) = 'SWF' OR UCase(URLFileExt) = 'WMV' OR UCase(URLFileExt) = 'FLA' OR "
    "UCase(URLFileExt) = 'AVI' OR UCase(URLFileExt) = 'MPEG' OR UCase(URLFileExt) = 'ASX' OR "
    "UCase(URLFileExt) = 'MOV' OR UCase(URLFileExt) = 'MPG')";

StoredQuery where(std::string name, std::string_view condition) {
    return {std::move(name), fmt::format("SELECT * FROM URLs WHERE {}{}", condition, kDateOrder)};
}

/// "column LIKE 'pattern' OR ..."; no pattern finds nothing. The database takes a chain of 1000 at
/// most: longer ones, of an agency's own list, are made of groups in parentheses.
std::string anyLike(std::string_view column, const std::vector<std::string> &patterns) {
    constexpr std::size_t kGroup = 200;
    const bool grouped = patterns.size() > kGroup;
    std::string condition;
    for (std::size_t i = 0; i < patterns.size(); ++i) {
        const bool opens = grouped && i % kGroup == 0;
        const bool closes = grouped && (i % kGroup == kGroup - 1 || i + 1 == patterns.size());
        condition += fmt::format("{}{}{} LIKE {}{}", i == 0 ? "" : " OR ", opens ? "(" : "", column,
                                 quotedText(patterns[i]), closes ? ")" : "");
    }
    return condition.empty() ? "False" : condition;
}

std::vector<std::string> inside(const std::vector<std::string> &terms) {
    std::vector<std::string> patterns;
    patterns.reserve(terms.size());
    for (const std::string &term : terms)
        patterns.push_back("%" + term + "%");
    return patterns;
}

StoredQuery urlLike(std::string name, const std::vector<std::string> &patterns) {
    return where(std::move(name), anyLike("URL", patterns));
}

void addSites(std::vector<StoredQuery> &queries) {
    queries.push_back(where("Rebuilt Webpages", kRebuilt));
    queries.push_back(
        urlLike("Webmail", {"%.hotmail.%", "%.yahoo.%", "%.yimg.%", "%.live.%", "%webmail.%"}));
    queries.push_back(urlLike("Google/Gmail", {"%.google.%", "%gmail%"}));
    queries.push_back(urlLike("Social Networks", {"%.myspace.%", "%.facebook.%", "%.youtube.%"}));
    queries.push_back(urlLike("eBay", {"%.ebay.%"}));
    queries.push_back(urlLike("Facebook", {"%.facebook.%"}));
    queries.push_back(urlLike("YouTube", {"%.youtube.%"}));
    queries.push_back(urlLike("MySpace", {"%.myspace.%"}));
    queries.push_back(urlLike("Kijiji/Craigslist", {"%.kijiji.%", "%.craigslist.%"}));
    queries.push_back(
        urlLike("MS Office Documents", {"%.doc", "%.xls", "%.ppt", "%.mdb", "%.ppt"}));
    queries.push_back(where("Yahoo Mail", "URL LIKE '%mail.yahoo.com%' OR URL LIKE "
                                          "'%mail.yimg.com%' OR Host = 'mail.yimg.com'"));
    queries.push_back(urlLike("Hotmail", {"%hotmail%", "%live.ca%", "%live.com%"}));
    queries.push_back({"TOP 25 URLs",
                       "SELECT TOP 25 URLs.* FROM URLs ORDER BY Visits DESC, ActionDateLocal ASC"});
}

void addContents(std::vector<StoredQuery> &queries, const KeywordLists &keywords) {
    const auto child = inside(keywords.childExploitation);
    const auto adult = inside(keywords.adultContent);
    const std::string picture = "(Category = 'Pictures' OR IsPicture = True) AND ";
    queries.push_back(
        where("Child Exploitation", anyLike("HTMLBody", child) + " OR " + anyLike("URL", child)));
    queries.push_back(where("Pictures (Cache only)",
                            fmt::format("CacheFileExists = True AND Len(ThumbnailMD5Hash) > 0 "
                                        "AND {}{}",
                                        picture, kPictureFile)));
    queries.push_back(where("Pictures (any source)", fmt::format("{}{}", picture, kPictureFile)));
    queries.push_back(
        where("Movie Files (Cache only)",
              fmt::format("CacheFileExists = True AND Category = 'Movies' AND {}", kMovieFile)));
    queries.push_back(
        where("Movie Files (any source)", fmt::format("Category = 'Movies' AND {}", kMovieFile)));
    // The two above ask for a category that importing doesn't write; these find what it writes.
    queries.push_back(where("Movies (all)", "Category = 'Movies, Animation'"));
    queries.push_back(where("Music (all)", "Category = 'Music, Audio' OR Category = 'Audio'"));
    queries.push_back(where("XXX Content (from Cache)", anyLike("HTMLBody", adult)));
    queries.push_back(where("XXX Content (in URLs)", anyLike("URL", adult)));
    queries.push_back(where(
        "Phishing", "IsWebPage = True AND (HTMLBody LIKE '%client%' OR HTMLBody LIKE '%customer%') "
                    "AND (HTMLBody LIKE '%card%' OR HTMLBody LIKE '%visa%') AND HTMLBody LIKE "
                    "'%bank%'"));
    queries.push_back(
        {"Linked URLs",
         "SELECT Links.URL_ID, LinkAnalysis.Parent_ID, LinkAnalysis.Child_ID, "
         "LinkAnalysis.HashedURL, LinkAnalysis.URL FROM (URLs INNER JOIN Links ON URLs.URL_ID = "
         "Links.URL_ID) INNER JOIN LinkAnalysis ON (Links.Link_ID = LinkAnalysis.Link_ID) AND "
         "(URLs.URL_ID = LinkAnalysis.Child_ID) AND (URLs.URL_ID = LinkAnalysis.Parent_ID) WHERE "
         "(((LinkAnalysis.Parent_ID)>0) AND ((LinkAnalysis.Child_ID)>0))"});
}

StoredQuery onlyPictures(std::string name, std::string_view extension) {
    return where(std::move(name),
                 fmt::format("IsPicture = True AND CacheFileExists = True AND "
                             "(LCase(CacheFileExt) = '{0}' OR LCase(URLFileExt) = '{0}')",
                             extension));
}

/// The first of the month that lies `months` back, wrapping into the year before.
StoredQuery activitySince(std::string name, int year, int month, int months) {
    const int count = year * 12 + (month - 1) - months;
    return where(std::move(name),
                 fmt::format("ActionDateUTC >= #{}/1/{}#", count % 12 + 1, count / 12));
}

void addQuickQueries(std::vector<StoredQuery> &queries, int year, int month) {
    queries.push_back(where("_Show Rebuilt Webpages", kRebuilt));
    queries.push_back(
        where("_Show Only Webpages",
              fmt::format("IsWebpage = True AND IsJavascript = False AND (CacheFileExists = True "
                          "OR {}) AND IsPicture = False",
                          kRebuilt)));
    queries.push_back(where("_Show Only History", "IsHistory = True"));
    queries.push_back(
        where("_Show Only IE Daily History", "IsHistory = True AND UCase(CacheType) = 'IE DAILY'"));
    queries.push_back(where("_Show Only IE Weekly History",
                            "IsHistory = True AND UCase(CacheType) = 'IE WEEKLY'"));
    queries.push_back(where("_Show Only Pictures", "IsPicture = True AND CacheFileExists = True"));
    queries.push_back(onlyPictures("_Show Only JPEGs", "jpg"));
    queries.push_back(onlyPictures("_Show Only GIFs", "gif"));
    queries.push_back(onlyPictures("_Show Only PNGs", "png"));
    queries.push_back(activitySince("_Activity for Last Month", year, month, 1));
    queries.push_back(activitySince("_Activity for Last 6 Months", year, month, 6));
    queries.push_back(activitySince("_Activity for Last 12 Months", year, month, 12));
    queries.push_back(where("_Tagged Items", "Tagged = True"));
}

} // namespace

bool lacksTerms(std::string_view sql) {
    const std::string none = anyLike({}, {});
    return sql == where({}, none).sql || sql == where({}, none + " OR " + none).sql;
}

std::vector<StoredQuery> firstQueries(int year, int month, const KeywordLists &keywords) {
    std::vector<StoredQuery> queries{
        {std::string(kDefaultQueryName), std::string(kDefaultQueryText)}};
    addSites(queries);
    addContents(queries, keywords);
    addQuickQueries(queries, year, month);
    return queries;
}

} // namespace nv
