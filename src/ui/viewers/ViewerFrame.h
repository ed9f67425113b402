#pragma once

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QStackedWidget;

namespace nv {

/// What viewers share: a bar of controls, below it the content or, in its place, why there is none,
/// and a line of notices. Keys for finding go to the viewer when it has the focus, not to the
/// table.
class ViewerFrame : public QWidget {
    Q_OBJECT

  public:
    /// The content is blank, and says why. An empty text leaves it blank.
    void showReason(const QString &text);

  protected:
    /// `content` becomes a child; `name` is the object's.
    ViewerFrame(const char *name, QWidget &content, QWidget *parent);

    QHBoxLayout &bar() { return *m_bar; }
    /// A label of plain text: what is quoted of evidence is never markup.
    static QLabel *newLabel(const char *name);
    void showContent();
    bool showsContent() const;
    /// Below the content; an empty text takes the line away.
    void showNotice(const QString &text);

    virtual void openFind() {}
    virtual void findNext() {}
    bool event(QEvent *event) override;

  private:
    QWidget *m_controls = nullptr;
    QHBoxLayout *m_bar = nullptr;
    QStackedWidget *m_pages = nullptr;
    QWidget *m_content = nullptr;
    QLabel *m_reason = nullptr;
    QLabel *m_notice = nullptr;
};

} // namespace nv
