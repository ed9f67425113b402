#include "base/Digest.h"
#include "base/Text.h"
#include "db/hashes/HashList.h"
#include "support/WideText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kMd5 = "900150983cd24fb0d6963f7d28e17f72";
const std::string kSha1 = "a9993e364706816aba3e25717850c26c9cd0d89d";
const std::string kSha256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

struct ReadList {
    HashListCounts counts;
    std::vector<std::string> hashes; ///< lower case
};

std::string hexOf(const HashValue &hash) {
    return toLower(bytesToHex(ByteView(hash.used()), 0, hash.used().size()));
}

/// In blocks of this many bytes.
ReadList listOf(std::string_view text, std::size_t block = 7) {
    ReadList list;
    HashListReader reader([&list](const HashValue &hash) { list.hashes.push_back(hexOf(hash)); });
    for (std::size_t at = 0; at < text.size(); at += block)
        reader.add(text.substr(at, block));
    list.counts = reader.finish();
    return list;
}

TEST(HashList, takesHashesOneALine) {
    const ReadList list = listOf("# ours\n\n" + toUpper(kMd5) + "\r\n  " + kSha1 + "\n" + kSha256);
    EXPECT_THAT(list.hashes, ElementsAre(kMd5, kSha1, kSha256));
    EXPECT_EQ(list.counts.lines, 3U);
    EXPECT_EQ(list.counts.withoutHash(), 0U);
}

TEST(HashList, takesWhatMd5sumPrints) {
    EXPECT_THAT(listOf(kMd5 + "  a file\n" + kMd5 + " *binary\n\\" + kSha256 + "  a\\nname\n" +
                       "SHA1 (a) = b) = " + kSha1 + "\nMD5 (x) = " + kMd5 + "\n")
                    .hashes,
                ElementsAre(kMd5, kMd5, kSha256, kSha1, kMd5));
}

TEST(HashList, takesTheStrongestHashOfATable) {
    const std::string heading = "\"SHA-1\",\"MD5\",\"CRC32\",\"FileName\",\"FileSize\"\r\n";
    const ReadList list =
        listOf(heading + "\"" + toUpper(kSha1) + "\",\"" + toUpper(kMd5) +
               "\",\"0\",\"a,\"\"b\"\".txt\",5\r\n\"\",\"" + kMd5 + "\",\"0\",\"c\",5\r\n");
    EXPECT_THAT(list.hashes, ElementsAre(kSha1, kMd5));
    EXPECT_THAT(listOf("name;md5;sha_256\n\"a;b\";" + kMd5 + ";" + kSha256 + "\n").hashes,
                ElementsAre(kSha256));
    EXPECT_THAT(listOf("Path\tSHA256\nc\t" + kSha256 + "\r\n\t" + kSha256).hashes,
                ElementsAre(kSha256, kSha256));
    EXPECT_THAT(listOf(kMd5 + "  a,md5\n" + kMd5 + "  b\n").hashes, ElementsAre(kMd5, kMd5));
}

TEST(HashList, knowsTheMarksOfCodings) {
    for (const std::string &text :
         {"\xEF\xBB\xBF" + kMd5 + "\n", test::markedWideText(kMd5 + "\r\n", true),
          test::markedWideText(kMd5 + "\n", false)})
        for (const std::size_t block : {1, 2, 3, 1000})
            EXPECT_THAT(listOf(text, block).hashes, ElementsAre(kMd5)) << block;
}

TEST(HashList, tellsLinesWithoutAHash) {
    const ReadList list = listOf(kMd5 + "\nnothing here\n" + kMd5 + "00  name\n" + kMd5.substr(1) +
                                 "\nz" + kMd5.substr(1) + "\n");
    EXPECT_THAT(list.hashes, ElementsAre(kMd5));
    EXPECT_EQ(list.counts.withoutHash(), 4U);
    ASSERT_EQ(list.counts.refused.size(), 4U);
    EXPECT_THAT(list.counts.refused[0], HasSubstr("line 2: \"nothing here\""));
    EXPECT_EQ(listOf(std::string(1000, '\n') + "x\n").counts.lines, 1U);
    EXPECT_EQ(listOf(replaceAll(std::string(100, 'x'), "x", "x\n")).counts.refused.size(), 5U);
}

TEST(HashList, readsWhatIsNoList) {
    EXPECT_EQ(listOf("").counts.lines, 0U);
    EXPECT_THAT(listOf("ab").hashes, IsEmpty());
    EXPECT_THAT(listOf(std::string(100, '\0')).hashes, IsEmpty());
    EXPECT_THAT(listOf("\xFF\xFE"
                       "a")
                    .hashes,
                IsEmpty());
    EXPECT_THAT(listOf("md5,\"" + std::string(100, '"') + "\n\"" + kMd5).hashes, IsEmpty());
    EXPECT_THAT(listOf("PK\x03\x04\x80\xFE\xFF\n\x01\x02").hashes, IsEmpty());
}

TEST(HashList, looksAtNoMoreThanTheBeginningOfALongLine) {
    const std::string endless(100 * HashListReader::kLongestLine, 'a');
    EXPECT_THAT(listOf(kMd5 + " " + endless + "\n" + kSha1 + "\n" + endless, 4096).hashes,
                ElementsAre(kMd5, kSha1));
    const std::string commas(100 * HashListReader::kLongestLine, ',');
    EXPECT_THAT(listOf("md5\n" + kMd5 + commas + "\n" + commas, 4096).hashes, ElementsAre(kMd5));
}

TEST(HashValues, areOfThreeLengths) {
    EXPECT_EQ(hashIn(kSha1)->algorithm, DigestAlgorithm::sha1);
    EXPECT_EQ(hashIn(kMd5), hashIn(toUpper(kMd5)));
    EXPECT_FALSE(hashIn(""));
    EXPECT_FALSE(hashIn(kMd5 + "0"));
    EXPECT_FALSE(hashIn(kMd5.substr(1) + "\xE4"));
}

} // namespace
} // namespace nv
