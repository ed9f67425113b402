#include "markup/WordSet.h"

#include "base/Text.h"

namespace nv {

WordSet wordSetOf(std::string_view list) {
    WordSet words;
    for (const std::string_view word : split(list, ' '))
        words.insert(word);
    return words;
}

} // namespace nv
