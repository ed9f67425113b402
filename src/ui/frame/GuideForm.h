#pragma once

#include <QDialog>
#include <QString>

#include <filesystem>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;

namespace nv {

class GuidePage;

/// The user's guide, read from the files that come with the program: nothing is fetched. A list of
/// its pages, a box that finds a text in all of them, and the page.
class GuideForm final : public QDialog {
    Q_OBJECT

  public:
    /// `folder` holds the Markdown pages, "index.md" first of all; their links and pictures stay
    /// within its parent.
    explicit GuideForm(const std::filesystem::path &folder, QWidget *parent = nullptr);

    /// A page by its name without extension; an unknown one is the first.
    void showPage(const QString &name);

  private:
    struct Page {
        QString file;
        QString title;
        QString text; ///< as it is shown, without marks
    };

    QWidget *newListSide();
    QWidget *newPageSide();
    void readPages(const QString &folder);
    void listPages();
    void followPage();
    /// Goes on after the place found last, over the pages that are listed.
    void findNext();

    std::vector<Page> m_pages;
    QLineEdit *m_find = nullptr;
    QListWidget *m_list = nullptr;
    QLabel *m_found = nullptr;
    GuidePage *m_page = nullptr;
};

} // namespace nv
