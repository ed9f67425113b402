#pragma once

#include <QComboBox>

namespace nv {

/// The stored queries above the table. Those that can find nothing are only listed where somebody
/// works as in the first version, or where one of them is what the table runs.
class QueryBox final : public QComboBox {
    Q_OBJECT

  public:
    explicit QueryBox(QWidget *parent = nullptr);

    /// An empty name is the default query.
    void setQueries(const QStringList &names, const QStringList &dead);
    void listDead(bool listed);
    QString query() const { return currentData().toString(); }
    /// False for a name that isn't among the queries.
    bool choose(const QString &name);

  private:
    void fill();

    QStringList m_names;
    QStringList m_dead;
    bool m_listsDead = false;
};

} // namespace nv
