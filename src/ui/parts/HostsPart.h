#pragma once

#include "ui/parts/Workbench.h"

#include <cstdint>

class QLabel;

namespace nv {

class GalleryTab;
class HostsPane;

/// The host filter in the main window: the list of hosts, the boxes of the table and the gallery,
/// and a sign in the status bar, which all agree with `filterByHostEnabled` and
/// `filterByHostValue`.
class HostsPart final : public QObject, public Limiter {
    Q_OBJECT

  public:
    /// After the gallery's part.
    explicit HostsPart(Workbench &bench);

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override { takeEntered(limit.toString()); }
    std::vector<LimitChip> chips() const override;

  private:
    void connectPane();
    void showPane(bool shown);
    void fillIfStale();
    void fill();
    void choose(const std::string &host);
    void untick();
    void takeEntered(const QString &host);
    void showFilter();
    void reloadStaleTable();
    void showSign();
    /// Empty when the filter is off.
    std::string hostInForce() const;

    Workbench &m_bench;
    HostsPane *m_pane = nullptr;
    GalleryTab *m_gallery = nullptr;
    QLabel *m_sign = nullptr;
    std::int64_t m_listedTo = -1; ///< highest record that the list knows; -1 before it was filled
};

} // namespace nv
