#include "ui/frame/WelcomePage.h"

#include "platform/qt/Icons.h"
#include "ui/frame/RecentPane.h"
#include "ui/table/StepsPane.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

namespace nv {

namespace {

QPushButton *buttonFor(QAction &action, const char *name) {
    auto *button = new QPushButton(action.icon(), action.text());
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(true); // Enter works as it does in a dialog
    QObject::connect(button, &QPushButton::clicked, &action, &QAction::trigger);
    return button;
}

QLabel *newHeading(const QString &text) {
    auto *heading = new QLabel(text);
    QFont large = heading->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    heading->setFont(large);
    return heading;
}

} // namespace

WelcomePage::WelcomePage(QAction &newProject, QAction &openProject, ImportSteps &steps,
                         QWidget *parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("WelcomePage"));
    constexpr int kWidest = 980; // pixels
    auto *content = new QWidget;
    auto *row = new QHBoxLayout(content);
    row->setContentsMargins(24, 16, 24, 16);
    row->setSpacing(48);
    row->addStretch(1);
    row->addWidget(newSteps(steps), 20);
    row->addWidget(newProjects(newProject, openProject), 16);
    row->addStretch(1);
    auto *area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    content->setMaximumWidth(kWidest);
    area->setAlignment(Qt::AlignHCenter);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(area);
}

QWidget *WelcomePage::newSteps(ImportSteps &steps) {
    auto *box = new QWidget;
    auto *logo = new QLabel;
    logo->setObjectName(QStringLiteral("imgLogo"));
    logo->setPixmap(icon("norvelane-logo").pixmap(QSize(48, 48), devicePixelRatio()));
    auto *title = new QHBoxLayout;
    title->setSpacing(12);
    title->addWidget(logo);
    auto *heading = newHeading(tr("From evidence to rows"));
    heading->setObjectName(QStringLiteral("labWelcome"));
    title->addWidget(heading, 1);
    m_steps = new StepsPane(steps, Qt::Vertical);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(16);
    column->addStretch(1);
    column->addLayout(title);
    column->addWidget(m_steps);
    column->addStretch(2);
    return box;
}

QWidget *WelcomePage::newProjects(QAction &newProject, QAction &openProject) {
    auto *box = new QWidget;
    m_recent = new RecentPane;
    auto *hint = new QLabel(tr("A project holds what was found in one case. One that is dropped "
                               "here is opened."));
    hint->setObjectName(QStringLiteral("labWelcomeHint"));
    hint->setWordWrap(true);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(buttonFor(openProject, "btnWelcomeOpen"));
    buttons->addWidget(buttonFor(newProject, "btnWelcomeNew"));
    buttons->addStretch();
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    column->addStretch(1);
    column->addWidget(m_recent);
    column->addWidget(hint);
    column->addLayout(buttons);
    column->addStretch(2);
    return box;
}

} // namespace nv
