#include "ui/import/ImportZone.h"

#include "app/jobs/ThumbnailJob.h"
#include "app/jobs/ZoneJob.h"
#include "app/program/Zones.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "ui/import/WizardParts.h"
#include "ui/views/ZoneForm.h"
#include "views/CellText.h"

#include <QBoxLayout>

namespace nv {

ImportZone::ImportZone(Program &program)
    : m_program(program), m_zone(newWizardLabel("labImportZone")),
      m_hint(newWizardLabel("labZoneHint")) {
    m_hint->hide();
    auto *choose = newWizardButton("btnChooseZone", tr("Time &Zone..."));
    choose->setToolTip(tr("Mostly that of the examined machine: local dates are stored in it"));
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, &ImportZone::choose);
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(choose, 0, 0);
    grid->addWidget(m_zone, 0, 1);
    grid->addWidget(m_hint, 1, 0, 1, 2);
    grid->setColumnStretch(1, 1);
}

/// What the evidence says is taken before the first import; later the project has its zone, and is
/// only told.
void ImportZone::suggest() {
    if (m_key.empty())
        m_key = keyInList(m_program);
    QStringList told;
    bool isTaken = lastRow(m_program) > 0;
    const ImportSettings &job = m_program.import;
    for (const ZoneHint &hint :
         knownZoneHints(m_program, job.startingDirectory, job.historyFiles)) {
        told += tr("The evidence names the zone %1 (%2).")
                    .arg(toQt(hint.zone), toQt(displayText(textOf(hint.file))));
        if (!isTaken)
            m_key = hint.zone;
        isTaken = true;
    }
    m_hint->setText(told.join(u'\n'));
    m_hint->setVisible(!told.isEmpty());
    showZone();
}

void ImportZone::choose() {
    ZoneForm dialog(m_program, m_key, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_key = dialog.key();
    showZone();
}

void ImportZone::showZone() {
    m_zone->setText(tr("Times are shown in: %1").arg(zoneName(m_program, m_key)));
}

bool ImportZone::take() {
    return m_key == keyInList(m_program) || changeZone(m_program, m_key, m_program.task);
}

} // namespace nv
