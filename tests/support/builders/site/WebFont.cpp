// woff  = "wOFF" head[40] directory[20]* table*     each table packed by zlib where that is smaller
// table = of TrueType: cmap glyf head hhea hmtx loca maxp name OS/2 post

#include "support/builders/site/WebFont.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>
#define ZLIB_CONST // zlib only reads its input
#include <zlib.h>

namespace nv::test {

namespace {

/// Strokes on a grid of five by seven dots, two characters a dot (x from the left, y from below),
/// strokes apart by a blank.
struct Letter {
    char character;
    std::string_view strokes;
};

constexpr std::array kLetters = {Letter{'A', "0004264440 0242"},
                                 Letter{'B', "00063645443303 3342413000"},
                                 Letter{'C', "45361605011031 3141"},
                                 Letter{'D', "000636454130 3000"},
                                 Letter{'E', "46060040 0333"},
                                 Letter{'F', "460600 0333"},
                                 Letter{'G', "4536160501103041 414323"},
                                 Letter{'H', "0006 4046 0343"},
                                 Letter{'I', "1030 2026 1636"},
                                 Letter{'J', "4641301001"},
                                 Letter{'K', "0006 460340"},
                                 Letter{'L', "060040"},
                                 Letter{'M', "0006234640"},
                                 Letter{'N', "00064046"},
                                 Letter{'O', "103041453616050110"},
                                 Letter{'P', "00063645443303"},
                                 Letter{'Q', "0110304145361605 0501 2240"},
                                 Letter{'R', "00063645443303 2340"},
                                 Letter{'S', "453616050413334241301001"},
                                 Letter{'T', "0646 2620"},
                                 Letter{'U', "060110304146"},
                                 Letter{'V', "062046"},
                                 Letter{'W', "0610233046"},
                                 Letter{'X', "0640 0046"},
                                 Letter{'Y', "062346 2320"},
                                 Letter{'Z', "06460040"},
                                 Letter{'0', "0110304145361605 0501 0145"},
                                 Letter{'1', "152620 1030"},
                                 Letter{'2', "05163645440040"},
                                 Letter{'3', "051636454433 334241301001 1333"},
                                 Letter{'4', "30360242"},
                                 Letter{'5', "4606033342413000"},
                                 Letter{'6', "4536160501103041423303"},
                                 Letter{'7', "064610"},
                                 Letter{'8', "1304051636454433130201103041 414233"},
                                 Letter{'9', "01103041 4145361605041343"},
                                 Letter{'-', "1333"},
                                 Letter{'.', "2021"},
                                 Letter{',', "2110"},
                                 Letter{':', "2122 2425"},
                                 Letter{'\'', "2625"},
                                 Letter{'/', "0046"}};

constexpr int kDot = 130; ///< font units between dots
constexpr int kLeft = 90; ///< of a letter's left edge
constexpr int kHalf = 52; ///< of a stroke's width
constexpr int kAdvance = 4 * kDot + 2 * kLeft;
constexpr int kEm = 1000;
constexpr int kAscent = 880;
constexpr int kDescent = -140;

using Corner = std::pair<int, int>;
using Outline = std::vector<Corner>;

/// Big-endian fields one after the other.
class Fields {
  public:
    Fields &u8(unsigned number) { return put(number, 1); }
    Fields &u16(int number) { return put(static_cast<std::uint32_t>(number), 2); }
    Fields &u32(std::uint32_t number) { return put(number, 4); }
    Fields &text(std::string_view text) {
        m_bytes += text;
        return *this;
    }
    const std::string &bytes() const { return m_bytes; }

