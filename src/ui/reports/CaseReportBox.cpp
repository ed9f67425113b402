#include "ui/reports/CaseReportBox.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>

#include <algorithm>

namespace nv {

CaseReportBox::CaseReportBox(QWidget *parent) : QWidget(parent) {
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    m_cards = new QComboBox;
    m_cards->setObjectName(QStringLiteral("cbCards"));
    m_cards->setAccessibleName(tr("Cards"));
    m_cards->setToolTip(
        tr("Rows that have a card with their picture or page. All rows stand in the "
           "tables."));
    m_cards->addItem(tr("Cards of ticked rows"), static_cast<int>(CaseCards::ticked));
    m_cards->addItem(tr("Cards of tagged rows"), static_cast<int>(CaseCards::tagged));
    m_cards->addItem(tr("Cards of all rows"), static_cast<int>(CaseCards::all));
    m_cards->addItem(tr("No cards"), static_cast<int>(CaseCards::none));
    m_timeline = new QCheckBox(tr("Ti&meline"));
    m_timeline->setObjectName(QStringLiteral("chkTimeline"));
    m_timeline->setToolTip(tr("A picture of time, and of the hours of the day"));
    m_evidence = new QCheckBox(tr("&Evidence"));
    m_evidence->setObjectName(QStringLiteral("chkEvidence"));
    m_evidence->setToolTip(tr("The files of evidence with their hashes"));
    m_tagNotes = new QCheckBox(tr("Ta&g notes"));
    m_tagNotes->setObjectName(QStringLiteral("chkTagNotes"));
    m_tagNotes->setToolTip(tr("What was noted of tags, and of the rows that have them"));
    m_redact = new QPushButton;
    m_redact->setObjectName(QStringLiteral("btnRedact"));
    m_redact->setAutoDefault(false);
    m_redact->setToolTip(tr("Hosts, people, words and pictures that aren't handed over"));
    connect(m_redact, &QPushButton::clicked, this, &CaseReportBox::chooseRedactions);
    for (QWidget *widget :
         std::initializer_list<QWidget *>{m_cards, m_timeline, m_evidence, m_tagNotes, m_redact})
        row->addWidget(widget);
    row->addStretch(1);
    countRedactions();
}

void CaseReportBox::show(const CaseOptions &options) {
    m_redactions = options.redactions;
    m_cards->setCurrentIndex(std::max(0, m_cards->findData(static_cast<int>(options.cards))));
    m_timeline->setChecked(options.timeline);
    m_evidence->setChecked(options.evidence);
    m_tagNotes->setChecked(options.tagNotes);
    countRedactions();
}

void CaseReportBox::apply(CaseOptions &options) const {
    options.redactions = m_redactions;
    options.cards = static_cast<CaseCards>(m_cards->currentData().toInt());
    options.timeline = m_timeline->isChecked();
    options.evidence = m_evidence->isChecked();
    options.tagNotes = m_tagNotes->isChecked();
}

void CaseReportBox::preferTaggedCards() {
    if (m_cards->currentData().toInt() == static_cast<int>(CaseCards::ticked))
        m_cards->setCurrentIndex(m_cards->findData(static_cast<int>(CaseCards::tagged)));
}

void CaseReportBox::chooseRedactions() {
    RedactionForm form(m_redactions, adviser, this);
    if (form.exec() != QDialog::Accepted)
        return;
    m_redactions = form.rules();
    countRedactions();
}

void CaseReportBox::countRedactions() {
    m_redact->setText(m_redactions.empty() ? tr("Re&dact...")
                                           : tr("Re&dact (%1)...").arg(m_redactions.size()));
}

} // namespace nv
