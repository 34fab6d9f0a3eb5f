#pragma once

#include <QString>
#include <QStringList>

namespace vantrel {

// The form in which a statement of the system is sent to the server, giving the rows, in the
// order, that the file gives for it as it stands (see engineForm() for the file's). What stands
// between quotes is a value and is never rewritten.
//
// - "a x right join b y on" runs as "b y left join a x on", as on the file.
// - "[Name]" is the quoted name "Name"; the system's format is the server's vformat (the server
//   has a format of its own).
// - A sum of a figure adds the figures' values as the file's arithmetic reads them (FIGURE__n).
// - A select from one table gives its rows in the file's order: the order they came in (so that
//   "the first row" is the file's), or by the name a prefix search walks; a star names T's own
//   columns.
// - A grouped statement with no order gives its groups in the order of its grouping, as the file
//   does.
// - A register's date span converts each distinct date once, as the file's form does.
// - A like has no escape character, as on the file.
QString serverForm(const QString &sql);

// Whether anything but blanks follows the statement's first ';' outside quotes: the file's driver
// refuses such a text ("Unable to execute multiple statements at a time"), and so does the program
// on the server, which would run them all.
bool hasSecondStatement(const QString &sql);

// The names the file gives the columns of a query as the system writes it: an alias as written,
// a plain column as the statement writes it, a star its table's columns, any other expression its
// text. Empty when the statement is not a plain select the names can be read from.
QStringList fileColumnNames(const QString &sql);

} // namespace vantrel
