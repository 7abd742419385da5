#pragma once

// Writes straight into a database file that no Database holds, the way a user with the sqlite3 shell (or a
// damaged program) would: to prepare states the store's own functions never make.

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

namespace vm::test {

inline QString runRawSql(const QString &path, const QStringList &statements, QVariant *firstValue = nullptr)
{
    const QString name = QStringLiteral("raw-sql");
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (!db.open()) {
            error = db.lastError().text();
        } else {
            QSqlQuery q(db);
            for (const QString &sql : statements) {
                if (!q.exec(sql)) {
                    error = sql + QStringLiteral(": ") + q.lastError().text();
                    break;
                }
                if (firstValue && q.next())
                    *firstValue = q.value(0);
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return error;
}

// The first value the statement yields, or the error text.
inline QVariant rawValue(const QString &path, const QString &sql)
{
    QVariant value;
    const QString error = runRawSql(path, { sql }, &value);
    return error.isEmpty() ? value : QVariant(error);
}

} // namespace vm::test
