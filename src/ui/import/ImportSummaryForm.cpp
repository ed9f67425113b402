#include "ui/import/ImportSummaryForm.h"

#include "platform/qt/WithinScreen.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QTimer>

namespace nv {

ImportSummaryForm::ImportSummaryForm(Program &program, ChoosePage choosePage, First first,
                                     QWidget *parent)
    : QDialog(parent), m_pane(new ImportSummaryPane(program, std::move(choosePage))),
      m_all(new QCheckBox(tr("&All imports into this project, not the last one alone"))) {
    setObjectName(QStringLiteral("ImportSummaryForm"));
    setWindowTitle(tr("Import Summary"));
    // Blocks the main window only: the status window's Cancel button has to stay live.
    setWindowModality(Qt::WindowModal);
    resizeWithinScreen(*this, {860, 560});
    m_all->setObjectName(QStringLiteral("chkAllImports"));
    m_all->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto *last = new QHBoxLayout;
    last->addWidget(m_all);
    last->addStretch();
    last->addWidget(buttons);
    auto *column = new QVBoxLayout(this);
    column->addWidget(m_pane, 1);
    column->addLayout(last);
    connect(m_all, &QCheckBox::toggled, this, [this](bool isOn) {
        load(isOn ? ImportScope::all : ImportScope::last);
        m_all->setFocus();
    });
    connect(m_pane, &ImportSummaryPane::wanted, this, [this](AfterSummary what) {
        m_next = what;
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // Once it is up: counting a large project takes a second.
    QTimer::singleShot(0, this, [this, first] { loadFirst(first); });
}

void ImportSummaryForm::loadFirst(First first) {
    const bool isOfAll = first == First::notRead;
    load(isOfAll ? ImportScope::all : ImportScope::last);
    const ImportOverview &overview = m_pane->overview();
    const QSignalBlocker quiet(m_all);
    m_all->setChecked(isOfAll);
    m_all->setVisible(overview.isKnown && (isOfAll || overview.scope == ImportScope::last));
    m_pane->setFocus();
    if (isOfAll)
        m_pane->showNotRead();
}

/// While it counts, events run: nothing else may begin.
void ImportSummaryForm::load(ImportScope scope) {
    setEnabled(false);
    m_pane->load(scope);
    setEnabled(true);
}

} // namespace nv
