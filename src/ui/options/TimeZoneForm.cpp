#include "ui/options/TimeZoneForm.h"

#include "platform/qt/QtText.h"
#include "ui/options/OptionsWidgets.h"

#include <QDialogButtonBox>

namespace nv {

TimeZoneForm::TimeZoneForm(const std::vector<ZoneRow> &zones, int selected, QWidget *parent)
    : QDialog(parent), m_zones(zones) {
    setObjectName(QStringLiteral("TimeZoneForm"));
    setWindowTitle(tr("Time Zone Properties"));
    m_list = named(new QComboBox, "cbTimeZone");
    m_list->setAccessibleName(tr("Time zone"));
    for (const ZoneRow &zone : zones)
        m_list->addItem(toQt(zone.listText()));
    m_observed = named(new QCheckBox(tr("Daylight saving time is observed")), "chkDSTObserved");
    m_observed->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_observed->setFocusPolicy(Qt::NoFocus);
    m_offset = named(new QLabel, "labUTCOffset");
    auto *form = new QFormLayout;
    form->addRow(tr("Select Time Zone:"), m_list);
    form->addRow(QString(), m_observed);
    form->addRow(tr("UTC Offset:"), m_offset);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *column = new QVBoxLayout(this);
    column->addLayout(form);
    column->addWidget(newHint(tr("For reading only: the zone of the project is the one that is "
                                 "chosen in Options.")));
    column->addWidget(buttons);
    connect(m_list, &QComboBox::currentIndexChanged, this, &TimeZoneForm::showZone);
    m_list->setCurrentIndex(selected);
    showZone(selected);
}

void TimeZoneForm::showZone(int place) {
    const ZoneRow zone = place >= 0 ? m_zones.at(static_cast<std::size_t>(place)) : ZoneRow();
    m_observed->setChecked(zone.usesDST);
    m_offset->setText(toQt(zone.utcOffset));
}

} // namespace nv
