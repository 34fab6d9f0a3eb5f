#pragma once

#include <QString>
#include <stdexcept>

namespace vantrel {

// An error that no screen handles: a statement the database rejects, a printer that cannot be
// opened, a number that overflows. Thrown by the shared layers; caught only at the edge of an
// event handler, which hands the message to the program's fatal-error handler.
class UnhandledError : public std::runtime_error {
public:
    explicit UnhandledError(const QString &message)
        : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString &message() const { return m_message; }

private:
    QString m_message;
};

// The connection to the books' server was lost in the middle of a statement: the action ends
// there, as it would on any error, but the program need not: Database::reconnect() brings the
// books back once the server answers again.
class ServerLost : public UnhandledError {
public:
    using UnhandledError::UnhandledError;
};

} // namespace vantrel
