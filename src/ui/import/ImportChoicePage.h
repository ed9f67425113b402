#pragma once

#include "import/ImportSettings.h"

#include <QWidget>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace nv {

/// Asks for a folder; nothing when the examiner cancels.
using ChooseFolder = std::function<std::optional<std::filesystem::path>(
    const std::string &title, const std::filesystem::path &start)>;

/// The wizard's first step: where the evidence lies and what is wanted of it.
class ImportChoicePage final : public QWidget {
    Q_OBJECT

  public:
    /// Shows the job's options. `base` is the project's base folder, empty when it has none yet.
    ImportChoicePage(const ImportSettings &job, const std::vector<std::filesystem::path> &places,
                     const std::filesystem::path &base, ChooseFolder chooseFolder);

    /// Copies the options to the job; its starting directory is the first place.
    void applyTo(ImportSettings &job) const;
    /// Folders and files that the import begins at, in their order; none when nothing was entered.
    std::vector<std::filesystem::path> places() const;
    /// Adds those that aren't there yet.
    void addPlaces(const std::vector<std::filesystem::path> &places);
    /// What was dropped and isn't taken, a line each; empty for nothing.
    void tellNotTaken(const QString &text);
    /// Offers to look into the hash sets. `whyNot` says why that can't be; empty where it can.
    /// Where this changes, `wanted` is what the box begins with.
    void offerHashSets(bool wanted, const QString &whyNot);
    bool offersHashSets() const;
    /// Empty when nothing was entered: then the starting folder is the base.
    std::filesystem::path baseFolder() const;

  private:
    /// The list of the places after the first, which is seen while there are some.
    QWidget *newFurther();
    void takeAway();
    void showFurther();
    QWidget *newFolders(const std::filesystem::path &base);
    QLineEdit *addFolderRow(QGridLayout &grid, const QString &label, const char *name,
                            const std::string &dialogTitle);
    QWidget *newKinds(const ImportSettings &job);
    QWidget *newOptions(const ImportSettings &job);
    QCheckBox *newBox(const QString &text, std::string_view name, bool on);
    void tickAllKinds(bool on);

    struct Kind {
        QCheckBox *box;
        const SourceOption *option;
    };
    ChooseFolder m_chooseFolder;
    QLineEdit *m_start = nullptr;
    QWidget *m_furtherArea = nullptr;
    QListWidget *m_further = nullptr;
    QPushButton *m_takeAway = nullptr;
    QLabel *m_notTaken = nullptr;
    QLineEdit *m_base = nullptr;
    QCheckBox *m_recurse = nullptr;
    QCheckBox *m_verify = nullptr;
    QCheckBox *m_metadata = nullptr;
    QCheckBox *m_thumbnails = nullptr;
    QCheckBox *m_classic = nullptr;
    QCheckBox *m_hashSets = nullptr;
    std::vector<Kind> m_kinds;
};

} // namespace nv
