#pragma once

#include <string>

namespace nv {

enum class Answer { Ok, Yes, No, Cancel };
enum class Choices { Ok, YesNo, YesNoCancel };
enum class Tone { Information, Warning, Error };

/// A message box. `id` names it for scripts and tests; the texts stand as the program shows them.
struct Message {
    std::string id;
    std::string title;
    std::string text;
    Choices choices = Choices::Ok;
    Tone tone = Tone::Warning;
    /// The answer when nobody is there to give one.
    Answer unattended = Answer::Ok;
    /// What its buttons say in place of "Yes" and "No", with "&" before a letter; may be empty.
    std::string yes = {}; ///< where it isn't, Enter takes it
    std::string no = {};
};

/// Whoever sits before the program. Only commands talk to the examiner; readers, the database and
/// rebuilding never do.
class Examiner {
  public:
    virtual ~Examiner() = default;
    virtual Answer ask(const Message &message) = 0;
    void tell(const Message &message) { ask(message); }
};

} // namespace nv
