#pragma once

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QScrollBar>
#include <QSpinBox>

#include <algorithm>

// What the tabs of the Options dialog are made of.
namespace nv {

template <class Widget>
Widget *named(Widget *widget, const char *name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

/// One sentence below the control that it explains.
inline QLabel *newHint(const QString &text) {
    auto *hint = new QLabel(text);
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    return hint;
}

inline QCheckBox *addBox(QVBoxLayout &column, const char *name, const QString &text,
                         const QString &hint, bool on) {
    auto *box = named(new QCheckBox(text), name);
    box->setChecked(on);
    box->setToolTip(hint);
    column.addWidget(box);
    auto *sentence = newHint(hint);
    sentence->setContentsMargins(24, 0, 0, 6);
    column.addWidget(sentence);
    return box;
}

/// A list of numbers that also holds `chosen`.
inline QComboBox *newNumbers(const char *name, QList<int> numbers, int chosen) {
    if (!numbers.contains(chosen))
        numbers.append(chosen);
    std::sort(numbers.begin(), numbers.end());
    auto *list = named(new QComboBox, name);
    for (const int number : numbers)
        list->addItem(QString::number(number), number);
    list->setCurrentIndex(list->findData(chosen));
    return list;
}

/// What `addScrolled` adds.
struct Scrolled {
    const char *name;
    const char *scroll;
    Qt::Orientation direction;
    int most; ///< from 0 on
};

/// A line of the form with a number and a scroll bar that moves it in whole steps, and follows it.
inline QSpinBox *addScrolled(QFormLayout &form, const QString &label, const QString &hint,
                             const Scrolled &what, int value) {
    const auto [name, scroll, direction, most] = what;
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    auto *number = named(new QSpinBox, name);
    number->setRange(0, most);
    auto *bar = named(new QScrollBar(direction), scroll);
    bar->setRange(0, most);
    bar->setSingleStep(1);
    // A scroll bar that stands has its greatest value below.
    bar->setInvertedAppearance(direction == Qt::Vertical);
    bar->setInvertedControls(direction == Qt::Horizontal);
    QObject::connect(bar, &QScrollBar::valueChanged, number, &QSpinBox::setValue);
    QObject::connect(number, &QSpinBox::valueChanged, bar, &QScrollBar::setValue);
    number->setValue(value);
    number->setToolTip(hint);
    bar->setToolTip(hint);
    row->addWidget(number);
    row->addWidget(bar, direction == Qt::Horizontal ? 1 : 0);
    if (direction == Qt::Vertical) {
        // As high as the number, or the label would stand above it.
        bar->setFixedHeight(number->sizeHint().height());
        row->addStretch(1);
    }
    auto *caption = new QLabel(label);
    caption->setBuddy(number);
    const QString plain = QString(label).remove(u'&').remove(u':');
    number->setAccessibleName(plain);
    bar->setAccessibleName(plain);
    form.addRow(caption, line);
    return number;
}

} // namespace nv
