#pragma once

// Helpers shared by the store's own sources.

#include "store/Database.h"

#include <QDate>
#include <QVariant>

namespace vm::store {

// Rolls back unless committed, so that every early return of a multi-table change leaves the tables as they were.
class Transaction
{
public:
    explicit Transaction(Database &db)
        : m_db(db)
        , m_active(db.begin())
    { }
    ~Transaction()
    {
        if (m_active)
            m_db.rollback();
    }
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    bool active() const { return m_active; }
    bool commit()
    {
        m_active = false;
        return m_db.commit();
    }

private:
    Database &m_db;
    bool m_active;
};

// Dates are kept as ISO text; an invalid date is NULL.
inline QVariant dateValue(const QDate &date)
{
    return date.isValid() ? QVariant(date.toString(Qt::ISODate)) : QVariant(QMetaType(QMetaType::QString));
}

inline QDate toDate(const QVariant &value)
{
    return value.isNull() ? QDate() : QDate::fromString(value.toString().left(10), Qt::ISODate);
}

} // namespace vm::store
