#include "ui/window/WelcomePage.h"

#include "platform/qt/Icons.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace nv {

namespace {

QPushButton *buttonFor(QAction &action, const char *name) {
    auto *button = new QPushButton(action.icon(), action.text());
    button->setObjectName(QLatin1String(name));
    button->setMinimumWidth(140);
    QObject::connect(button, &QPushButton::clicked, &action, &QAction::trigger);
    return button;
}

} // namespace

WelcomePage::WelcomePage(QAction &newProject, QAction &openProject, QWidget *parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("WelcomePage"));
    auto *logo = new QLabel;
    logo->setObjectName(QStringLiteral("imgLogo"));
    logo->setPixmap(icon("norvelane-logo").pixmap(QSize(96, 96), devicePixelRatio()));
    auto *heading = new QLabel(tr("Open or create a project"));
    heading->setObjectName(QStringLiteral("labWelcome"));
    QFont large = heading->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    heading->setFont(large);
    auto *hint = new QLabel(tr("A project holds what was found in one case.\n"
                               "You can also drop a project file or a folder of evidence here."));
    hint->setObjectName(QStringLiteral("labWelcomeHint"));
    hint->setAlignment(Qt::AlignCenter);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(buttonFor(newProject, "btnWelcomeNew"));
    buttons->addWidget(buttonFor(openProject, "btnWelcomeOpen"));
    buttons->addStretch();
    auto *column = new QVBoxLayout(this);
    column->setSpacing(14);
    column->addStretch(2);
    column->addWidget(logo, 0, Qt::AlignHCenter);
    column->addWidget(heading, 0, Qt::AlignHCenter);
    column->addWidget(hint, 0, Qt::AlignHCenter);
    column->addLayout(buttons);
    column->addStretch(3);
}

} // namespace nv
