#include "editlogchain.h"

#include "enginestatement.h"
#include "unhandlederror.h"

#include <QCryptographicHash>
#include <sqlite3.h>

namespace vantrel {

EntryField fieldOf(sqlite3_value *value)
{
    const int type = sqlite3_value_type(value);
    if (type == SQLITE_NULL)
        return {'N', QByteArray()};
    return {type == SQLITE_INTEGER ? 'I' : 'T', QByteArray(reinterpret_cast<const char *>(sqlite3_value_text(value)), sqlite3_value_bytes(value))};
}

EntryFields entryFields(sqlite3_stmt *row)
{
    EntryFields entry;
    for (int i = 0; i < 8; ++i)
        entry[i] = fieldOf(sqlite3_column_value(row, i));
    return entry;
}

QByteArray chainHash(const QByteArray &previous, const EntryFields &entry)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(previous);
    for (const EntryField &field : entry) {
        // Each field as its kind, its length and its text: no two entries read alike.
        hash.addData(QByteArray(1, field.kind) + QByteArray::number(field.text.size()) + ':');
        hash.addData(field.text);
    }
    return hash.result().toHex();
}

QByteArray tableDigest(sqlite3 *db, const LoggedTable &table)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    EngineStatement rows(db, rowsAsLoggedText(table));
    if (!rows.prepared())
        throw UnhandledError(QStringLiteral("Cannot read %1 for the edit log: %2").arg(table.name, QString::fromUtf8(sqlite3_errmsg(db))));
    while (rows.step() == SQLITE_ROW) {
        hash.addData(QByteArray::number(sqlite3_column_int64(rows.get(), 0)) + '\x1f');
        hash.addData(QByteArrayView(reinterpret_cast<const char *>(sqlite3_column_text(rows.get(), 1)), sqlite3_column_bytes(rows.get(), 1)));
        hash.addData(QByteArrayView("\n"));
    }
    return hash.result().toHex();
}

} // namespace vantrel
