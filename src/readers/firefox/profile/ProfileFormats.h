#pragma once

#include "readers/Reader.h"

namespace nv {

// Databases of a profile beside its history and its cookies.

extern const Reader kFirefoxFormsFormat;
extern const Reader kFirefoxPermissionsFormat;
extern const Reader kFirefoxLoginsFormat;
extern const Reader kFirefoxFaviconsFormat;
extern const Reader kFirefoxDownloadsFormat;

} // namespace nv
