#include "support/builders/LevelFiles.h"

#include "support/builders/SnappyFrames.h"

#include <algorithm>

namespace nv::test {

namespace {

template <class Number>
void put(std::string &bytes, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i)
        bytes.push_back(static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * i) & 0xFFU));
}

void putVarint(std::string &bytes, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7U)
        bytes.push_back(static_cast<char>((number & 0x7FU) | 0x80U));
    bytes.push_back(static_cast<char>(number));
}

void putText(std::string &bytes, const std::string &text) {
    putVarint(bytes, text.size());
    bytes += text;
}

/// Its place as the index has it.
std::string addBlock(std::string &file, const std::string &entries, bool isPacked) {
    std::string block = entries;
    put(block, std::uint32_t{0}); // the one place where a key stands whole
    put(block, std::uint32_t{1});
    const std::string stored = isPacked ? snappyPacked(block) : block;
    std::string place;
    putVarint(place, file.size());
    putVarint(place, stored.size());
    const std::string checked = stored + (isPacked ? '\1' : '\0');
    file += checked;
    put(file, maskedCrc(checked));
    return place;
}

void addEntry(std::string &entries, std::string &before, const std::string &key,
              const std::string &value) {
    const auto same = std::ranges::mismatch(before, key).in1 - before.begin();
    putVarint(entries, static_cast<std::uint64_t>(same));
    putVarint(entries, key.size() - static_cast<std::size_t>(same));
    putVarint(entries, value.size());
    entries += key.substr(static_cast<std::size_t>(same)) + value;
    before = key;
}

} // namespace

std::string levelLog(const std::vector<LevelRow> &rows, std::uint64_t firstSequence) {
    constexpr std::size_t kBlock = 32768;
    constexpr std::size_t kHead = 7;
    std::string batch;
    put(batch, firstSequence);
    put(batch, static_cast<std::uint32_t>(rows.size()));
    for (const LevelRow &row : rows) {
        batch.push_back(row.value ? '\1' : '\0');
        putText(batch, row.key);
        if (row.value)
            putText(batch, *row.value);
    }
    std::string file;
    for (bool isFirst = true; isFirst || !batch.empty(); isFirst = false) {
        const std::string part = batch.substr(0, kBlock - kHead);
        batch.erase(0, part.size());
        const char kind = batch.empty() ? (isFirst ? '\1' : '\4') : (isFirst ? '\2' : '\3');
        put(file, maskedCrc(kind + part));
        put(file, static_cast<std::uint16_t>(part.size()));
        file += kind + part;
    }
    return file;
}

std::string levelTable(const std::vector<LevelRow> &rows, bool isPacked,
                       std::uint64_t firstSequence) {
    constexpr std::size_t kRows = 3;
    std::string file;
    std::string index;
    std::string beforeInIndex;
    for (std::size_t first = 0; first < rows.size(); first += kRows) {
        std::string entries;
        std::string before;
        for (std::size_t i = first; i < std::min(first + kRows, rows.size()); ++i) {
            std::string key = rows[i].key;
            put(key, ((firstSequence + i) << 8U) | (rows[i].value ? 1U : 0U));
            addEntry(entries, before, key, rows[i].value.value_or(""));
        }
        const std::string place = addBlock(file, entries, isPacked);
        addEntry(index, beforeInIndex, before, place);
    }
    std::string foot = addBlock(file, "", false) + addBlock(file, index, false);
    foot.resize(40);
    file += foot;
    put(file, std::uint64_t{0xDB47'7524'8B80'FB57});
    return file;
}

LevelRow scriptRow(int version, int number, const std::string &url) {
    std::string value = "\x08";
    putVarint(value, static_cast<std::uint64_t>(number));
    value += '\x12';
    putText(value, url);
    value += "\x18\x05";
    return {"RES:" + std::to_string(version) + '\0' + std::to_string(number), value};
}

} // namespace nv::test
