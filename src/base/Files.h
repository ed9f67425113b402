#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace nv {

/// A file that could not be opened, read or copied; the message names it and says why.
class FileFailure : public std::runtime_error {
  public:
    FileFailure(std::string_view what, const std::filesystem::path &path, int errorNumber);
};

/// The project can't be written any more, for instance on a full disk. This is no bad record: it
/// passes through every trap and ends the task.
class StorageFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Evidence is only ever opened for reading.

/// The first `count` bytes, fewer when the file is shorter. Throws FileFailure.
Bytes readHead(const std::filesystem::path &path, std::size_t count);
/// The whole file. Throws FileFailure.
Bytes readWhole(const std::filesystem::path &path);
/// Hands the file on in blocks with the count of bytes read so far, until `take` says false.
/// True when the whole file was read. Throws FileFailure.
bool readInBlocks(const std::filesystem::path &path,
                  const std::function<bool(std::string_view block, std::uint64_t readSoFar)> &take);
/// Copies `from` over `to`; the copy is the owner's to write. Throws FileFailure.
void copyToScratch(const std::filesystem::path &from, const std::filesystem::path &to);
void writeWhole(const std::filesystem::path &path, std::string_view bytes);

/// A path as UTF-8 text. Names that are no valid UTF-8 are shown as Windows-1252; use the path
/// itself, not this text, to open the file.
std::string textOf(const std::filesystem::path &path);

} // namespace nv
