#include "db/hashes/HashSetForm.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <charconv>

namespace nv {

namespace {

/// A line of its own, whatever stands in it.
std::string inLine(std::string_view text) {
    std::string line(text);
    for (char &c : line)
        if (static_cast<unsigned char>(c) < ' ')
            c = ' ';
    return line;
}

std::uint64_t numberIn(std::string_view text) {
    std::uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

void take(HashSetFacts &facts, std::string_view key, std::string_view value) {
    if (key == "name")
        facts.name = value;
    else if (key == "meaning")
        facts.meaning =
            value == wordOf(HashMeaning::notable) ? HashMeaning::notable : HashMeaning::known;
    else if (key == "added")
        facts.added = value;
    else if (key == "list")
        facts.sources.push_back({std::string(value), 0, {}, {}, 0});
    if (facts.sources.empty())
        return;
    HashListSource &source = facts.sources.back();
    if (key == "size")
        source.size = numberIn(value);
    else if (key == "md5")
        source.md5 = value;
    else if (key == "sha256")
        source.sha256 = value;
    else if (key == "without_hash")
        source.withoutHash = numberIn(value);
}

} // namespace

std::string_view wordOf(HashMeaning meaning) {
    return meaning == HashMeaning::known ? "known" : "notable";
}

std::string textOf(const HashSetFacts &facts) {
    std::string text = fmt::format("name={}\nmeaning={}\nadded={}\n", inLine(facts.name),
                                   wordOf(facts.meaning), facts.added);
    for (const HashListSource &source : facts.sources)
        text += fmt::format("list={}\nsize={}\nmd5={}\nsha256={}\nwithout_hash={}\n",
                            inLine(source.file), source.size, source.md5, source.sha256,
                            source.withoutHash);
    return text;
}

HashSetFacts hashSetFacts(std::string_view text) {
    HashSetFacts facts;
    for (const std::string_view line : split(text, '\n'))
        if (const std::size_t sign = line.find('='); sign != std::string_view::npos)
            take(facts, line.substr(0, sign), line.substr(sign + 1));
    return facts;
}

void appendNumber(std::string &bytes, std::uint64_t number) {
    for (std::size_t byte = 0; byte < sizeof(number); ++byte, number >>= 8)
        bytes.push_back(static_cast<char>(number & 0xFF));
}

std::string bytesOf(const HashSetTail &tail) {
    std::string bytes;
    for (const HashSection &section : tail.sections)
        for (const std::uint64_t number : {section.offset, section.count, section.index})
            appendNumber(bytes, number);
    appendNumber(bytes, tail.text);
    appendNumber(bytes, tail.textBytes);
    bytes += kHashSetEnd;
    return bytes;
}

HashSetTail tailIn(ByteView bytes) {
    HashSetTail tail;
    std::uint64_t at = 0;
    const auto next = [&] {
        const std::uint64_t number = bytes.u64le(at);
        at += sizeof(number);
        return number;
    };
    for (HashSection &section : tail.sections) {
        section.offset = next();
        section.count = next();
        section.index = next();
    }
    tail.text = next();
    tail.textBytes = next();
    return tail;
}

} // namespace nv
