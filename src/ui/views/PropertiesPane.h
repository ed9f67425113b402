#pragma once

#include "ui/views/RecordPane.h"
#include "views/Properties.h"

#include <QList>
#include <QWidget>

#include <functional>
#include <optional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSplitter;
class QTreeWidget;

namespace nv {

/// All properties of one record; below them the whole text of the chosen one. Empty ones are hidden
/// unless the examiner wants them, and a box leaves those that hold a text.
class PropertiesPane final : public QWidget, public RecordPane {
    Q_OBJECT

  public:
    /// `load` gives the properties of a record.
    explicit PropertiesPane(std::function<std::vector<Property>(UrlId)> load,
                            QWidget *parent = nullptr);

    /// Keeps the chosen property, by its name.
    void showRecord(UrlId id) override;
    void clear() override;
    /// Below the chosen property's text: where it comes from. `hasBytes` when there are bytes to
    /// lead to.
    void showWhy(const QString &why, bool hasBytes);

    /// The values that the list shows now, from above.
    std::size_t listedCount() const { return m_shown.size(); }
    const std::string &listedValue(std::size_t place) const {
        return m_properties.at(m_shown.at(place)).value;
    }
    std::optional<std::size_t> chosenPlace() const;
    void choose(std::size_t place);
    /// Those in which a search has found something are marked; a number for each.
    void markListed(const std::vector<std::size_t> &hits);
    QPlainTextEdit &wholeText() { return *m_whole; }

  signals:
    /// The list shows other values, or none.
    void listed();
    /// Where does the chosen property of the record come from?
    void whyWanted(const QString &field);
    /// The bytes that the last answer named are wanted.
    void bytesWanted();

  private:
    QWidget *newWhole();
    void makeRoom();
    QWidget *newBar();
    void fill();
    bool isWanted(const Property &property) const;
    void showChosen();

    std::function<std::vector<Property>(UrlId)> m_load;
    QTreeWidget *m_list = nullptr;
    QPlainTextEdit *m_whole = nullptr;
    QSplitter *m_splitter = nullptr;
    QList<int> m_sizesBefore; ///< of the splitter, before room was made for an answer
    QPushButton *m_why = nullptr;
    QPushButton *m_bytes = nullptr;
    QLineEdit *m_filter = nullptr;
    QCheckBox *m_empty = nullptr;
    QLabel *m_count = nullptr;
    std::vector<Property> m_properties; ///< all of them
    std::vector<std::size_t> m_shown;   ///< places among them, in the order of the list
    QString m_chosen;
};

} // namespace nv
