#pragma once

#include "db/schema/Ids.h"

#include <string>
#include <string_view>

namespace nv {

/// The seven digits that name a record in rebuilt pages: the last seven of its key. A key above
/// 9,999,999 loses its leading ones.
std::string sidOf(UrlId id);

/// The name of a rebuilt page within its folder: "0000017.htm".
std::string pageNameOf(UrlId id);

/// The name of the folder that a page is rebuilt in: "0000017.NVR".
std::string folderNameOf(UrlId id);

/// In that folder, the list of the parts that lie in it, in the form of a substitution log.
inline constexpr std::string_view kPartsList = "_TagIDs.txt";

/// In the Temp folder, the copy of the page in hand.
inline constexpr std::string_view kPageCopy = "~tmp";

/// The name of a cached part within the folder of a rebuilt page, made of its record's key, so that
/// it says where the part comes from: "0000017.gif". An extension is taken when it is 1 to 4 ASCII
/// letters or digits: a name can't lead out of its folder.
std::string localNameOf(UrlId id, std::string_view extension);

} // namespace nv
