#pragma once

#include "views/limits/Hosts.h"

#include <QAbstractTableModel>
#include <QWidget>

#include <vector>

class QLabel;
class QMenu;
class QTableView;

namespace nv {

class TickHeader;

/// The rows of the list of hosts.
class HostModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    void setHosts(std::vector<HostRow> hosts);
    const HostRow *at(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    std::vector<HostRow> m_hosts;
};

/// The hosts of the project. While the heading is ticked, going to a host filters by it.
class HostsPane final : public QWidget {
    Q_OBJECT

  public:
    explicit HostsPane(QWidget *parent = nullptr);

    /// Fills the list without choosing a host. A listing that did not finish says so, and so does
    /// one that lacks the records in `unread`.
    void setHosts(std::vector<HostRow> hosts, Walk listing, const UnreadRows &unread = {});
    HostSort sort() const { return m_sort; }
    bool isTicked() const;
    void setTicked(bool ticked);
    /// No row counts as chosen, so that a click on any of them filters.
    void forgetChoice();

  signals:
    /// Another row was gone to; the host may be empty.
    void hostChosen(const std::string &host);
    /// The tick was taken away.
    void unticked();
    void sortChosen();

  private:
    void buildMenu();
    void takeFlip(bool ticked);

    HostModel m_model;
    QTableView *m_grid = nullptr;
    TickHeader *m_header = nullptr;
    QMenu *m_menu = nullptr;
    QLabel *m_unfinished = nullptr;
    HostSort m_sort = HostSort::ByName;
    bool m_filling = false;
};

} // namespace nv
