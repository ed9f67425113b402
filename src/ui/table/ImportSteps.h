#pragma once

#include <QObject>

#include <filesystem>
#include <vector>

namespace nv {

/// How far the way from evidence to rows is gone: what the pages with the three steps show, and
/// what they ask for. Whoever imports keeps it true.
class ImportSteps final : public QObject {
    Q_OBJECT

  public:
    const std::vector<std::filesystem::path> &places() const { return m_places; }
    /// What the check of them found, in words; empty before it.
    const QString &checkedText() const { return m_checked; }
    /// Something was found and is chosen.
    bool isReady() const { return m_isReady; }

    /// Another choice has to be checked anew.
    void setPlaces(std::vector<std::filesystem::path> places);
    void setChecked(const QString &text, bool isReady);

  signals:
    void changed();
    void folderWanted();
    void filesWanted();
    void clearingWanted();
    void checkWanted();
    void importWanted();

  private:
    std::vector<std::filesystem::path> m_places;
    QString m_checked;
    bool m_isReady = false;
};

} // namespace nv
