#pragma once

#include "db/hashes/HashSetForm.h"

#include <QDialog>

#include <filesystem>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace nv {

/// What a new hash set is made of, how it is called and what it is for.
class HashSetForm final : public QDialog {
    Q_OBJECT

  public:
    explicit HashSetForm(QWidget *parent = nullptr);

    /// The set gets the first one's name while the examiner hasn't given it another.
    void setLists(std::vector<std::filesystem::path> lists);
    const std::vector<std::filesystem::path> &lists() const { return m_lists; }
    std::string name() const;
    HashMeaning meaning() const;

  signals:
    void listsWanted();

  private:
    QWidget *newKinds();
    void showFault();

    std::vector<std::filesystem::path> m_lists;
    QListWidget *m_list = nullptr;
    QLineEdit *m_name = nullptr;
    QRadioButton *m_known = nullptr;
    QRadioButton *m_notable = nullptr;
    QLabel *m_fault = nullptr;
    QPushButton *m_okay = nullptr;
};

} // namespace nv
