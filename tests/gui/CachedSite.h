#pragma once

#include "base/Files.h"
#include "gui/Desk.h"

#include <string>

namespace nv::test {

/// A cache of web pages, as files of Internet Explorer's.
class CachedSite {
  public:
    explicit CachedSite(const fs::path &folder) : m_folder(folder) { m_index.folder("ABCDEFGH"); }

    /// Records get their ids in the order of these calls, from 1.
    CachedSite &add(const std::string &url, const std::string &name, const std::string &content) {
        fs::create_directories(m_folder / "ABCDEFGH");
        writeWhole(m_folder / "ABCDEFGH" / name, content);
        m_index.add({.url = url,
                     .secondDate = fileTime(2011, 3, 1, 12),
                     .fileSize = static_cast<std::uint32_t>(content.size()),
                     .folder = 0,
                     .fileName = name});
        return *this;
    }
    /// Makes the project "case.nvp" of it.
    void open(Desk &desk, MainForm &form) {
        writeWhole(m_folder / "index.dat", m_index.bytes());
        desk.dialogs.answer = desk.folder.path() / "case.nvp";
        trigger(form, "actNew");
        Program &program = desk.program;
        setRootPath(program, m_folder);
        program.import.startingDirectory = (m_folder / "index.dat").string();
        Unwatched nobody;
        program.import.historyFiles = scan(program.import, nobody, program.log).historyFiles;
        static_cast<void>(runImportJob(program, nobody, program.state.tempFolderPath));
        trigger(form, "actRefresh");
    }

  private:
    fs::path m_folder;
    IndexDat m_index;
};

} // namespace nv::test
