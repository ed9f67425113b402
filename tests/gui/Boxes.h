#pragma once

#include "support/Places.h"
#include "ui/frame/GuideForm.h"
#include "ui/frame/TextForm.h"
#include "ui/limits/ColumnLimitForm.h"
#include "ui/limits/HashSetForm.h"
#include "ui/options/TimeZoneForm.h"
#include "ui/reports/RedactionForm.h"
#include "ui/tags/TagForm.h"
#include "ui/viewers/PartChoiceForm.h"
#include "views/record/PartAlternatives.h"

#include <QAbstractSpinBox>
#include <QAccessible>
#include <QComboBox>
#include <QLineEdit>
#include <QTabBar>
#include <QToolButton>
#include <QWidget>

#include <memory>
#include <set>
#include <vector>

// What of a window somebody uses, as a screen reader is told of it.
namespace nv::test {

/// What somebody types into, chooses from, presses or reads.
inline bool isBox(QAccessible::Role role) {
    static const std::set<QAccessible::Role> boxes = {
        QAccessible::EditableText, QAccessible::ComboBox,    QAccessible::SpinBox,
        QAccessible::List,         QAccessible::Table,       QAccessible::Tree,
        QAccessible::CheckBox,     QAccessible::RadioButton, QAccessible::PushButton,
        QAccessible::ButtonMenu,   QAccessible::ProgressBar, QAccessible::Slider,
        QAccessible::PageTabList,  QAccessible::Dial};
    return boxes.contains(role);
}

/// Parts that the toolkit makes inside of its own widgets, and what is shown to nobody.
inline bool isInner(const QAccessibleInterface &object) {
    const auto *widget = qobject_cast<const QWidget *>(object.object());
    if (!widget)
        return true;
    const QWidget *parent = widget->parentWidget();
    const bool ofComboBox = parent && parent->inherits("QComboBoxPrivateContainer");
    const bool ofSpinBox = qobject_cast<const QAbstractSpinBox *>(parent) != nullptr;
    const bool clearsALine = parent && qobject_cast<const QLineEdit *>(parent);
    const bool scrollsTabs =
        widget->inherits("QToolButton") && parent && parent->inherits("QTabBar");
    return ofComboBox || ofSpinBox || clearsALine || scrollsTabs ||
           widget->objectName().startsWith(u"qt_");
}

/// Dialogs that no command of the menus leads to without more ado.
inline std::vector<std::unique_ptr<QDialog>> furtherDialogs() {
    static const std::vector<ZoneRow> oneZone{ZoneRow{}};
    static const TimeZone zone(Date{});
    PartQuestion question;
    question.address = "https://host/a.png";
    question.alternatives.resize(2);
    CountedValues counted;
    counted.values = {{"a.example", 2}, {"b.example", 1}};
    NamedTag tag;
    tag.color = firstTagColor(1);
    std::vector<std::unique_ptr<QDialog>> dialogs;
    dialogs.push_back(std::make_unique<TimeZoneForm>(oneZone, 0));
    dialogs.push_back(std::make_unique<TagForm>(tag, std::vector<NamedTag>()));
    dialogs.push_back(
        std::make_unique<PartChoiceForm>(question, [](UrlId) { return std::string(); }));
    dialogs.push_back(std::make_unique<ColumnLimitForm>(
        counted, ColumnLimit(), QStringLiteral("Host"), FormClock{zone, false}));
    dialogs.push_back(std::make_unique<HashSetForm>());
    dialogs.push_back(std::make_unique<RedactionForm>(RedactionRules()));
    dialogs.push_back(std::make_unique<TextForm>(QStringLiteral("Errors"), QStringLiteral("none")));
    dialogs.push_back(std::make_unique<GuideForm>(docsFolder() / "guide"));
    return dialogs;
}

} // namespace nv::test
