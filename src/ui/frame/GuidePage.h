#pragma once

#include <QTextBrowser>

namespace nv {

/// One page of the guide. Links and pictures outside of its root folder lead nowhere.
class GuidePage final : public QTextBrowser {
    Q_OBJECT

  public:
    explicit GuidePage(const QString &root, QWidget *parent = nullptr);

    /// The file of the page, already while it is loaded.
    QString file() const { return m_current.toLocalFile(); }
    QVariant loadResource(int type, const QUrl &name) override;

  signals:
    /// A link was followed that leads out of the guide.
    void linkRefused(const QString &address);

  protected:
    void doSetSource(const QUrl &url, QTextDocument::ResourceType type) override;
    void changeEvent(QEvent *event) override;

  private:
    bool isOfGuide(const QUrl &url) const;
    void formatTables();
    void goToHeading(const QString &anchor);

    QString m_root;
    QUrl m_current; ///< without the heading
};

} // namespace nv
