#pragma once

#include "base/KeyedList.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// One entry of a list of favourite queries. The members' order is that of `Favorites::Add`.
struct FavoriteClass {
    std::string QueryDescription;
    bool Protected = false;
    std::int16_t MaskValue = 0;
    std::int32_t QUERY_ID = 0;
    std::int16_t Index = 0;
    std::string QueryDefinition;
    std::string INIFilePath; ///< the list that the entry is from
    std::string Locale;
    std::string FavoriteName;

    bool operator==(const FavoriteClass &) const = default;
};

/// The favourites as they will be managed one day: no window shows them yet and no file is read,
/// since the format of "favorites.ini" isn't settled.
class Favorites : public KeyedList<FavoriteClass> {
  public:
    using KeyedList::add;
    /// By its members, with a key at the end; an empty key adds the entry without one.
    FavoriteClass &Add(std::string QueryDescription, bool Protected, std::int16_t MaskValue,
                       std::int32_t QUERY_ID, std::int16_t Index, std::string QueryDefinition,
                       std::string INIFilePath, std::string Locale, std::string FavoriteName,
                       std::string_view key = {}) {
        return add(FavoriteClass{std::move(QueryDescription), Protected, MaskValue, QUERY_ID, Index,
                                 std::move(QueryDefinition), std::move(INIFilePath),
                                 std::move(Locale), std::move(FavoriteName)},
                   key);
    }
};

} // namespace nv
