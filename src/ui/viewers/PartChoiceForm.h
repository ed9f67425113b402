#pragma once

#include "db/schema/Ids.h"

#include <QDialog>

#include <functional>
#include <optional>
#include <string>

class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace nv {

struct PartQuestion;

/// Asks which cached record stands for a reference of a page. It only asks.
class PartChoiceForm final : public QDialog {
    Q_OBJECT

  public:
    /// Why a record can't stand there; empty when it can.
    using Check = std::function<std::string(UrlId)>;

    PartChoiceForm(const PartQuestion &question, Check whyNot, QWidget *parent = nullptr);

    /// A record, `none` for an empty place, nothing when the program is to decide.
    std::optional<UrlId> answer() const;

    void accept() override;

  private:
    void fill(const PartQuestion &question);
    QTreeWidgetItem *addRow(const QStringList &cells);
    QWidget *newOther();
    /// A record that none of the rules has found is typed.
    bool isOtherTyped() const;

    Check m_whyNot;
    QTreeWidget *m_list = nullptr;
    QTreeWidgetItem *m_automatic = nullptr;
    QTreeWidgetItem *m_nothing = nullptr;
    QLineEdit *m_other = nullptr;
    QLabel *m_problem = nullptr;
};

} // namespace nv
