#include "cli/Argument.h"

#include <type_traits>

namespace nv::cli {

namespace {

template <class Value>
bool holds(const Argument &argument) {
    return std::holds_alternative<Value>(argument.target);
}

} // namespace

Argument Argument::required() && {
    isRequired = true;
    return std::move(*this);
}

Argument Argument::from1() && {
    isFrom1 = true;
    return std::move(*this);
}

Argument Argument::saidForEach() && {
    isSaidAgain = true;
    return std::move(*this);
}

Argument Argument::separatedByCommas() && {
    hasCommas = true;
    return std::move(*this);
}

Argument Argument::oneOf(std::vector<std::string> words) && {
    choices = std::move(words);
    return std::move(*this);
}

Argument Argument::showingDefault() && {
    if (const auto *const *text = std::get_if<std::string *>(&target))
        standard = **text;
    else if (const auto *const *number = std::get_if<int *>(&target))
        standard = std::to_string(**number);
    else if (const auto *const *wide = std::get_if<std::int64_t *>(&target))
        standard = std::to_string(**wide);
    return std::move(*this);
}

Argument Argument::needing(std::string_view option) && {
    needs = option;
    return std::move(*this);
}

std::string_view typeName(const Argument &argument) {
    if (holds<bool *>(argument) || holds<std::optional<bool> *>(argument))
        return {};
    if (holds<Choice>(argument))
        return "ENUM";
    return holds<std::string *>(argument) || holds<std::optional<std::string> *>(argument) ||
                   holds<std::vector<std::string> *>(argument)
               ? "TEXT"
               : "INT";
}

bool isList(const Argument &argument) {
    return holds<std::vector<std::string> *>(argument) ||
           holds<std::vector<std::int64_t> *>(argument);
}

bool isWord(const Argument &argument) {
    return !argument.name.starts_with('-');
}

} // namespace nv::cli
