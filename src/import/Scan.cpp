#include "import/Scan.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/SideFiles.h"
#include "import/ArtefactHash.h"
#include "import/FolderList.h"
#include "import/FormatNames.h"
#include "readers/BrowserOf.h"
#include "readers/FileForm.h"
#include "readers/Limits.h"
#include "readers/PathOrigin.h"
#include "readers/ProfileFolder.h"
#include "readers/Registry.h"
#include "readers/sqlite/LoneLog.h"
#include "readers/sqlite/SchemaTables.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "ImportForm.NextBtn_Click()";

HistoryFile describe(const fs::path &file, const Reader &reader) {
    HistoryFile artefact;
    artefact.fullPath = file;
    artefact.fileName = textOf(file.filename());
    artefact.fileExt = getFileExtension(textOf(file));
    artefact.fileParentPath = textOf(file.parent_path());
    artefact.historyFileType = reader.type;
    artefact.version = reader.version;
    return artefact;
}

/// Reading a pipe or a device could wait for ever.
[[noreturn]] void refuseSpecial(const fs::path &file) {
    throw std::runtime_error(fmt::format("\"{}\" is no plain file and no folder", textOf(file)));
}

class Scan {
  public:
    Scan(const ImportSettings &job, TaskMonitor &task, FailureLog &log, EvidenceWatch *watch,
         Formats formats)
        : m_job(job), m_names(job, formats), m_task(task), m_log(log), m_evidence({}, watch) {}

    ScanResult run(const std::vector<fs::path> &places) {
        prepare(places);
        for (std::size_t i = 0; i < places.size() && !m_result.cancelled; ++i) {
            m_from = static_cast<double>(i) / static_cast<double>(places.size());
            scanPlace(m_result.places[i]);
        }
        tellUnlisted();
        return std::move(m_result);
    }

    ScanResult takeAs(const Reader &reader, const fs::path &file) {
        const fs::path whole = fs::absolute(file).lexically_normal();
        attempt(whole, [&] { list(describe(whole, reader), 0); });
        return std::move(m_result);
    }

  private:
    /// Paths go into the project: they must not hang on the folder that the program runs in.
    void prepare(const std::vector<fs::path> &places) {
        m_share = 1 / static_cast<double>(std::max<std::size_t>(places.size(), 1));
        m_result.places.reserve(places.size());
        std::set<fs::path> above;
        for (const fs::path &place : places) {
            ScannedPlace &each = m_result.places.emplace_back();
            each.path = fs::absolute(place).lexically_normal();
            if (!each.path.has_filename()) // "/evidence/" lies in "/evidence"
                each.path = each.path.parent_path();
            const PlaceKind kind = m_evidence.kindOf(each.path);
            each.isFile = kind == PlaceKind::file;
            if (kind == PlaceKind::folder)
                above.insert(each.path);
        }
        for (ScannedPlace &place : m_result.places)
            place.isWithinAnother = m_job.recurseSubfolders && hasFolderOf(above, place.path);
    }

    static bool hasFolderOf(const std::set<fs::path> &folders, fs::path path) {
        while (path.has_relative_path()) {
            path = path.parent_path();
            if (folders.contains(path))
                return true;
        }
        return false;
    }

    /// A file that was named is tried for all formats, even when its folder was looked through.
    void scanPlace(ScannedPlace &place) {
        if (place.isWithinAnother && !place.isFile)
            return;
        const std::size_t before = m_result.historyFiles.count() + m_result.notAsked + m_doubles;
        const std::size_t gaps = m_result.gaps.unreadable.size();
        scanFrom(place.path);
        place.artefacts = m_result.historyFiles.count() + m_result.notAsked + m_doubles - before;
        place.unreadable = m_result.gaps.unreadable.size() - gaps;
    }

    void scanFrom(const fs::path &start) {
        const PlaceKind kind = m_evidence.kindOf(start);
        if (kind == PlaceKind::file) {
            tryFile(start, Asked::byName, 0);
            tryLog(start, Asked::byName);
        } else if (kind == PlaceKind::special)
            attempt(start, [&] { refuseSpecial(start); });
        else
            scanFolders(start);
    }

    /// Folders in which recognition couldn't look for what lies beside a file: for want of it the
    /// file was taken for none of its format.
    void tellUnlisted() {
        for (const UnreadPlace &folder : m_evidence.unlisted())
            noteUnread(folder);
    }

    void scanFolders(const fs::path &start) {
        const auto depth = m_job.recurseSubfolders ? Depth::allBelow : Depth::thisFolder;
        SubTask task(m_task, m_from, m_from + m_share);
        const auto folders = getFolderList(m_evidence, start, depth, task, m_log, m_result.gaps);
        const auto count = static_cast<double>(folders.size());
        for (std::size_t i = 0; i < folders.size() && goOn(static_cast<double>(i) / count); ++i) {
            showFolder(folders[i], i + 1, folders.size());
            attempt(folders[i], [&] { scanFolder(folders[i], static_cast<double>(i) / count); });
        }
        goOn(1); // a cancel while the folders were listed leaves nothing to loop over
    }

