#include "maintenance/ui/SettingBox.h"

#include "base/Text.h"
#include "maintenance/ui/OptionsWidgets.h"
#include "platform/qt/QtText.h"

#include <QLineEdit>

namespace nv {

namespace {

/// A control that has no text of its own gets its label before it and its sentence below.
void addLabelled(QVBoxLayout &column, const SettingFacts &row, QWidget &control) {
    auto *caption = new QLabel(QString::fromUtf8(row.control.label));
    caption->setBuddy(&control);
    auto *line = new QHBoxLayout;
    line->addWidget(caption);
    line->addWidget(&control);
    line->addStretch(1);
    column.addLayout(line);
    named(&control, row.control.name);
    control.setAccessibleName(caption->text().remove(u'&').remove(u':'));
    const QString hint = QString::fromUtf8(row.control.hint);
    control.setToolTip(hint);
    auto *sentence = newHint(hint);
    sentence->setContentsMargins(24, 0, 0, 6);
    column.addWidget(sentence);
}

SettingBox addFlag(QVBoxLayout &column, const SettingFacts &row, const std::string &value) {
    QCheckBox *box = addBox(column, row.control.name, QString::fromUtf8(row.control.label),
                            QString::fromUtf8(row.control.hint), value == "True");
    return {box, [box] { return std::string(box->isChecked() ? "True" : "False"); }};
}

/// A word that isn't among the choices, as a hand has written it, is shown as the default.
SettingBox addChoice(QVBoxLayout &column, const SettingFacts &row, const std::string &value) {
    auto *list = new QComboBox;
    for (const std::string_view choice : split(row.choices, ';'))
        list->addItem(toQt(choice));
    const int place = list->findText(toQt(value));
    list->setCurrentIndex(place >= 0 ? place : list->findText(toQt(row.byDefault)));
    addLabelled(column, row, *list);
    return {list, [list] { return fromQt(list->currentText()); }};
}

SettingBox addNumber(QVBoxLayout &column, const SettingFacts &row, const std::string &value) {
    auto *number = new QSpinBox;
    number->setRange(row.least, row.most);
    number->setValue(toQt(value).toInt());
    addLabelled(column, row, *number);
    return {number, [number] { return std::to_string(number->value()); }};
}

SettingBox addText(QVBoxLayout &column, const SettingFacts &row, const std::string &value) {
    auto *text = new QLineEdit(toQt(value));
    addLabelled(column, row, *text);
    return {text, [text] { return fromQt(text->text().trimmed()); }};
}

} // namespace

SettingBox addSettingBox(QVBoxLayout &column, const SettingFacts &row, const std::string &value) {
    switch (row.kind) {
    case SettingKind::flag:
        return addFlag(column, row, value);
    case SettingKind::choice:
        return addChoice(column, row, value);
    case SettingKind::number:
        return addNumber(column, row, value);
    default:
        return addText(column, row, value);
    }
}

} // namespace nv
