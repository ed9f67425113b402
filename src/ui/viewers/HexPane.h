#pragma once

#include "ui/table/TableTab.h"
#include "ui/viewers/ViewerFrame.h"
#include "views/hex/HexFind.h"

#include <filesystem>

class QComboBox;
class QLineEdit;
class QPushButton;

namespace nv {

class FlowLayout;
class HexGrid;

/// The bytes of the cached content or of the artefact file, with find and go to.
class HexPane final : public ViewerFrame {
    Q_OBJECT

  public:
    /// Searching is a task that can be cancelled. `log` must outlive this.
    HexPane(RunTask runTask, FailureLog &log, QWidget *parent = nullptr);

    /// Throws FileFailure.
    void showFile(const std::filesystem::path &file, std::uint64_t offset);
    /// The file that is shown, for the same record, is read anew: the place in it stays. Throws
    /// FileFailure.
    void showAgain();
    bool isShowing(const std::filesystem::path &file) const;
    /// What is missing: the evidence, whose place the examiner may know, or only bytes in it.
    enum class Missing { content, evidence };
    /// No bytes, but why there are none; the button that asks for the source file stays.
    void showMissing(const QString &reason, Missing missing = Missing::content);
    void clear();
    /// The artefact file is wanted, not the cached content.
    bool wantsSource() const;
    /// As if the examiner had asked for it.
    void askForSource();
    /// Marks bytes of the file that is shown.
    void mark(std::uint64_t offset, std::uint64_t length);

  signals:
    void sourceToggled();
    /// The examiner is about to say where the evidence lies now.
    void evidenceWanted();

  protected:
    void openFind() override;
    void findNext() override;

  private:
    void addFind(FlowLayout &flow);
    void addPlace(FlowLayout &flow);
    std::optional<std::vector<HexNeedle>> needles();
    void goToTyped();
    void showPlace();

    RunTask m_runTask;
    HexGrid *m_grid = nullptr;
    QLineEdit *m_find = nullptr;
    QComboBox *m_kind = nullptr;
    QLineEdit *m_offset = nullptr;
    QPushButton *m_source = nullptr;
    QPushButton *m_evidence = nullptr; ///< there while the evidence is missing
    QLabel *m_place = nullptr;
    std::optional<std::uint64_t> m_matchAt; ///< of the last match in this file
};

} // namespace nv
