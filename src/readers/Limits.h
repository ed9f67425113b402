#pragma once

#include <cstddef>
#include <cstdint>

// Caps that keep hostile files from taking the program down, each with its reason.
namespace nv::limits {

/// Content tests look no further: every signature stands in the first block of its format.
inline constexpr std::size_t kHeadBytes = std::size_t{64} << 10;

/// Hash tables of one Internet Explorer index. A chain that loops ends here; earlier cases were
/// counted with this cap.
inline constexpr std::size_t kIndexHashTables = 201;

/// What a packed body may unpack to. Cached bodies are pages, scripts and pictures of a few MB; a
/// body that grows beyond this is built to fill the disk and stays packed.
inline constexpr std::uint64_t kUnpackedBytes = std::uint64_t{256} << 20;

/// The same as times its packed size, for what unpacks to more than so many bytes. gzip comes to
/// 1032 times at most; br and zstd pack hundreds of megabytes of zeros into some hundred bytes.
inline constexpr std::uint64_t kUnpackedTimes = 2000;
inline constexpr std::uint64_t kUnpackedAnyway = std::uint64_t{16} << 20;

/// Codings of one body, one within the other. Servers apply one, seldom two.
inline constexpr std::size_t kCodings = 8;

// The history of Firefox 2 is read in memory, where each of its bytes costs several. A profile of
// years has some ten thousand pages in a few MB.

/// What is read of the file.
inline constexpr std::size_t kMorkFileBytes = std::size_t{256} << 20;

/// Browsers break lines after some 80 characters; a longer URL makes a line longer, but not this
/// long.
inline constexpr std::size_t kMorkLineBytes = std::size_t{16} << 20;

/// The 20th part of this is the longest URL that the browser could open.
inline constexpr std::size_t kMorkValueBytes = std::size_t{1} << 20;

/// The browser knows 13 columns.
inline constexpr std::size_t kMorkColumns = 10'000;

/// Each page brings about four values.
inline constexpr std::size_t kMorkValues = 4'000'000;
inline constexpr std::size_t kMorkRows = 500'000;

/// Texts of all entries. Every row may name the same value, so that a small file can hold more text
/// than any memory.
inline constexpr std::size_t kMorkTextBytes = std::size_t{256} << 20;

/// A property list in XML form. Its tree takes up to sixteen times its size in memory, and a
/// history of 150,000 pages has this size.
inline constexpr std::size_t kPropertyListBytes = std::size_t{64} << 20;

/// Elements within each other in a property list. Browsers nest six deep; what goes deeper is built
/// to exhaust the stack of programs that descend by recursion.
inline constexpr int kPropertyListDepth = 256;

/// The property list of one cached response: its headers, which servers limit to some 64 KB.
inline constexpr std::size_t kResponseBytes = std::size_t{1} << 20;

/// Look-ups of single rows that take longer than any honest one, each at a cost of some 10 ms. A
/// table that makes them so has lost the key by which browsers find rows.
inline constexpr std::uint64_t kSlowLookUps = 100;

/// How long the program that reads Jet databases may say nothing: it writes a line a row, so that
/// silence means that a damaged file keeps it busy for nothing.
inline constexpr int kJetSilenceMs = 60'000;

/// A row of it has 16 values of at most 1 MB, whose bytes take up to six in JSON.
inline constexpr std::size_t kJetLineBytes = std::size_t{128} << 20;

/// Blocks that an address of Chrome's cache can name: 8 bits for the file, 16 for the block. A
/// chain of entries ends at a block that was met before, so all chains together have no more steps.
inline constexpr std::size_t kChromeCacheBlocks = std::size_t{1} << 24;

/// A body in a block file of Chrome's cache has at most four blocks, 16 KB; what claims to be
/// larger than this would copy the block file anew for every record.
inline constexpr std::uint64_t kChromeBlockBody = std::uint64_t{1} << 20;

/// A key or a server's answer that lies in a separate file of that cache. Servers limit headers to
/// some 64 KiB, and an address of a megabyte opens in no browser.
inline constexpr std::uint64_t kChromeSeparateText = std::uint64_t{1} << 20;

/// Stretches of one sparse entry of Chromium's caches. The browser writes 64 KiB and more at a
/// time, and no entry beyond an eighth of the cache.
inline constexpr std::size_t kChromeStretches = 100'000;

/// The list of a Simple cache's entries, 24 bytes each. The browser keeps some ten thousand.
inline constexpr std::uint64_t kChromeSimpleIndex = std::uint64_t{64} << 20;

/// A log or table of a LevelDB store. Browsers begin a new one at 4 MB.
inline constexpr std::uint64_t kLevelFileBytes = std::uint64_t{64} << 20;

/// URL and headers of one entry of Firefox's disk cache: four blocks of 4096 bytes hold them in
/// every sound cache, while damaged lengths go up to 4 GB each.
inline constexpr std::int64_t kFirefoxCacheMetaData = std::int64_t{64} << 10;

/// A body in a block file of that cache: four blocks again, at most 16 KiB. Thousands of entries
/// may claim 4 GB each, and every body is copied while it is imported.
inline constexpr std::uint64_t kFirefoxCacheBlockBody = std::uint64_t{1} << 20;

/// Headers and addresses of the entries of one site's cache in Firefox, some 1 KB each. They stand
/// in tables of their own, in any order.
inline constexpr std::size_t kFirefoxSiteTexts = std::size_t{64} << 20;

/// What is read of a file of Opera. Its index tells of a cache of 400 MB at most, in some MB.
inline constexpr std::size_t kOperaFileBytes = std::size_t{256} << 20;

/// The list of typed addresses holds some hundred; an element of 4 bytes takes 100 in memory.
inline constexpr std::size_t kOperaTypedBytes = std::size_t{16} << 20;

/// Firefox's list of logins. One takes some 700 bytes, and some twenty times that in memory.
inline constexpr std::size_t kFirefoxLoginsBytes = std::size_t{64} << 20;

/// Key, headers and certificates of an entry of Firefox's cache2: some 10 KB.
inline constexpr std::uint64_t kFirefoxCache2MetaData = std::uint64_t{4} << 20;

/// The text file of a cookie, as far as it is kept. The browser holds a host's cookies to some
/// hundred KB; a longer file is none of its own.
inline constexpr std::uint64_t kCookieText = std::uint64_t{1} << 20;

/// A JSON file of a browser. Bookmarks and settings take some MB; ten thousand bookmarks are 4 MB.
inline constexpr std::uint64_t kJsonBytes = std::uint64_t{256} << 20;

/// Objects and arrays within each other there. Browsers read no more than 200.
inline constexpr std::size_t kJsonDepth = 400;

/// Bookmarks and folders of one file, each of which takes some 200 bytes until all are known: the
/// name of a folder stands after what is in it.
inline constexpr std::size_t kBookmarks = 1'000'000;

/// Names of folders, put together to the path of a bookmark: a hostile file could name one long
/// folder with a million bookmarks in it.
inline constexpr std::size_t kFolderPathBytes = 2000;

} // namespace nv::limits
