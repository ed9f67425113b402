#pragma once

#include "base/ByteView.h"

#include <filesystem>
#include <string>

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

/// Looks into cached files. The facts of the last file are kept, so that the steps of one record
/// read its file once between them.
class ContentProbe {
  public:
    /// Throws FileFailure when the file can't be read.
    const ContentFacts &facts(const std::filesystem::path &file);
    /// To be called when the last file is about to be written anew.
    void forget() { m_file.clear(); }

  private:
    std::filesystem::path m_file;
    ContentFacts m_facts;
};

/// The extension that a file's first bytes speak for, or empty.
std::string GetExtBySignature(ByteView head);

} // namespace nv
