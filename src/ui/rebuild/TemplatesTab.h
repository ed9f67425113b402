#pragma once

#include "rebuild/TemplateList.h"

#include <QWidget>

#include <optional>

class QAction;
class QCheckBox;
class QLabel;
class QSplitter;
class QStackedWidget;
class QTableView;

namespace nv {

class BrowserPane;
class TemplateModel;

/// The Templates tab: the list of them, and what can be done with it. It shows and asks for; the
/// work is done by whoever is connected.
class TemplatesTab final : public QWidget {
    Q_OBJECT

  public:
    explicit TemplatesTab(QWidget *parent = nullptr);

    /// The current row and the ticks stay where their files do.
    void setTemplates(std::vector<TemplateRow> rows);
    void select(const std::filesystem::path &file);
    std::optional<std::filesystem::path> current() const;
    /// The tagged templates, or the current one when none is tagged.
    std::vector<std::filesystem::path> chosen() const;
    /// The page of an unpacked template, beside the list.
    void showPreview(const std::filesystem::path &page);
    void closePreview();
    void setMatchByTitle(bool on);

  signals:
    void shown();
    void createWanted();
    void applyWanted();
    void viewWanted();
    void renameWanted();
    void deleteWanted();
    void matchByTitleChosen(bool on);

  protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    QWidget *newBar();
    QWidget *newEmptyPage();
    QTableView *newGrid();
    QAction *newAction(const char *name, const QString &text, const QString &tip,
                       void (TemplatesTab::*wanted)());
    void makeActions();
    bool takeKey(int key);
    void showState();

    TemplateModel *m_model = nullptr;
    QTableView *m_grid = nullptr;
    QStackedWidget *m_pages = nullptr;
    QSplitter *m_splitter = nullptr;
    BrowserPane *m_preview = nullptr; ///< null until the first template is viewed
    QCheckBox *m_matchByTitle = nullptr;
    QLabel *m_count = nullptr;
    QAction *m_create = nullptr;
    QAction *m_apply = nullptr;
    QAction *m_view = nullptr;
    QAction *m_rename = nullptr;
    QAction *m_delete = nullptr;
};

} // namespace nv
