#include "base/Files.h"
#include "readers/CachedBody.h"
#include "readers/Coding.h"
#include "readers/Limits.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/Packed.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

using Packer = std::string (*)(std::string_view);

class CodingTest : public testing::Test {
  protected:
    /// As a body that lies in a file.
    bool unpack(const std::string &bytes, const std::vector<std::string> &codings = {"gzip"},
                Damaged damaged = Damaged::staysPacked, std::uint64_t inMemory = 0) {
        body = {folder.write("body", bytes), false, {}};
        return unpackBody(body, codings, damaged, inMemory, log);
    }
    std::string content() const {
        if (body.isInMemory)
            return std::string(body.raw());
        const Bytes bytes = readWhole(body.file);
        return std::string(ByteView(bytes).raw());
    }
    bool isAlone() const {
        const std::filesystem::directory_iterator files(folder.path());
        return std::distance(begin(files), end(files)) == 1;
    }
    /// A page of some length that packs well and not too well.
    static std::string page() {
        std::string text = "<html>";
        for (int i = 0; i < 400; ++i)
            text += "<p>" + std::to_string(i * 7919) + " caf\xC3\xA9</p>";
        return text + "</html>";
    }

    test::TempFolder folder;
    test::MemoryLog log;
    Body body;
};

struct Form {
    const char *name;
    const char *coding;
    Packer pack;
};

class EachCoding : public CodingTest, public testing::WithParamInterface<Form> {};

TEST_P(EachCoding, isUndone) {
    ASSERT_TRUE(unpack(GetParam().pack(page()), {GetParam().coding}));
    EXPECT_EQ(content(), page());
    EXPECT_EQ(body.unpackedFrom, GetParam().coding);
    EXPECT_EQ(body.doubt, "");
    EXPECT_FALSE(body.isInMemory);
    EXPECT_TRUE(isAlone());
    EXPECT_TRUE(log.entries.empty());
    ASSERT_TRUE(unpack(GetParam().pack(""), {GetParam().coding}));
    EXPECT_EQ(content(), "");
}

TEST_P(EachCoding, leavesNoFileOfABodyThatFitsInMemory) {
    ASSERT_TRUE(unpack(GetParam().pack("text"), {GetParam().coding}, Damaged::staysPacked, 4));
    EXPECT_TRUE(body.isInMemory);
    EXPECT_EQ(body.raw(), "text");
    EXPECT_FALSE(std::filesystem::exists(body.file));
}

TEST_P(EachCoding, cutAnywhereGivesWhatCanBeUnpackedAndIsTold) {
    const std::string whole = GetParam().pack(page());
    std::size_t most = 0;
    for (std::size_t cut = 2; cut < whole.size(); ++cut) { // one byte tells no coding
        const bool isSound = unpack(whole.substr(0, cut), {GetParam().coding}, Damaged::givesPart);
        if (body.unpackedFrom.empty()) {
            EXPECT_EQ(content(), whole.substr(0, cut)) << cut;
        } else {
            EXPECT_EQ(content(), page().substr(0, content().size())) << cut;
            most = std::max(most, content().size());
        }
        EXPECT_EQ(isSound, body.doubt.empty()) << cut;
        EXPECT_TRUE(!isSound || content() == page()) << cut;
        EXPECT_TRUE(isAlone()) << cut;
    }
    EXPECT_FALSE(log.entries.empty());
    if (GetParam().coding != std::string("zstd")) { // which unpacks by blocks of 128 KB
        EXPECT_GT(most, page().size() / 2);
    }
}

TEST_P(EachCoding, cutAnywhereStaysPackedByTheClassicRule) {
    const std::string whole = GetParam().pack(page());
    for (std::size_t cut = 2; cut + 20 < whole.size(); cut += 13) {
        EXPECT_FALSE(unpack(whole.substr(0, cut), {GetParam().coding})) << cut;
        EXPECT_EQ(content(), whole.substr(0, cut)) << cut;
        EXPECT_TRUE(isAlone()) << cut;
    }
}

TEST_P(EachCoding, changedAnywhereIsNoFaultOfTheProgram) {
    const std::string whole = GetParam().pack(page());
    for (std::size_t at = 0; at < whole.size(); at += 3) {
        std::string changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ 0x5A);
        const bool isSound = unpack(changed, {GetParam().coding}, Damaged::givesPart);
        EXPECT_EQ(isSound, body.doubt.empty()) << at;
        EXPECT_TRUE(!body.unpackedFrom.empty() || content() == changed) << at;
        EXPECT_TRUE(isAlone()) << at;
    }
}

