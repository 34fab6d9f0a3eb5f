#pragma once

#include <QString>
#include <functional>

namespace vantrel {

// What bringing the books on a server to this program's server version did.
struct ServerUpgrade {
    int from = 0; // the server version the books were at
    int to = 0;   // the version they are at now
    bool upgraded() const { return from != to; }
    // One line for the status line; empty when nothing was upgraded.
    QString notice() const;
};

// Brings the books CONNECTION names to CurrentServerSchemaVersion. Current books are left
// untouched. Older ones wait until no other program is connected to their database: WAITING
// hears who is still there, and returns when it is time to look again (a second later, say) or
// false to give up (UnhandledError then, nothing changed); then every missing step runs in one transaction that holds the
// record of the version, so that a program starting meanwhile waits and then finds the books
// current, and a failure or a kill leaves the books as they were. Needs the books' owner (the
// steps make functions and indexes). Throws UnhandledError, nothing changed, for books newer
// than this program, or when the server refuses a step.
ServerUpgrade bringServerToCurrentSchema(const QString &connection, const std::function<bool(const QString &waitingFor)> &waiting);

} // namespace vantrel