  private:
    Fields &put(std::uint32_t number, int bytes) {
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
            m_bytes += static_cast<char>(number >> shift & 0xFF);
        return *this;
    }
    std::string m_bytes;
};

/// Outlines go clockwise, so that overlapping ones add up.
Outline strokeOf(Corner from, Corner to) {
    const double dx = to.first - from.first;
    const double dy = to.second - from.second;
    const double length = std::hypot(dx, dy);
    const auto sx = static_cast<int>(std::lround(dy / length * kHalf));
    const auto sy = static_cast<int>(std::lround(-dx / length * kHalf));
    return {{from.first - sx, from.second - sy},
            {to.first - sx, to.second - sy},
            {to.first + sx, to.second + sy},
            {from.first + sx, from.second + sy}};
}

/// Round enough for the end of a stroke.
Outline dotOf(Corner at) {
    constexpr int kFlat = kHalf * 2 / 5;
    constexpr std::array<Corner, 8> kRound = {{{-kFlat, kHalf},
                                               {kFlat, kHalf},
                                               {kHalf, kFlat},
                                               {kHalf, -kFlat},
                                               {kFlat, -kHalf},
                                               {-kFlat, -kHalf},
                                               {-kHalf, -kFlat},
                                               {-kHalf, kFlat}}};
    Outline outline;
    outline.reserve(kRound.size());
    for (const auto &[x, y] : kRound)
        outline.emplace_back(at.first + x, at.second + y);
    return outline;
}

std::vector<Outline> outlinesOf(std::string_view strokes) {
    std::vector<Outline> outlines;
    bool begins = true;
    Corner last;
    for (std::size_t i = 0; i + 1 < strokes.size(); i += 2) {
        if (strokes[i] == ' ') {
            begins = true;
            ++i;
        }
        const Corner dot = {kLeft + (strokes[i] - '0') * kDot,
                            kHalf + (strokes[i + 1] - '0') * kDot};
        if (!begins)
            outlines.push_back(strokeOf(last, dot));
        outlines.push_back(dotOf(dot));
        last = dot;
        begins = false;
    }
    return outlines;
}

std::string glyphOf(const std::vector<Outline> &outlines) {
    constexpr unsigned kOnCurve = 1;
    Fields head;
    Fields flags;
    Fields across;
    Fields down;
    Corner last = {0, 0};
    int points = 0;
    head.u16(static_cast<int>(outlines.size())).u16(0).u16(0).u16(kEm).u16(kAscent);
    for (const Outline &outline : outlines) {
        for (const Corner &corner : outline) {
            flags.u8(kOnCurve);
            across.u16(corner.first - last.first);
            down.u16(corner.second - last.second);
            last = corner;
        }
        points += static_cast<int>(outline.size());
        head.u16(points - 1);
    }
    std::string bytes = head.u16(0).bytes() + flags.bytes() + across.bytes() + down.bytes();
    bytes.append((4 - bytes.size() % 4) % 4, '\0');
    return bytes;
}

struct Glyphs {
    std::string outlines;                     ///< table glyf
    std::vector<std::uint32_t> places = {0};  ///< in it
    std::vector<std::pair<int, int>> letters; ///< character and glyph, by character
};

Glyphs glyphs() {
    Glyphs all;
    int glyph = 0;
    const auto add = [&all, &glyph](const std::string &bytes) {
        all.outlines += bytes;
        all.places.push_back(static_cast<std::uint32_t>(all.outlines.size()));
        return glyph++;
    };
    add(glyphOf({{{kLeft, 0}, {kLeft, 800}, {kAdvance - kLeft, 800}, {kAdvance - kLeft, 0}}}));
    all.letters.emplace_back(' ', add({}));
    for (const Letter &letter : kLetters) {
        const int number = add(glyphOf(outlinesOf(letter.strokes)));
        all.letters.emplace_back(letter.character, number);
        if (letter.character >= 'A' && letter.character <= 'Z')
            all.letters.emplace_back(letter.character + ('a' - 'A'), number);
    }
    std::ranges::sort(all.letters);
    return all;
}

/// Format 4 with a segment a character.
std::string cmapOf(const Glyphs &all) {
    const int segments = static_cast<int>(all.letters.size()) + 1;
    int range = 2;
    int selector = 0;
    for (; range * 2 <= segments * 2; range *= 2)
        ++selector;
    Fields table;
    table.u16(0).u16(1).u16(3).u16(1).u32(12);
    table.u16(4).u16(16 + 8 * segments).u16(0).u16(segments * 2).u16(range).u16(selector);
    table.u16(segments * 2 - range);
    for (const auto &[character, glyph] : all.letters)
        table.u16(character);
    table.u16(0xFFFF).u16(0);
    for (const auto &[character, glyph] : all.letters)
        table.u16(character);
    table.u16(0xFFFF);
    for (const auto &[character, glyph] : all.letters)
        table.u16(glyph - character);
    table.u16(1);
    for (int i = 0; i < segments; ++i)
        table.u16(0);
    return table.bytes();
}

std::string headTable() {
    Fields table;
    table.u32(0x10000).u32(0x10000).u32(0).u32(0x5F0F'3CF5).u16(3).u16(kEm);
    table.u32(0).u32(0).u32(0).u32(0); // made at no time
    table.u16(0).u16(kDescent).u16(kEm).u16(kAscent).u16(0).u16(8).u16(2).u16(1).u16(0);
    return table.bytes();
}

std::string hheaTable() {
    Fields table;
    table.u32(0x10000).u16(kAscent).u16(kDescent).u16(0).u16(kAdvance);
    table.u16(0).u16(0).u16(kEm).u16(1).u16(0).u16(0);
    for (int i = 0; i < 5; ++i)
        table.u16(0);
    return table.u16(1).bytes(); // all are as wide as the first
}

std::string os2Table() {
    constexpr int kWeight = 400;
    Fields table;
    table.u16(3).u16(kAdvance).u16(kWeight).u16(5).u16(0);
    for (int i = 0; i < 11; ++i)
        table.u16(i < 10 ? 300 : 0); // sizes of what is set lower and higher, class
    table.text(std::string(10, '\0')).u32(1).u32(0).u32(0).u32(0).text("NONE");
    table.u16(0x40).u16(' ').u16('z').u16(kAscent).u16(kDescent).u16(0).u16(kAscent).u16(-kDescent);
    return table.u32(1).u32(0).u16(500).u16(700).u16(0).u16(' ').u16(1).bytes();
}

std::string nameTable() {
    constexpr std::array<std::pair<int, std::string_view>, 5> kNames = {
        {{1, "Pier"}, {2, "Regular"}, {4, "Pier"}, {5, "Version 1.0"}, {6, "Pier"}}};
    Fields table;
    std::string texts;
    table.u16(0).u16(kNames.size()).u16(6 + 12 * static_cast<int>(kNames.size()));
    for (const auto &[number, name] : kNames) {
        table.u16(3).u16(1).u16(0x409).u16(number).u16(static_cast<int>(name.size() * 2));
        table.u16(static_cast<int>(texts.size()));
        for (const char c : name)
            texts += std::string({'\0', c});
    }
    return table.bytes() + texts;
}

std::string maxpTable(int glyphCount) {
    constexpr int kMostPoints = 400;
    constexpr int kMostOutlines = 60;
    Fields table;
    table.u32(0x10000).u16(glyphCount).u16(kMostPoints).u16(kMostOutlines).u16(0).u16(0).u16(2);
    for (int i = 0; i < 8; ++i)
        table.u16(0);
    return table.bytes();
}

struct Table {
    std::string_view name;
    std::string bytes;
};

std::vector<Table> tables() {
    const Glyphs all = glyphs();
    const int count = static_cast<int>(all.places.size()) - 1;
    Fields widths;
    widths.u16(kAdvance).u16(0);
    for (int i = 1; i < count; ++i)
        widths.u16(0);
    Fields places;
    for (const std::uint32_t place : all.places)
        places.u32(place);
    Fields post;
    post.u32(0x30000).u32(0).u16(-100).u16(50).u32(1).u32(0).u32(0).u32(0).u32(0);
    return {{"OS/2", os2Table()},     {"cmap", cmapOf(all)},      {"glyf", all.outlines},
            {"head", headTable()},    {"hhea", hheaTable()},      {"hmtx", widths.bytes()},
            {"loca", places.bytes()}, {"maxp", maxpTable(count)}, {"name", nameTable()},
            {"post", post.bytes()}};
}

std::string padded(std::string bytes) {
    bytes.append((4 - bytes.size() % 4) % 4, '\0');
    return bytes;
}

std::uint32_t sumOf(const std::string &bytes) {
    const std::string whole = padded(bytes);
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < whole.size(); ++i)
        sum += std::uint32_t{static_cast<std::uint8_t>(whole[i])} << (24 - 8 * (i % 4));
    return sum;
}

std::string packed(const std::string &bytes) {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    std::string result(size, '\0');
    compress2(reinterpret_cast<Bytef *>(result.data()), &size,
              reinterpret_cast<const Bytef *>(bytes.data()), static_cast<uLong>(bytes.size()),
              Z_BEST_COMPRESSION);
    result.resize(size);
    return result.size() < bytes.size() ? result : bytes;
}

} // namespace

std::string pierFont() {
    constexpr std::uint32_t kHead = 44;
    constexpr std::uint32_t kEntry = 20;
    const std::vector<Table> all = tables();
    const auto count = static_cast<std::uint32_t>(all.size());
    std::uint32_t unpacked = 12 + 16 * count;
    Fields directory;
    std::string bodies;
    for (const Table &table : all) {
        const std::string body = packed(table.bytes);
        directory.text(table.name)
            .u32(kHead + kEntry * count + static_cast<std::uint32_t>(bodies.size()))
            .u32(static_cast<std::uint32_t>(body.size()))
            .u32(static_cast<std::uint32_t>(table.bytes.size()))
            .u32(sumOf(table.bytes));
        unpacked += static_cast<std::uint32_t>(padded(table.bytes).size());
        bodies += padded(body);
    }
    Fields head;
    head.text("wOFF").u32(0x10000);
    head.u32(kHead + kEntry * count + static_cast<std::uint32_t>(bodies.size()));
    head.u16(static_cast<int>(count)).u16(0).u32(unpacked).u16(1).u16(0);
    head.u32(0).u32(0).u32(0).u32(0).u32(0);
    return head.bytes() + directory.bytes() + bodies;
}

} // namespace nv::test