    void scanFolder(const fs::path &folder, double fraction) {
        const FolderContents contents = m_evidence.contentsOf(folder);
        m_result.gaps.linksNotFollowed += contents.links.size();
        for (const fs::path &link : contents.links)
            attempt(link, [&] { refuseLink(link); });
        for (const fs::path &special : contents.specials)
            attempt(special, [&] {
                if (isNamedAsFile(special))
                    refuseSpecial(special);
            });
        m_seen += contents.files.size();
        for (const UnreadPlace &place : contents.unreadable)
            noteUnread(place);
        for (const fs::path &file : contents.files) {
            if (m_names.matches(textOf(file.filename())) && goOn(fraction))
                tryFile(file, Asked::byFolder, fraction);
            tryLog(file, Asked::byFolder);
        }
    }

    /// Browsers make links of their own, which hold their locks. One in the place of an artefact or
    /// of a browser's folder was made by somebody else, and what it leads to isn't read.
    void refuseLink(const fs::path &link) {
        if (holdsPlaceOfFile(link) || holdsPlaceOfFolder(link))
            throw std::runtime_error(
                fmt::format("\"{}\" is a link to \"{}\", which isn't followed: a file or folder of "
                            "a browser was expected",
                            textOf(link), m_evidence.linkText(link)));
    }

    bool holdsPlaceOfFile(const fs::path &link) const {
        return hasName(link, [](const Candidate &file, const Reader &reader) {
            return liesInProfile(file, engineOf(&reader));
        });
    }

    /// Pipes and devices of such a name are nothing that anybody has beside a browser.
    bool isNamedAsFile(const fs::path &special) const {
        return hasName(special, [](const Candidate &, const Reader &) { return true; });
    }

    /// Whether the name is that of a browser's file, or of one beside it, whose place `fits`.
    template <class Fits>
    bool hasName(const fs::path &place, const Fits &fits) const {
        std::string file = textOf(place);
        for (const std::string_view side : kRowSuffixes)
            if (file.ends_with(side))
                file.resize(file.size() - side.size());
        const Candidate candidate = candidateOf(file, m_evidence);
        const auto formats = m_names.formatsFor(textOf(candidate.file.filename()));
        return std::ranges::any_of(formats, [&](const Reader *reader) {
            return !reader->isOneRecord && isWantedByName(*reader, candidate) &&
                   fits(candidate, *reader);
        });
    }

    /// The names of the folders alone tell, since nothing is looked at behind the link.
    bool holdsPlaceOfFolder(const fs::path &link) const {
        return m_evidence.kindOf(link) == PlaceKind::folder &&
               !originOfPath(textOf(link / "any"), Engine::unknown).browser.empty();
    }

    /// Whether the examiner named the file itself.
    enum class Asked { byName, byFolder };

    void tryFile(const fs::path &file, Asked asked, double fraction) {
        if (!isNoted(file)) // as one of a folder's files
            attempt(file, [&] { takeFile(file, asked, fraction); });
    }

    /// The log of a database is read with it; one without it would be passed over unseen.
    void tryLog(const fs::path &file, Asked asked) {
        if (const auto database = databaseOfLog(file); database && !isNoted(file))
            attempt(file, [&] { refuseLoneLog(file, candidateOf(*database, m_evidence), asked); });
    }

    void refuseLoneLog(const fs::path &log, const Candidate &database, Asked asked) const {
        const std::string name = textOf(database.file.filename());
        if (m_evidence.find(database.file.parent_path(), name))
            return;
        for (const Reader *reader : m_names.formatsFor(name))
            if (!reader->isOneRecord && isWantedByName(*reader, database))
                if (const auto reason = loneLogText(log, database, *reader, asked == Asked::byName);
                    !reason.empty())
                    throw std::runtime_error(reason);
    }

    void takeFile(const fs::path &file, Asked asked, double fraction) {
        Candidate candidate = candidateOf(file, m_evidence);
        candidate.verifySignatures = m_job.verifyFileSignatures;
        candidate.unread = &m_result.gaps.unreadable;
        const auto formats =
            asked == Asked::byName ? m_names.all() : m_names.formatsFor(textOf(file.filename()));
        if (isListedAlready(candidate, formats))
            return;
        Bytes head;
        if (candidate.verifySignatures)
            head = m_evidence.head(file, limits::kHeadBytes);
        candidate.head = ByteView(head);
        const auto takers = readersTaking(candidate, formats);
        if (takers.empty() && candidate.verifySignatures)
            refuseDamaged(candidate, formats, asked);
        for (const Reader *reader : takers)
            if (isAskedFor(*reader))
                take(*reader, candidate, asked, fraction);
    }

    /// What is damaged where a browser's file is known by its bytes is taken for none of a browser,
    /// although it is one: by its name it would be.
    void refuseDamaged(const Candidate &candidate, const std::vector<const Reader *> &formats,
                       Asked asked) const {
        const std::string damage = schemaDamage(candidate);
        for (const Reader *reader : formats) {
            if (!isWantedByName(*reader, candidate))
                continue;
            const std::string reason =
                damage.empty() ? damageOfNamed(candidate, *reader, asked == Asked::byName) : damage;
            if (!reason.empty())
                throw std::runtime_error(reason);
        }
    }

