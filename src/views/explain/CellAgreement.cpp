#include "views/explain/CellAgreement.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "readers/chrome/profile/ValueCipher.h"

#include <fmt/format.h>

#include <cstdlib>

namespace nv {

namespace {

/// 32 bits count of numbers that SQLite has signed.
std::optional<bool> agreesAsNumber(const SourceValue &cell, const KeptValue &kept,
                                   std::string &note) {
    const std::string &value = kept.raw.empty() ? kept.text : kept.raw;
    if (value.empty() || value.find_first_not_of("0123456789-.") != std::string::npos) {
        note = "the number was read again; which words stand for it is in the page of the format";
        return std::nullopt;
    }
    if (!cell.number)
        return cell.text == value;
    return std::to_string(*cell.number) == value ||
           std::to_string(static_cast<std::uint32_t>(*cell.number)) == value;
}

bool agreesAsTruth(const SourceValue &cell, const KeptValue &kept) {
    // Of numbers with a fraction the whole counts.
    const bool isReal = cell.bytes.empty() && std::strtod(cell.text.c_str(), nullptr) != 0;
    const bool isSet =
        isReal || cell.number.value_or(0) != 0 || equalsNoCase(trim(cell.text), "true");
    const bool isKept = kept.text == "yes" || kept.text == "True" || kept.text == "1";
    return isSet == isKept;
}

/// The value is a part of a text that may be coded.
bool agreesAsPart(const std::string &text, const KeptValue &kept) {
    const std::string &value = kept.raw.empty() ? kept.text : kept.raw;
    if (kept.raw.empty() && (kept.text == "yes" || kept.text == "no"))
        return text.find(kept.text == "yes" ? "true" : "false") != std::string::npos;
    return text.find(value) != std::string::npos ||
           percentDecode(text).find(value) != std::string::npos ||
           text.find(replaceAll(value, " ", "=")) != std::string::npos; // "name value"
}

bool agreesAsBytes(SourceForm form, const SourceValue &cell, const KeptValue &kept) {
    const auto tells = [&kept](std::size_t size) {
        return kept.text.find(fmt::format("{} bytes", size)) != std::string::npos;
    };
    const Bytes bytes(cell.bytes.begin(), cell.bytes.end());
    if (form == SourceForm::encryptedBase64)
        return tells(fromBase64(cell.bytes).size());
    if (form == SourceForm::encrypted)
        return tells(cell.bytes.size());
    if (form == SourceForm::decrypted)
        return decryptedByPublicKey(ByteView(bytes)).value_or("").ends_with(kept.text);
    return equalsNoCase(bytesToHex(ByteView(bytes), 0, bytes.size()), kept.text);
}

/// What stands around an address is cut away, and its percent coding undone.
bool agreesAsText(const SourceValue &cell, const KeptValue &kept, std::string &note) {
    const std::string text = replaceAll(cell.text, std::string_view("\0", 1), "\u2400");
    const std::string_view bare =
        std::string_view(text).starts_with('.') ? std::string_view(text).substr(1) : text;
    if (text == kept.text || bare == kept.text || (!kept.raw.empty() && text == kept.raw))
        return true;
    constexpr std::size_t kCompared = 4000; // bytes
    if (percentDecode(text) == kept.text)
        note = "its percent coding undone";
    else if (cell.bytes.size() > text.size() &&
             kept.text.starts_with(std::string_view(text).substr(0, kCompared)))
        note = fmt::format("compared up to its {}th byte", kCompared);
    return !note.empty();
}

} // namespace

std::optional<bool> cellAgrees(SourceForm form, const SourceValue &cell, const KeptValue &kept,
                               std::string &note) {
    switch (form) {
    case SourceForm::number:
        return agreesAsNumber(cell, kept, note);
    case SourceForm::truth:
        return agreesAsTruth(cell, kept);
    case SourceForm::part:
        return agreesAsPart(cell.text, kept);
    case SourceForm::within: {
        const std::string text = cell.number ? std::to_string(*cell.number) : cell.text;
        return kept.text.find(text) != std::string::npos;
    }
    case SourceForm::hex:
    case SourceForm::encrypted:
    case SourceForm::encryptedBase64:
    case SourceForm::decrypted:
        return agreesAsBytes(form, cell, kept);
    case SourceForm::summand:
        note = "one of the numbers that the value is the sum of";
        return std::nullopt;
    default:
        return agreesAsText(cell, kept, note);
    }
}

} // namespace nv
