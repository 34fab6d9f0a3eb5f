#pragma once

#include <QString>

namespace vantrel {

// The program's message boxes: plain information with an OK button, and Yes/No questions.
// Injectable so that tests script the answers and read the messages.
class Dialogs {
public:
    virtual ~Dialogs() = default;
    virtual void inform(const QString &message) = 0;
    // True only when the operator answers Yes; No is the default answer.
    virtual bool ask(const QString &question) = 0;
};

} // namespace vantrel
