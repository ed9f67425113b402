#pragma once

#include "app/program/Program.h"
#include "import/ZoneHints.h"

#include <QWidget>

#include <filesystem>
#include <string>
#include <vector>

class QComboBox;
class QLabel;

namespace nv {

/// The part of the wizard that says in which time zone the project shows its times, what that means
/// for local dates, and what the evidence says about it. Of a new project it is asked. Nothing is
/// kept before take().
class ImportZone final : public QWidget {
    Q_OBJECT

  public:
    explicit ImportZone(Program &program);

    /// Looks at the folders that were scanned, and the files that were found there.
    void suggest(const std::vector<std::filesystem::path> &folders);
    /// The open project has the zone from now on. False when the examiner is to choose again.
    bool take();
    /// "Europe/Berlin".
    QString name() const;

  private:
    /// No import has brought rows yet, so that the zone is still to be settled.
    bool isNew() const;
    void tellHints(const std::vector<ZoneHint> &hints);
    void offerZones(const std::vector<ZoneHint> &hints);
    void offer(const QString &text, const std::string &key);
    void choose();
    void chooseOffered();
    void showZone();

    Program &m_program;
    QLabel *m_question;
    QComboBox *m_offered;
    QLabel *m_zone;
    QLabel *m_meaning;
    QLabel *m_hint;
    std::string m_key;        ///< empty until the first scan
    bool m_isChosen = false;  ///< by the examiner
    bool m_isOffered = false; ///< before the first import; else that in force stays
};

} // namespace nv
