#pragma once

#include "base/ByteView.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

namespace nv {

// Property lists in XML form:
//   dict = { key value }    array = { value }    value = string | integer | real | dict | array ...

/// A property list that is none, or is more than this program takes; the message says why.
class PropertyListDamage : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// True for the later, binary form.
bool isBinaryPropertyList(ByteView head);

/// A property list as a tree. Its document type and its entities are passed over: nothing is
/// fetched for them, no file is read, and "&name;" stays as it stands.
class PropertyList {
  public:
    /// Throws PropertyListDamage when there is nothing to read in it, when it is longer than
    /// `mostBytes` or deeper than limits::kPropertyListDepth.
    PropertyList(std::string_view xml, std::size_t mostBytes);

    /// What ended the reading before the end, and where; empty when nothing did. Only the `dict`
    /// elements that had ended before are whole; no value that was cut is in the tree.
    const std::string &damage() const { return m_damage; }
    /// `dict` elements that begin after what was read.
    std::uint64_t dictsNotReached() const { return m_dictsNotReached; }

    /// All `array` elements, in the order of the document.
    pugi::xpath_node_set arrays() const { return m_document.select_nodes("//array"); }
    const pugi::xml_document &document() const { return m_document; }

  private:
    void readUntilDamage(std::string_view xml, const pugi::xml_parse_result &result);
    void checkDepth();

    pugi::xml_document m_document;
    std::string m_damage;
    std::uint64_t m_dictsNotReached = 0;
};

/// The text that stands directly in an element, trimmed of nothing.
std::string textOf(pugi::xml_node element);

/// Calls `take` for each key of a `dict` that has a value. The value of a key is the element that
/// follows it; white space between them may be there or not.
void eachValue(pugi::xml_node dict,
               const std::function<void(std::string_view key, pugi::xml_node value)> &take);

} // namespace nv
