#include "platform/qt/AccessibleBoxes.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QComboBox>
#include <QLineEdit>

namespace nv {

namespace {

/// Its children are the list and, when there is one, the line in which something can be typed.
class ComboBoxInterface final : public QAccessibleWidget {
  public:
    explicit ComboBoxInterface(QComboBox &box)
        : QAccessibleWidget(&box, QAccessible::ComboBox), m_box(box) {}

    int childCount() const override { return m_box.isEditable() ? 2 : 1; }
    QAccessibleInterface *child(int index) const override {
        if (index == 0)
            return QAccessible::queryAccessibleInterface(m_box.view());
        return index == 1 && m_box.isEditable()
                   ? QAccessible::queryAccessibleInterface(m_box.lineEdit())
                   : nullptr;
    }
    QAccessibleInterface *childAt(int x, int y) const override {
        const bool typed = m_box.isEditable() && m_box.lineEdit()->rect().contains(
                                                     m_box.lineEdit()->mapFromGlobal(QPoint(x, y)));
        return typed ? child(1) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override {
        if (child->object() == m_box.view())
            return 0;
        return m_box.isEditable() && child->object() == m_box.lineEdit() ? 1 : -1;
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? m_box.currentText() : QAccessibleWidget::text(kind);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = m_box.view()->isVisible();
        state.editable = m_box.isEditable();
        return state;
    }
    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
    void doAction(const QString &name) override {
        if (name != showMenuAction() && name != pressAction())
            return;
        if (m_box.view()->isVisible())
            m_box.hidePopup();
        else
            m_box.showPopup();
    }

  private:
    QComboBox &m_box;
};

QAccessibleInterface *newInterface(const QString &className, QObject *object) {
    auto *box = className == u"QComboBox" ? qobject_cast<QComboBox *>(object) : nullptr;
    return box ? new ComboBoxInterface(*box) : nullptr;
}

} // namespace

void nameComboBoxes() {
    static const bool once = [] {
        QAccessible::installFactory(newInterface);
        return true;
    }();
    static_cast<void>(once);
}

} // namespace nv