TEST_P(EachCoding, isUndoneWithinAnotherOne) {
    for (const Form &outer : {Form{"", "gzip", test::gzip}, Form{"", "br", test::brotli},
                              Form{"", "zstd", test::zstd}}) {
        ASSERT_TRUE(unpack(outer.pack(GetParam().pack(page())), {GetParam().coding, outer.coding}));
        EXPECT_EQ(content(), page());
        EXPECT_EQ(body.unpackedFrom, std::string(GetParam().coding) + ", " + outer.coding);
    }
}

TEST_P(EachCoding, refusesABomb) {
    const std::string zeros(limits::kUnpackedAnyway + 1, '\0');
    const std::string once = GetParam().pack(zeros);
    const bool isTooLarge = once.size() * limits::kUnpackedTimes < zeros.size();
    EXPECT_EQ(unpack(once, {GetParam().coding}, Damaged::givesPart), !isTooLarge);
    EXPECT_EQ(content().size(), isTooLarge ? once.size() : zeros.size());
    EXPECT_EQ(log.entries.size(), isTooLarge ? 1U : 0U);
    EXPECT_TRUE(isAlone());
}

TEST_P(EachCoding, ofOtherBytesLeavesThemAndIsTold) {
    const std::string text = "<!doctype html><html>never packed</html>";
    const bool isGZip = GetParam().coding == std::string("gzip");
    const bool isSound = unpack(text, {GetParam().coding}, Damaged::givesPart);
    EXPECT_EQ(isSound, isGZip) << "caches keep unpacked what servers sent as gzip";
    if (body.unpackedFrom.empty()) {
        EXPECT_EQ(content(), text);
    }
    EXPECT_EQ(body.doubt.empty(), isGZip);
}

INSTANTIATE_TEST_SUITE_P(Codings, EachCoding,
                         testing::Values(Form{"gzip", "gzip", test::gzip},
                                         Form{"zlib", "deflate", test::zlibDeflate},
                                         Form{"bare", "deflate", test::rawDeflate},
                                         Form{"brotli", "br", test::brotli},
                                         Form{"zstd", "zstd", test::zstd}),
                         [](const auto &form) { return std::string(form.param.name); });

TEST_F(CodingTest, joinsMembersAndLeavesPadding) {
    ASSERT_TRUE(unpack(test::gzip("one ") + test::gzip("two") + std::string(300, '\0')));
    EXPECT_EQ(content(), "one two");
    ASSERT_TRUE(
        unpack(test::zstd("one ") + test::zstd("two") + std::string(300, '\x07'), {"zstd"}));
    EXPECT_EQ(content(), "one two");
    ASSERT_TRUE(unpack(test::brotli("one") + "padding", {"br"}));
    EXPECT_EQ(content(), "one");
}

TEST_F(CodingTest, namesTheProcedure) {
    const std::string whole = test::gzip(page());
    EXPECT_FALSE(unpack(whole.substr(0, 50)));
    ASSERT_FALSE(log.entries.empty());
    EXPECT_EQ(log.entries[0].procedure, "ParserClass.DecompressGZipFile()");
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
}

TEST_F(CodingTest, refusesALargeBombAndSaysTheLimit) {
    const std::string bomb = test::gzipOfZeros(limits::kUnpackedBytes + 1);
    EXPECT_FALSE(unpack(bomb));
    EXPECT_EQ(content(), bomb);
    EXPECT_TRUE(isAlone());
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_NE(log.entries[0].message.find(std::to_string(limits::kUnpackedBytes)),
              std::string::npos);
}

