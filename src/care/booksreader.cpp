#include "booksreader.h"

#include "data/serverconnection.h"
#include "data/shortdate.h"
#include "data/sqlfunctions.h"
#include "serversession.h"
#include "sqlitefile.h"

namespace vantrel {

void BooksReader::eachRow(const QString &sql, const std::function<void(const BookRow &)> &row)
{
    const std::unique_ptr<BookRows> found = rows(sql);
    while (found->next())
        row(*found);
}

QStringList BooksReader::firstColumn(const QString &sql)
{
    QStringList values;
    eachRow(sql, [&](const BookRow &row) { values << row.text(0); });
    return values;
}

double BooksReader::number(const QString &sql)
{
    const std::unique_ptr<BookRows> found = rows(sql);
    return found->next() ? found->number(0) : 0;
}

std::unique_ptr<BooksReader> openBooksReader(const QString &connection)
{
    if (isServerConnection(connection))
        return std::make_unique<ServerSession>(connection);
    auto file = std::make_unique<SqliteFile>(connection, SqliteFile::Access::ReadOnly);
    registerSqlFunctions(file->handle(), ShortDate()); // the statements' cdate and format, as on the server
    return file;
}

} // namespace vantrel
