#include "ui/table/EmptyPage.h"

#include "platform/qt/Icons.h"
#include "ui/table/StepsPane.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

namespace nv {

namespace {

QString textOf(EmptyState state, std::size_t hidden) {
    switch (state) {
    case EmptyState::NoRecords:
        return EmptyPage::tr("This project holds no records yet.");
    case EmptyState::NoMatches:
        return EmptyPage::tr("No record matches the query and the host.\nShow all "
                             "records, or choose another query or host above.");
    case EmptyState::NoTerms:
        return EmptyPage::tr("This query looks for no keywords: their list was missing or empty "
                             "when the project was made.\nIt finds nothing, whatever the evidence "
                             "holds.");
    case EmptyState::AllHidden:
        return EmptyPage::tr("The filters hide all %L1 records that the query and the host give.")
            .arg(hidden);
    case EmptyState::Cancelled:
        return EmptyPage::tr("The loading was cancelled before any record was found.\nRefresh (F5) "
                             "loads them again.");
    case EmptyState::Failed:
        return EmptyPage::tr("The records could not be loaded. The error log (Tools, Error Log) "
                             "says why.\nRefresh (F5) tries again.");
    case EmptyState::NotLoaded:
        return EmptyPage::tr("No records are loaded. Refresh (F5) loads those of the query.");
    case EmptyState::HasRows:
        break;
    }
    return {};
}

QPushButton *newButton(const char *name, const QString &text) {
    auto *button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    return button;
}

} // namespace

EmptyPage::EmptyPage(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("EmptyPage"));
    m_text = new QLabel;
    m_text->setObjectName(QStringLiteral("labEmpty"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setAlignment(Qt::AlignCenter);
    m_showAll = newButton("btnEmptyShowAll", tr("Show &All Records"));

    m_filters = newButton("btnEmptyFilters", tr("&Filters..."));
    m_filters->setIcon(icon("filter"));

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_showAll);
    buttons->addWidget(m_filters);
    buttons->addStretch();
    auto *column = new QVBoxLayout(this);
    column->addStretch();
    column->addWidget(m_text);
    column->addSpacing(12);
    column->addLayout(buttons);
    column->addStretch();
    connect(m_showAll, &QPushButton::clicked, this, &EmptyPage::showAllRequested);
    connect(m_filters, &QPushButton::clicked, this, &EmptyPage::filtersRequested);
}

void EmptyPage::offerSteps(ImportSteps &steps) {
    auto *pane = new StepsPane(steps, Qt::Horizontal);
    pane->setContentsMargins(12, 4, 12, 4);
    m_steps = new QScrollArea;
    m_steps->setWidgetResizable(true);
    m_steps->setFrameShape(QFrame::NoFrame);
    m_steps->setFocusPolicy(Qt::NoFocus);
    m_steps->setWidget(pane);
    auto *column = static_cast<QBoxLayout *>(layout());
    column->insertWidget(column->count() - 1, m_steps, 4);
    m_steps->setVisible(m_state == EmptyState::NoRecords);
}

void EmptyPage::showState(EmptyState state, std::size_t hidden, HiddenBy by) {
    m_state = state;
    const bool byFilters = state == EmptyState::AllHidden && by == HiddenBy::filters;
    m_text->setText(state == EmptyState::AllHidden && !byFilters
                        ? tr("The limits above hide all %L1 records that the query and the host "
                             "give.\nThe cross of a limit takes it away.")
                              .arg(hidden)
                        : textOf(state, hidden));
    if (m_steps)
        m_steps->setVisible(state == EmptyState::NoRecords);
    m_showAll->setVisible(state != EmptyState::NoRecords && state != EmptyState::NotLoaded &&
                          !byFilters);
    m_filters->setVisible(byFilters);
}

} // namespace nv
