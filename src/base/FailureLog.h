#pragma once

#include <string>
#include <string_view>

namespace nv {

enum class Severity { Warning, Serious, Critical, Low };

/// The word that the log shows: "Warning", "Serious", "Critical", "Low".
std::string_view severityWord(Severity severity);

inline constexpr std::string_view kContactSupport =
    "Please contact technical support if this error re-occurs";
inline constexpr std::string_view kNotSerious = "This is not a serious error.";

/// One entry of the log of trapped failures. `procedure` is "Object.Proc()".
struct Failure {
    std::string message;
    std::string procedure;
    Severity severity = Severity::Warning;
    std::string recommendation;
};

/// Where trapped failures go. Writing never throws: a log that can't be written must not end an
/// import.
class FailureLog {
  public:
    virtual ~FailureLog() = default;
    virtual void write(const Failure &failure) = 0;
};

} // namespace nv
