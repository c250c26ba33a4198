#include "calendar/sqlrecord.h"

#include <QSqlError>
#include <QSqlRecord>

#include <cmath>
#include <limits>

namespace RecordValue {

QString text(const QVariant &v)
{
    if (v.isNull())
        throw FieldError(QStringLiteral("valeur nulle"));
    return v.toString();
}

qint32 integer(const QVariant &v)
{
    if (v.isNull())
        throw FieldError(QStringLiteral("valeur nulle"));
    bool ok = false;
    qint64 n = v.toLongLong(&ok);
    if (!ok) {
        const double d = v.toDouble(&ok);
        if (!ok || !std::isfinite(d))
            throw FieldError(QStringLiteral("nombre attendu : ") + v.toString());
        // Rounding to the even number, as an integer column does.
        n = static_cast<qint64>(std::nearbyint(d));
    }
    if (n < std::numeric_limits<qint32>::min() || n > std::numeric_limits<qint32>::max())
        throw FieldError(QStringLiteral("dépassement de capacité : ") + v.toString());
    return static_cast<qint32>(n);
}

bool flag(const QVariant &v)
{
    if (v.typeId() == QMetaType::Bool)
        return v.toBool();
    return integer(v) != 0;
}

QDateTime zeroDate()
{
    return QDateTime(QDate(1899, 12, 30), QTime(0, 0));
}

QDateTime dateTime(const QVariant &v)
{
    if (v.isNull())
        throw FieldError(QStringLiteral("valeur nulle"));
    QDateTime d;
    if (v.typeId() == QMetaType::QDateTime) {
        d = v.toDateTime();
    } else if (v.typeId() == QMetaType::QDate) {
        d = QDateTime(v.toDate(), QTime(0, 0));
    } else {
        const QString s = v.toString().trimmed();
        d = QDateTime::fromString(s, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        if (!d.isValid())
            d = QDateTime::fromString(s, Qt::ISODate);
        if (!d.isValid()) {
            const QDate j = QDate::fromString(s, Qt::ISODate);
            if (j.isValid())
                d = QDateTime(j, QTime(0, 0));
        }
    }
    if (!d.isValid())
        throw FieldError(QStringLiteral("date attendue : ") + v.toString());
    if (d == zeroDate())
        return {};
    return d;
}

QString isoText(const QDateTime &d)
{
    return (d.isValid() ? d : zeroDate()).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace RecordValue

MemoryRecord::MemoryRecord(QStringList columns)
    : m_columns(std::move(columns))
    , m_values(m_columns.size())
{
}

qsizetype MemoryRecord::indexOf(const QString &name) const
{
    for (qsizetype i = 0; i < m_columns.size(); ++i) {
        if (m_columns.at(i).compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QVariant MemoryRecord::field(const QString &name) const
{
    const qsizetype i = indexOf(name);
    if (i < 0)
        throw FieldError(QStringLiteral("colonne inconnue : ") + name);
    return m_values.at(i);
}

void MemoryRecord::setField(const QString &name, const QVariant &value)
{
    const qsizetype i = indexOf(name);
    if (i < 0)
        throw FieldError(QStringLiteral("colonne inconnue : ") + name);
    m_values[i] = value;
    m_writeOrder.append(name);
}

QueryCursor::QueryCursor(QSqlQuery query)
    : m_query(std::move(query))
{
    m_record = m_query.record();
    m_valid = m_query.next();
}

QVariant QueryCursor::field(const QString &name) const
{
    const int i = m_record.indexOf(name);
    if (i < 0 || !m_valid)
        throw FieldError(QStringLiteral("colonne inconnue : ") + name);
    return m_query.value(i);
}

void QueryCursor::next()
{
    if (m_valid)
        m_valid = m_query.next();
}

std::unique_ptr<RecordCursor> DatabaseConnection::execute(const QString &sql)
{
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    if (!q.exec(sql))
        throw FieldError(q.lastError().text());
    return std::make_unique<QueryCursor>(std::move(q));
}
