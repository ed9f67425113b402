#pragma once

#include "base/ByteView.h"
#include "readers/Body.h"
#include "readers/Evidence.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nv {

/// What the bytes of a cached file say, gathered in one reading of the file.
struct ContentFacts {
    std::string extension; ///< by signature, lower-case; empty when no signature matches
    bool hasHtml = false;  ///< "<html" anywhere, in either case, and so on for the next
    bool hasBody = false;
    bool hasTable = false;
    bool hasXml = false;
    std::string title; ///< trimmed text between the first "<title>" and "</title>", decoded
};
// What is sought stands in the bytes; in UTF-16, by its mark or the server's word, in the letters.

/// Looks into cached files. The facts of the last file are kept, and its bytes when they are few,
/// so that the steps of one record read its file once between them.
class ContentProbe {
  public:
    /// Of a file of the evidence. Throws EvidenceFailure when it can't be read.
    const ContentFacts &facts(const Evidence &evidence, const std::filesystem::path &file,
                              std::string_view httpHeader = {});
    /// Of one that was fetched into scratch. Throws FileFailure when it can't be read.
    const ContentFacts &scratchFacts(const std::filesystem::path &file,
                                     std::string_view httpHeader = {});
    /// The bytes of the file whose facts were asked for last; nothing when it is a large one.
    std::optional<std::string_view> bytes() const;

    /// For a reader that has the body of the record at hand which it saves next: fetching it would
    /// read the artefact anew. A scratch file of it stays the reader's.
    void hold(Body body) { m_held = std::move(body); }
    const std::optional<Body> &held() const { return m_held; }
    /// To be called when the last file is about to be written anew, or its record is saved.
    void forget();

  private:
    bool isKept(const std::filesystem::path &file, std::string_view httpHeader);
    const ContentFacts &look(const ByteSource &file, std::string_view httpHeader);

    std::filesystem::path m_file;
    std::string_view m_served; ///< UTF-16 by the server's word; mostly empty
    ContentFacts m_facts;
    std::optional<Bytes> m_bytes;
    std::optional<Body> m_held;
};

ContentFacts factsOf(std::string_view bytes, std::string_view httpHeader = {});

/// The title alone, by the same rule; only what stands up to its end is looked at.
std::string titleOf(std::string_view bytes);

/// The extension that a file's first bytes speak for, or empty.
std::string getExtBySignature(ByteView head);

} // namespace nv
