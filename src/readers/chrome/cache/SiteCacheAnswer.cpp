#include "readers/chrome/cache/SiteCacheAnswer.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <functional>

namespace nv {

namespace {

/// A field of a message: a number or bytes.
struct Field {
    std::uint64_t id = 0;
    std::uint64_t number = 0;
    ByteView bytes;
    std::uint64_t numberAt = 0;   ///< in the whole message
    std::uint64_t numberSize = 0; ///< bytes

    std::string text() const { return decodeText(bytes.raw()); }
    std::int64_t time() const { return static_cast<std::int64_t>(number); }
};

std::optional<std::uint64_t> varint(ByteView bytes, std::uint64_t &at) {
    constexpr int kMostBits = 64;
    std::uint64_t number = 0;
    for (int shift = 0; shift < kMostBits && bytes.has(at, 1); shift += 7) {
        const std::uint8_t byte = bytes.u8(at++);
        number |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80)
            return number;
    }
    return std::nullopt;
}

/// The field at `at`, which then is behind it; nothing when it isn't whole.
std::optional<Field> fieldAt(ByteView message, std::uint64_t &at) {
    enum Kind : std::uint64_t { kVarint = 0, kEight = 1, kBytes = 2, kFour = 5 };
    const auto tag = varint(message, at);
    if (!tag)
        return std::nullopt;
    Field field;
    field.id = *tag >> 3;
    field.numberAt = message.place() + at;
    std::optional<std::uint64_t> length;
    switch (*tag & 7) {
    case kVarint:
        if (const auto number = varint(message, at)) {
            field.number = *number;
            field.numberSize = message.place() + at - field.numberAt;
            return field;
        }
        return std::nullopt;
    case kEight:
        length = 8;
        break;
    case kFour:
        length = 4;
        break;
    case kBytes:
        length = varint(message, at);
        break;
    default:
        break;
    }
    if (!length || !message.has(at, *length))
        return std::nullopt;
    field.bytes = message.sub(at, *length);
    at += *length;
    return field;
}

/// False when the message isn't whole.
bool eachField(ByteView message, const std::function<void(const Field &)> &take) {
    std::uint64_t at = 0;
    while (at < message.size()) {
        const auto field = fieldAt(message, at);
        if (!field)
            return false;
        take(*field);
    }
    return true;
}

bool addHeader(ByteView message, std::string &lines) {
    std::string name;
    std::string value;
    const bool isWhole = eachField(message, [&](const Field &field) {
        if (field.id == 1)
            name = field.text();
        else if (field.id == 2)
            value = field.text();
    });
    lines += fmt::format("{}: {}\r\n", name, value);
    return isWhole;
}

bool readRequest(ByteView message, ChromeSiteAnswer &answer) {
    return eachField(message, [&](const Field &field) {
        if (field.id == 1)
            answer.method = field.text();
    });
}

bool readResponse(ByteView message, ChromeSiteAnswer &answer) {
    enum Id : std::uint64_t { kStatus = 1, kText = 2, kHeader = 4, kAnswered = 6, kType = 13 };
    std::uint64_t status = 0;
    std::string text;
    bool isWhole = true;
    isWhole &= eachField(message, [&](const Field &field) {
        if (field.id == kStatus)
            status = field.number;
        else if (field.id == kText)
            text = field.text();
        else if (field.id == kHeader)
            isWhole &= addHeader(field.bytes, answer.headers);
        else if (field.id == kAnswered) {
            answer.answered = field.time();
            answer.answeredAt = field.numberAt;
            answer.answeredSize = field.numberSize;
        } else if (field.id == kType)
            answer.mimeType = toLower(field.text());
    });
    answer.statusLine = status == 0 ? "" : std::string(trim(fmt::format("{} {}", status, text)));
    return isWhole;
}

} // namespace

std::optional<ChromeSiteAnswer> chromeSiteAnswerOf(ByteView message) {
    enum Id : std::uint64_t { kRequest = 1, kResponse = 2, kStored = 3 };
    ChromeSiteAnswer answer;
    bool isRead = true;
    const bool isWhole = eachField(message, [&](const Field &field) {
        if (field.id == kRequest)
            isRead &= readRequest(field.bytes, answer);
        else if (field.id == kResponse)
            isRead &= readResponse(field.bytes, answer);
        else if (field.id == kStored) {
            answer.stored = field.time();
            answer.storedAt = field.numberAt;
            answer.storedSize = field.numberSize;
        }
    });
    const bool isAnswer = isWhole && isRead && !answer.method.empty();
    return isAnswer ? std::optional(answer) : std::nullopt;
}

} // namespace nv
