#include "ui/import/ImportZone.h"

#include "app/jobs/ThumbnailJob.h"
#include "app/jobs/ZoneJob.h"
#include "app/program/ZoneMeaning.h"
#include "app/program/Zones.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "ui/import/WizardParts.h"
#include "ui/import/ZoneForm.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QComboBox>

#include <algorithm>

namespace nv {

namespace {

constexpr const char *kUtc = "UTC";

} // namespace

ImportZone::ImportZone(Program &program)
    : m_program(program), m_question(newWizardLabel("labZoneQuestion")), m_offered(new QComboBox),
      m_zone(newWizardLabel("labImportZone")), m_meaning(newWizardLabel("labZoneMeaning")),
      m_hint(newWizardLabel("labZoneHint")) {
    m_hint->hide();
    m_question->setText(tr("Times are shown in:"));
    m_question->setWordWrap(false);
    m_question->setBuddy(m_offered);
    m_offered->setObjectName(QStringLiteral("cbImportZone"));
    m_offered->setAccessibleName(tr("Times are shown in"));
    m_offered->setToolTip(tr("Mostly the zone of the examined machine, or UTC. Local dates are "
                             "stored in it."));
    m_offered->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_offered->setMinimumContentsLength(24);
    connect(m_offered, &QComboBox::activated, this, &ImportZone::chooseOffered);
    auto *choose = newWizardButton("btnChooseZone", tr("Time &Zone..."));
    choose->setToolTip(tr("Mostly that of the examined machine: local dates are stored in it"));
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, &ImportZone::choose);
    auto *asked = new QHBoxLayout;
    asked->addWidget(m_question);
    asked->addWidget(m_offered, 2);
    asked->addWidget(choose);
    asked->addStretch(1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addLayout(asked);
    column->addWidget(m_zone);
    column->addWidget(m_meaning);
    column->addWidget(m_hint);
}

bool ImportZone::isNew() const {
    return !m_program.state.projectDB.isOpen() || lastRow(m_program) == 0;
}

/// What the evidence says is taken before the first import; later the project has its zone, and is
/// only told.
void ImportZone::suggest(const std::vector<std::filesystem::path> &folders) {
    std::vector<ZoneHint> hints;
    for (const std::filesystem::path &folder : folders)
        for (ZoneHint &hint : knownZoneHints(m_program, folder, m_program.import.historyFiles))
            if (std::ranges::find(hints, hint.zone, &ZoneHint::zone) == hints.end())
                hints.push_back(std::move(hint));
    m_offered->clear();
    m_isOffered = isNew();
    if (m_isOffered)
        offerZones(hints);
    if (!m_isChosen)
        m_key = m_isOffered ? fromQt(m_offered->itemData(0).toString()) : keyInList(m_program);
    m_question->setVisible(isNew());
    m_offered->setVisible(isNew());
    m_zone->setVisible(!isNew());
    tellHints(hints);
    showZone();
}

void ImportZone::tellHints(const std::vector<ZoneHint> &hints) {
    QStringList told;
    for (const ZoneHint &hint : hints)
        told += tr("The evidence names the zone %1 (%2).")
                    .arg(toQt(hint.zone), toQt(displayText(textOf(hint.file))));
    m_hint->setText(told.join(u'\n'));
    m_hint->setVisible(!told.isEmpty());
}

/// What the evidence says goes before what the examiner has chosen elsewhere, and that before UTC,
/// which is the same on every machine. The machine of the examiner says nothing of the evidence.
void ImportZone::offerZones(const std::vector<ZoneHint> &hints) {
    for (const ZoneHint &hint : hints)
        offer(tr("%1 (named by the evidence)").arg(toQt(hint.zone)), hint.zone);
    const std::string own = keyInList(m_program);
    const bool isChosen = isChosenZone(m_program);
    if (!isChosen && checkedZone(m_program, kUtc).refusal.empty())
        offer(toQt(kUtc), kUtc);
    offer(tr("%1 (of this program)").arg(zoneName(m_program, own)), own);
    if (isChosen)
        offer(toQt(kUtc), kUtc);
}

void ImportZone::offer(const QString &text, const std::string &key) {
    if (m_offered->findData(toQt(key)) < 0)
        m_offered->addItem(text, toQt(key));
}

void ImportZone::choose() {
    ZoneForm dialog(m_program, m_key, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_key = dialog.key();
    m_isChosen = true;
    showZone();
}

void ImportZone::chooseOffered() {
    m_key = fromQt(m_offered->currentData().toString());
    m_isChosen = true;
    showZone();
}

void ImportZone::showZone() {
    offer(name(), m_key);
    m_offered->setCurrentIndex(m_offered->findData(toQt(m_key)));
    m_zone->setText(tr("Times are shown in: %1").arg(name()));
    m_meaning->setText(toQt(zoneMeaning(m_program, m_key)));
}

QString ImportZone::name() const {
    return zoneName(m_program, m_key);
}

bool ImportZone::take() {
    const bool isKept = !m_isChosen && !m_isOffered;
    return isKept || m_key == keyInList(m_program) || changeZone(m_program, m_key, m_program.task);
}

} // namespace nv
