#pragma once

#include "base/Examiner.h"

#include <string>
#include <string_view>
#include <utility>

// The kinds of message boxes that there are, for the tables of their texts.
namespace nv::messages {

inline Message notice(std::string id, std::string title, std::string text,
                      Tone tone = Tone::Warning) {
    return {std::move(id), std::move(title), std::move(text), Choices::Ok, tone, Answer::Ok};
}

inline Message failure(std::string id, std::string title, std::string_view reason) {
    return notice(std::move(id), std::move(title), std::string(reason), Tone::Error);
}

inline Message question(std::string id, std::string title, std::string text, Answer unattended,
                        Tone tone = Tone::Information) {
    return {std::move(id), std::move(title), std::move(text), Choices::YesNo, tone, unattended};
}

} // namespace nv::messages
