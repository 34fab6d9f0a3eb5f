#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

namespace vantrel {

// One result row; valid only while its rows stand on it.
class BookRow {
public:
    virtual ~BookRow() = default;
    virtual bool isNull(int column) const = 0;
    virtual QString text(int column) const = 0;
    QByteArray bytes(int column) const { return text(column).toUtf8(); }
    virtual double number(int column) const = 0;
    virtual qint64 integer(int column) const = 0;
    // The value's kind as the file names its storage classes: "integer", "real", "text", "blob", "null".
    virtual QString type(int column) const = 0;
};

// The rows of one statement, read in turn: next() moves onto the first row, then each after it,
// and is false past the last.
class BookRows : public BookRow {
public:
    virtual bool next() = 0;
};

// The books read straight, for what looks after them (the check, the moves, the year's close),
// not for the screens: the file, or the books on a server, whose statements each engine writes
// its own way where onServer() says so. Every failure throws UnhandledError naming the books,
// the statement and the engine's message. Several rows may be open at once.
class BooksReader {
public:
    virtual ~BooksReader() = default;
    virtual bool onServer() const = 0;
    virtual std::unique_ptr<BookRows> rows(const QString &sql) = 0;

    void eachRow(const QString &sql, const std::function<void(const BookRow &)> &row);
    // The first column of every row, as text (the integrity check's lines, say).
    QStringList firstColumn(const QString &sql);
    // The first column of the first row as a number; 0 when there is no row or it is null.
    double number(const QString &sql);
};

// The books CONNECTION names (the file's connection string or path, or a server), opened to be
// read only, with the statements' functions (cdate, format); on the server, every statement
// reads the books as they stood when it was opened.
std::unique_ptr<BooksReader> openBooksReader(const QString &connection);

} // namespace vantrel
