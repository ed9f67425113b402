#include "ui/table/QueryBox.h"

#include <algorithm>

namespace nv {

QueryBox::QueryBox(QWidget *parent) : QComboBox(parent) {
    setObjectName(QStringLiteral("cbActiveQuery"));
    setAccessibleName(tr("Query"));
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(20);
}

void QueryBox::setQueries(const QStringList &names, const QStringList &dead) {
    m_names = names;
    m_dead = dead;
    fill();
}

void QueryBox::listDead(bool listed) {
    if (listed == m_listsDead)
        return;
    m_listsDead = listed;
    fill();
}

bool QueryBox::choose(const QString &name) {
    if (findData(name) < 0 && m_names.contains(name))
        addItem(name, name);
    const int place = findData(name);
    if (place >= 0)
        setCurrentIndex(place);
    return place >= 0;
}

void QueryBox::fill() {
    const QString chosen = query();
    clear();
    for (const QString &name : std::as_const(m_names))
        if (m_listsDead || name == chosen || !m_dead.contains(name))
            addItem(name.isEmpty() ? tr("Default") : name, name);
    setCurrentIndex(std::max(0, findData(chosen)));
    setToolTip(m_listsDead || m_dead.isEmpty()
                   ? QString()
                   : tr("Stored queries that can find nothing are listed in layout Classic (%1)")
                         .arg(m_dead.size()));
}

} // namespace nv
