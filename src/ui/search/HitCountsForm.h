#pragma once

#include "search/Search.h"

#include <QDialog>

#include <optional>
#include <string>

class QLineEdit;
class QTreeWidget;

namespace nv {

/// All names that a search has found rows of, with their numbers; one of them is chosen.
class HitCountsForm final : public QDialog {
    Q_OBJECT

  public:
    HitCountsForm(const QString &title, const NamedCounts &counts, QWidget *parent = nullptr);

    /// The one that is chosen; nothing while none is.
    std::optional<std::string> chosen() const;

  private:
    void showWith(const QString &part);

    QTreeWidget *m_list = nullptr;
    QLineEdit *m_part = nullptr;
};

} // namespace nv
