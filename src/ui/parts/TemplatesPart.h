#pragma once

#include "ui/parts/Workbench.h"

#include <cstdint>
#include <vector>

namespace nv {

class TemplatesTab;

/// The templates in the main window.
class TemplatesPart final : public QObject {
    Q_OBJECT

  public:
    explicit TemplatesPart(Workbench &bench);

  private:
    void connectTab();
    void list();
    /// Tells the examiner when there is none.
    std::vector<UrlId> pages();
    void createTemplate();
    void rebuildFromTemplates();
    void view();
    void rename();
    void remove();
    void chooseMatchByTitle(bool on);

    Workbench &m_bench;
    TemplatesTab *m_tab = nullptr;
};

} // namespace nv
