#pragma once

#include <string>

namespace nv {

class FactList;
struct UrlRecord;

/// The head of the answer that a record is made of, with its status line and without what a cache
/// keeps around it: out of its headers, or out of its facts, where the rows of Chrome's first cache
/// have it. Empty when there is none.
std::string answerHeadOf(const UrlRecord &record, const FactList &facts);

} // namespace nv
