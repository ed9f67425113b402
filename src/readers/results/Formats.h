#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kHistExIndexFormat;
extern const Reader kNetAnalysisFormat;
extern const Reader kNvdFormat;
extern const Reader kHistExFormat;
extern const Reader kSimpleHtmlFormat;
extern const Reader kCsvFormat;

} // namespace nv
