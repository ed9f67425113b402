#pragma once

#include "ui/parts/Workbench.h"

#include <QPointer>

namespace nv {

class GuideForm;

/// The command that opens the guide, at the page of the tab or pane that is worked in.
class GuidePart final : public QObject {
    Q_OBJECT

  public:
    explicit GuidePart(Workbench &bench);

  private:
    void show();
    QString pageOfFocus() const;

    Workbench &m_bench;
    QPointer<GuideForm> m_form;
};

} // namespace nv
