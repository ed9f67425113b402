#include "ui/frame/TipForm.h"

#include "app/settings/Settings.h"
#include "base/Text.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>

#include <fstream>

namespace nv {

std::vector<std::string> readTips(const std::filesystem::path &file) {
    std::vector<std::string> tips;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (const std::string_view tip = trim(line); !tip.empty())
            tips.emplace_back(tip);
    }
    return tips;
}

namespace {

QLabel *newLabel(const char *name, const QString &text) {
    auto *label = new QLabel(text);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel *newHeading() {
    QLabel *heading = newLabel("labTipHeading", TipForm::tr("Did you know..."));
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.3);
    heading->setFont(font);
    return heading;
}

QCheckBox *newStartupTick(IniFile &settings) {
    auto *tick = new QCheckBox(TipForm::tr("&Show tips at startup"));
    tick->setObjectName(QStringLiteral("chkShowTipsAtStartup"));
    tick->setChecked(readFlag(settings, "ShowTipsAtStartup"));
    QObject::connect(tick, &QCheckBox::toggled, tick,
                     [&settings](bool on) { rememberFlag(settings, "ShowTipsAtStartup", on); });
    return tick;
}

} // namespace

TipForm::TipForm(std::vector<std::string> tips, std::size_t first, IniFile &settings,
                 QWidget *parent)
    : QDialog(parent), m_tips(std::move(tips)), m_place(first) {
    setObjectName(QStringLiteral("TipForm"));
    setWindowTitle(tr("Tip of the Day"));
    resize(480, 230);

    auto *sign = newLabel("imgTip", {});
    sign->setPixmap(icon("tip").pixmap(QSize(48, 48), devicePixelRatio()));
    m_text = newLabel("labTip", {});
    m_text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    auto *grid = new QGridLayout;
    grid->addWidget(sign, 0, 0, 2, 1, Qt::AlignTop);
    grid->addWidget(newHeading(), 0, 1);
    grid->addWidget(m_text, 1, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(1, 1);
    grid->setHorizontalSpacing(16);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QPushButton *next = buttons->addButton(tr("&Next Tip"), QDialogButtonBox::ActionRole);
    next->setObjectName(QStringLiteral("btnNextTip"));
    next->setEnabled(m_tips.size() > 1);
    connect(next, &QPushButton::clicked, this, &TipForm::nextTip);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *column = new QVBoxLayout(this);
    column->addLayout(grid, 1);
    column->addWidget(newStartupTick(settings));
    column->addWidget(buttons);
    showTip();
}

void TipForm::showTip() {
    m_text->setText(m_tips.empty() ? tr("There are no tips.")
                                   : toQt(m_tips[m_place % m_tips.size()]));
}

void TipForm::nextTip() {
    ++m_place;
    showTip();
}

} // namespace nv
