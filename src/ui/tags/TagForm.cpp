#include "ui/tags/TagForm.h"

#include "base/Text.h"
#include "platform/qt/QtText.h"
#include "ui/table/TagPills.h"

#include <QBoxLayout>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

constexpr int kOwnColors = 9;

QString colorName(int place) {
    constexpr std::array<const char *, kOwnColors> kNames = {
        QT_TRANSLATE_NOOP("nv::TagForm", "Red"),    QT_TRANSLATE_NOOP("nv::TagForm", "Blue"),
        QT_TRANSLATE_NOOP("nv::TagForm", "Green"),  QT_TRANSLATE_NOOP("nv::TagForm", "Amber"),
        QT_TRANSLATE_NOOP("nv::TagForm", "Violet"), QT_TRANSLATE_NOOP("nv::TagForm", "Cyan"),
        QT_TRANSLATE_NOOP("nv::TagForm", "Pink"),   QT_TRANSLATE_NOOP("nv::TagForm", "Brown"),
        QT_TRANSLATE_NOOP("nv::TagForm", "Grey")};
    return TagForm::tr(kNames.at(static_cast<std::size_t>(place)));
}

QIcon spotOf(const std::string &color) {
    return tagIcon({.tagID = 0, .name = {}, .color = color, .position = 1, .note = {}});
}

QToolButton *newSpot(const char *name, const QString &title) {
    auto *button = new QToolButton;
    button->setObjectName(QLatin1String(name));
    button->setAccessibleName(title);
    button->setToolTip(title);
    button->setCheckable(true);
    button->setAutoExclusive(true);
    return button;
}

} // namespace

TagForm::TagForm(const NamedTag &tag, std::vector<NamedTag> others, QWidget *parent)
    : QDialog(parent), m_tag(tag), m_others(std::move(others)) {
    setObjectName(QStringLiteral("TagForm"));
    setWindowTitle(tag.tagID == 0 ? tr("New Tag") : tr("Tag"));
    m_name = new QLineEdit(toQt(tag.name));
    m_name->setObjectName(QStringLiteral("txtTagName"));
    m_name->setAccessibleName(tr("Name of the tag"));
    m_note = new QPlainTextEdit(toQt(tag.note));
    m_note->setObjectName(QStringLiteral("txtTagNote"));
    m_note->setAccessibleName(tr("What the tag is for"));
    m_note->setTabChangesFocus(true);
    m_note->setMaximumHeight(5 * fontMetrics().height());
    m_fault = new QLabel;
    m_fault->setObjectName(QStringLiteral("labTagFault"));
    m_fault->setTextFormat(Qt::PlainText);
    m_fault->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_okay = buttons->button(QDialogButtonBox::Ok);
    auto *rows = new QFormLayout;
    rows->addRow(tr("&Name:"), m_name);
    rows->addRow(tr("Colour:"), newColors());
    rows->addRow(tr("N&ote:"), m_note);
    auto *column = new QVBoxLayout(this);
    column->addLayout(rows);
    column->addWidget(m_fault);
    column->addStretch();
    column->addWidget(buttons);
    connect(m_name, &QLineEdit::textChanged, this, &TagForm::showFault);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    choose(tag.color);
    showFault();
}

QWidget *TagForm::newColors() {
    auto *box = new QWidget;
    auto *row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    for (int place = 0; place < kOwnColors; ++place) {
        const std::string color = firstTagColor(place + 1);
        auto *button = newSpot("btnTagColor", colorName(place));
        button->setProperty("color", toQt(color));
        button->setIcon(spotOf(color));
        connect(button, &QToolButton::clicked, this, [this, color] { choose(color); });
        row->addWidget(button);
        m_colors.push_back(button);
    }
    m_other = newSpot("btnOtherTagColor", tr("Another colour"));
    m_other->setText(tr("Other..."));
    m_other->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    connect(m_other, &QToolButton::clicked, this, &TagForm::chooseOther);
    row->addWidget(m_other);
    row->addStretch();
    return box;
}

void TagForm::chooseOther() {
    const QColor color = QColorDialog::getColor(tagColor(m_tag), this, tr("Colour of the Tag"));
    choose(color.isValid() ? fromQt(color.name()) : m_tag.color);
}

void TagForm::choose(const std::string &color) {
    m_tag.color = color;
    const auto own = std::ranges::find_if(m_colors, [&](const QToolButton *button) {
        return button->property("color").toString() == toQt(color);
    });
    QToolButton *chosen = own == m_colors.end() ? m_other : *own;
    chosen->setChecked(true);
    m_other->setIcon(own == m_colors.end() ? spotOf(color) : QIcon());
}

NamedTag TagForm::tag() const {
    NamedTag tag = m_tag;
    tag.name = fromQt(m_name->text().trimmed());
    tag.note = fromQt(m_note->toPlainText());
    return tag;
}

void TagForm::showFault() {
    const std::string name = tag().name;
    QString fault;
    if (name.empty())
        fault = tr("A tag needs a name.");
    else if (const std::string refusal = faultOfTagName(name); !refusal.empty())
        fault = tr("This can't be the name of a tag: %1.").arg(toQt(refusal));
    else if (std::ranges::any_of(m_others, [&name](const NamedTag &other) {
                 return equalsNoCase(other.name, name);
             }))
        fault = tr("There is a tag of this name already.");
    m_fault->setText(fault);
    m_okay->setEnabled(fault.isEmpty());
}

} // namespace nv