TEST_F(CodingTest, tellsCodingsThatCantBeUndoneByName) {
    const std::string hash = "\x01\x02" + std::string(30, '\xAB');
    EXPECT_FALSE(unpack("\xFF"
                        "DCB" +
                            hash + "brotli",
                        {"dcb"}, Damaged::givesPart));
    EXPECT_NE(body.doubt.find("\"dcb\""), std::string::npos) << body.doubt;
    EXPECT_NE(body.doubt.find("0102abab"), std::string::npos) << body.doubt;
    EXPECT_FALSE(unpack("^*M\x18 " + std::string(3, '\0') + hash + "zstd", {"dcz"}));
    EXPECT_NE(body.doubt.find("0102abab"), std::string::npos) << body.doubt;
    EXPECT_FALSE(unpack("short", {"dcz"}));
    EXPECT_NE(body.doubt.find("unknown"), std::string::npos) << body.doubt;
    EXPECT_FALSE(unpack("text", {"utf-8"}));
    EXPECT_NE(body.doubt.find("\"utf-8\""), std::string::npos) << body.doubt;
    EXPECT_EQ(content(), "text");
    EXPECT_FALSE(unpack("text", std::vector<std::string>(limits::kCodings + 1, "gzip")));
    EXPECT_EQ(content(), "text");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(CodingTest, anInnerOneOfACutBodyIsUndoneAsFarAsItGoes) {
    const std::string packed = test::brotli(test::gzip(page()));
    ASSERT_FALSE(unpack(packed.substr(0, packed.size() - 10), {"gzip", "br"}, Damaged::givesPart));
    EXPECT_EQ(body.unpackedFrom, "gzip, br");
    EXPECT_EQ(content(), page().substr(0, content().size()));
    EXPECT_GT(content().size(), page().size() / 2);
}

TEST(Codings, standInTheHeaders) {
    using List = std::vector<std::string>;
    EXPECT_EQ(codingsOf("HTTP/1.1 200 OK\r\nContent-Encoding: br\r\n"), List{"br"});
    EXPECT_EQ(codingsOf("content-encoding: X-GZip , identity,Zstd\ncontent-encoding: br"),
              (List{"gzip", "zstd", "br"}));
    EXPECT_EQ(codingsOf("Content-Encoding:\r\nVary: Accept-Encoding\r\n"), List{});
    EXPECT_EQ(codingsOf("X-Content-Encoding: br"), List{});
    EXPECT_EQ(codingsOf(""), List{});
}

class SettledBody : public CodingTest {
  protected:
    UrlRecord settled(const std::string &headers, const std::string &bytes, Packing packing) {
        UrlRecord record;
        record.MetaData = headers;
        body = {folder.path() / "body", true, Bytes(bytes.begin(), bytes.end())};
        settleBody(record, body, packing, kBodyInMemory, log);
        return record;
    }
};

TEST_F(SettledBody, ofAClassicCacheIsUnpackedByItsFirstBytes) {
    const std::string packed = test::gzip("<html>");
    EXPECT_TRUE(settled("", packed, Packing::classic).GZipEncoded);
    EXPECT_EQ(content(), "<html>");
    EXPECT_FALSE(settled("", packed, Packing::byHeaders).GZipEncoded) << "a file of that kind";
    EXPECT_EQ(content(), packed);
    EXPECT_TRUE(settled("Content-Encoding: gzip", packed, Packing::byHeaders).GZipEncoded);
    EXPECT_EQ(content(), "<html>");
    const std::string cut = packed.substr(0, packed.size() - 9);
    EXPECT_FALSE(settled("Content-Encoding: gzip", cut, Packing::classic).GZipEncoded);
    EXPECT_EQ(content(), cut) << "as earlier cases have it";
    EXPECT_TRUE(settled("Content-Encoding: gzip", cut, Packing::byHeaders).GZipEncoded);
    EXPECT_NE(body.doubt, "");
}

TEST_F(SettledBody, isUnpackedByItsHeaders) {
    const UrlRecord record =
        settled("Content-Encoding: br\r\n", test::brotli("\x89PNG..."), Packing::classic);
    EXPECT_EQ(content(), "\x89PNG...");
    EXPECT_TRUE(record.IsPicture);
    EXPECT_FALSE(record.GZipEncoded);
    EXPECT_EQ(record.CacheFileExt, "png");
    settled("Content-Encoding: zstd\r\n", test::gzip("text"), Packing::classic);
    EXPECT_EQ(content(), "text") << "a header that isn't true, and gzip all the same";
}

TEST_F(SettledBody, ofAClassicCacheByTheClassicRulesAloneIsWhatItWas) {
    const std::string packed = test::brotli("\x89PNG...");
    const UrlRecord record = settled("Content-Encoding: br\r\n", packed, Packing::classicOnly);
    EXPECT_EQ(content(), packed);
    EXPECT_FALSE(record.IsPicture);
    EXPECT_EQ(record.CacheFileExt, "");
    EXPECT_TRUE(
        settled("Content-Encoding: br\r\n", test::gzip("text"), Packing::classicOnly).GZipEncoded);
    EXPECT_EQ(content(), "text");
}

} // namespace
} // namespace nv
