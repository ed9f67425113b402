#pragma once

#include "app/program/Program.h"

#include <QDialog>

#include <string>

class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace nv {

/// Chooses a time zone: exact ones first, classic ones after them, and a box that searches both.
/// It only asks; changeZone() does the rest.
class ZoneForm final : public QDialog {
    Q_OBJECT

  public:
    /// `key` is the one that is selected first: see app/program/Zones.h.
    ZoneForm(Program &program, const std::string &key, QWidget *parent = nullptr);

    /// Of the zone that is selected; empty when none is.
    std::string key() const;

  private:
    void addExact(Program &program);
    void addClassic(Program &program);
    QListWidgetItem *addHeading(const QString &text);
    void addZone(const QString &text, const std::string &key);
    void select(const std::string &key);
    void search(const QString &text);
    void showChoice();

    QLineEdit *m_search = nullptr;
    QListWidget *m_list = nullptr;
    QListWidgetItem *m_nothing = nullptr; ///< says that nothing was found
    QPushButton *m_okay = nullptr;
};

/// What windows call a zone: "Europe/Berlin", or "(UTC+01:00) Amsterdam, Berlin, ...".
QString zoneName(Program &program, const std::string &key);

} // namespace nv
