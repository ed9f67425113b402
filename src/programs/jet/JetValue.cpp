// LongText = length:u32@0 reference:u32@4 unused:u32@8 text@12     numbers little-endian
// The two highest bits of the length say where the text is:
//   0x80000000  here, at 12
//   0x40000000  in the row that the reference leads to
//   neither     in a chain of rows, each next:u32 text@4; the last has the reference 0

#include "programs/jet/JetValue.h"

#include "base/Text.h"
#include "programs/jet/JetText.h"

#include <algorithm>
#include <bit>

namespace nv::jet {

namespace {

constexpr std::uint32_t kHere = 0x80000000;
constexpr std::uint32_t kOneRow = 0x40000000;
constexpr std::uint64_t kHeaderBytes = 12;

/// Headers and addresses take a few KB; more than this is built to fill the memory.
constexpr std::uint64_t kLongestText = std::uint64_t{1} << 20;
/// Each link of a chain fills most of a page, so that the longest text needs a few hundred.
constexpr int kLinks = 1024;

struct Stored {
    Bytes bytes;
    bool isCut = false;
};

void append(Bytes &bytes, ByteView more, std::uint64_t wanted) {
    const std::uint64_t left = wanted - std::min<std::uint64_t>(wanted, bytes.size());
    const std::string_view part = more.raw().substr(0, left);
    bytes.insert(bytes.end(), part.begin(), part.end());
}

void appendChain(const JetFile &file, std::uint32_t reference, std::uint64_t wanted, Bytes &bytes) {
    for (int link = 0; link < kLinks && reference != 0 && bytes.size() < wanted; ++link) {
        const auto row = file.target(reference);
        if (!row || row->size() < 4)
            return;
        reference = row->u32le(0);
        append(bytes, row->from(4), wanted);
    }
}

Stored longText(const JetFile &file, ByteView field) {
    Stored result;
    if (!field.has(0, kHeaderBytes)) {
        result.isCut = true;
        return result;
    }
    const std::uint32_t header = field.u32le(0);
    const std::uint64_t length = header & ~(kHere | kOneRow);
    const std::uint64_t wanted = std::min(length, kLongestText);
    const std::uint32_t reference = field.u32le(4);
    if ((header & kHere) != 0) {
        append(result.bytes, field.from(kHeaderBytes), wanted);
    } else if ((header & kOneRow) != 0) {
        if (const auto row = file.target(reference))
            append(result.bytes, *row, wanted);
    } else {
        appendChain(file, reference, wanted, result.bytes);
    }
    result.isCut = result.bytes.size() < length;
    return result;
}

std::string textOf(const JetFile &file, ByteView stored) {
    return file.hasUnicode() ? fromUnicode(stored) : fromAnsi(stored);
}

/// Currency counts ten-thousandths.
constexpr double kMoneyUnits = 10000;

Value numberOf(int type, ByteView bytes) {
    switch (type) {
    case MDB_BYTE:
        return {bytes.u8(0)};
    case MDB_INT:
        return {std::bit_cast<std::int16_t>(bytes.u16le(0))};
    case MDB_LONGINT:
        return {bytes.i32le(0)};
    case MDB_FLOAT:
        return {std::bit_cast<float>(bytes.u32le(0))};
    case MDB_MONEY:
        return {static_cast<double>(std::bit_cast<std::int64_t>(bytes.u64le(0))) / kMoneyUnits};
    default:
        return {std::bit_cast<double>(bytes.u64le(0))};
    }
}

std::uint64_t widthOf(int type) {
    switch (type) {
    case MDB_BYTE:
        return 1;
    case MDB_INT:
        return 2;
    case MDB_LONGINT:
    case MDB_FLOAT:
        return 4;
    default:
        return 8;
    }
}

} // namespace

std::string_view kindOf(int type) {
    switch (type) {
    case MDB_BOOL:
        return "bool";
    case MDB_BYTE:
    case MDB_INT:
    case MDB_LONGINT:
    case MDB_MONEY:
    case MDB_FLOAT:
    case MDB_DOUBLE:
        return "number";
    case MDB_DATETIME:
        return "date";
    case MDB_TEXT:
    case MDB_MEMO:
        return "text";
    default:
        return {};
    }
}

Value valueOf(const JetFile &file, int type, const Field &field) {
    const std::string_view kind = kindOf(type);
    if (kind == "bool") // kept where other types say whether they are null
        return {!field.isNull};
    if (field.isNull || kind.empty())
        return {};
    if (type == MDB_TEXT)
        return {textOf(file, field.bytes)};
    if (type == MDB_MEMO) {
        const Stored stored = longText(file, field.bytes);
        return {textOf(file, ByteView(stored.bytes)), stored.isCut};
    }
    if (!field.bytes.has(0, widthOf(type)))
        return {nullptr, true};
    return numberOf(type, field.bytes);
}

} // namespace nv::jet
