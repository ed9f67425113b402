#pragma once

#include "base/KeyedList.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// One entry of a list of favourite queries. The members' order is that of `Favorites::Add`.
struct Favorite {
    std::string queryDescription;
    bool isProtected = false;
    std::int16_t maskValue = 0;
    std::int32_t queryID = 0;
    std::int16_t index = 0;
    std::string queryDefinition;
    std::string iniFilePath; ///< the list that the entry is from
    std::string locale;
    std::string favoriteName;

    bool operator==(const Favorite &) const = default;
};

/// The favourites as they will be managed one day: no window shows them yet and no file is read,
/// since the format of "favorites.ini" isn't settled.
class Favorites : public KeyedList<Favorite> {
  public:
    using KeyedList::add;
    /// By its members, with a key at the end; an empty key adds the entry without one.
    Favorite &add(std::string queryDescription, bool isProtected, std::int16_t maskValue,
                  std::int32_t queryID, std::int16_t index, std::string queryDefinition,
                  std::string iniFilePath, std::string locale, std::string favoriteName,
                  std::string_view key = {}) {
        return add(Favorite{std::move(queryDescription), isProtected, maskValue, queryID, index,
                            std::move(queryDefinition), std::move(iniFilePath), std::move(locale),
                            std::move(favoriteName)},
                   key);
    }
};

} // namespace nv