    bool isWantedByName(const Reader &reader, Candidate candidate) const {
        candidate.head = {};
        candidate.verifySignatures = false;
        return reader.recognises && reader.recognises(candidate) && isAskedFor(reader) &&
               m_job.asked.wants(reader);
    }

    /// Whatever it is found to be, it leads to an artefact that another file has led to: one of the
    /// ten thousand files of a cache.
    bool isListedAlready(const Candidate &candidate,
                         const std::vector<const Reader *> &formats) const {
        return !formats.empty() && std::ranges::all_of(formats, [&](const Reader *reader) {
            return reader->artefact && m_led.contains({reader, artefactOf(*reader, candidate)});
        });
    }

    bool isAskedFor(const Reader &reader) const {
        return reader.option && wants(m_job, *reader.option) && goesByRulesOf(m_job, reader);
    }

    void take(const Reader &reader, const Candidate &candidate, Asked asked, double fraction) {
        if (asked == Asked::byFolder && holdsShaders(reader, candidate))
            ++m_result.gaps.shaderCaches;
        else if (const fs::path path = artefactOf(reader, candidate);
                 path == candidate.file || m_led.emplace(&reader, path).second)
            listAskedFor(reader, path, fraction);
    }

    void listAskedFor(const Reader &reader, const fs::path &path, double fraction) {
        if (m_job.asked.wants(reader))
            list(describe(path, reader), fraction);
        else
            ++m_result.notAsked;
    }

    void list(HistoryFile artefact, double fraction) {
        if (m_result.places.size() > 1 &&
            !m_listed.emplace(artefact.historyFileType, artefact.fullPath).second) {
            ++m_doubles;
            return;
        }
        std::vector<UnreadPlace> unread;
        const auto hashes = hashesOfArtefact(
            m_evidence, artefact.fullPath, [&](std::uint64_t) { return goOn(fraction); }, &unread);
        for (const UnreadPlace &place : unread)
            noteUnread(place);
        if (!hashes)
            return; // cancelled: without its hash it can't be told from another file
        artefact.fileSize = hashes->size;
        artefact.md5Hash = hashes->md5;
        artefact.sha256Hash = hashes->sha256;
        m_result.historyFiles.add(std::move(artefact));
    }

    void noteUnread(const UnreadPlace &place) {
        if (!isNoted(place.path))
            attempt(place.path, [&] { throw std::runtime_error(place.reason); });
    }

    bool isNoted(const fs::path &path) const {
        return std::ranges::find(m_result.gaps.unreadable, path, &UnreadPlace::path) !=
               m_result.gaps.unreadable.end();
    }

    /// A folder or file that can't be read is logged and noted, and the scan goes on.
    template <class Body>
    void attempt(const fs::path &path, Body &&body) {
        if (const auto failure = failureOf(m_log, kProcedure, std::forward<Body>(body)))
            m_result.gaps.unreadable.push_back({path, *failure});
    }

    bool goOn(double fraction) {
        m_result.cancelled = m_result.cancelled || !m_task.advance(m_from + (fraction * m_share));
        return !m_result.cancelled;
    }

    void showFolder(const fs::path &folder, std::size_t number, std::size_t count) {
        if (!m_task.wantsStep())
            return;
        TaskStep step;
        step.topMessage = fmt::format("Scanning folder {} of {}", number, count);
        step.topCounter = static_cast<std::int64_t>(number);
        step.topTotal = static_cast<std::int64_t>(count);
        step.bottomMessage = textOf(folder);
        step.bottomCounter = static_cast<std::int64_t>(m_seen);
        m_task.show(step);
    }

    const ImportSettings &m_job;
    const FormatNames m_names;
    /// What files led to that are not artefacts themselves: many files of a folder lead to it.
    std::set<std::pair<const Reader *, fs::path>> m_led;
    std::set<std::pair<HistoryFileType, fs::path>> m_listed; ///< where there are several places
    std::size_t m_doubles = 0;                               ///< what was listed before
    std::size_t m_seen = 0;                                  ///< files of the folders so far
    double m_from = 0;  ///< where the place's part of the progress begins, 0 to 1
    double m_share = 1; ///< and how much it is
    TaskMonitor &m_task;
    FailureLog &m_log;
    const Evidence m_evidence;
    ScanResult m_result;
};

} // namespace

ScanResult scan(const ImportSettings &job, TaskMonitor &task, FailureLog &log, EvidenceWatch *watch,
                Formats formats) {
    return Scan(job, task, log, watch, formats).run({job.startingDirectory});
}

ScanResult scanPlaces(const ImportSettings &job, const std::vector<fs::path> &places,
                      TaskMonitor &task, FailureLog &log) {
    return Scan(job, task, log, nullptr, registry()).run(places);
}

ScanResult listAs(const Reader &reader, const fs::path &file, TaskMonitor &task, FailureLog &log) {
    const ImportSettings job;
    return Scan(job, task, log, nullptr, registry()).takeAs(reader, file);
}

} // namespace nv
