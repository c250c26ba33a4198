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
    if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString();
        QDate j;
        QTime h;
        if (parseIsoText(QStringView(s), j, h))
            return j == QDate(1899, 12, 30) && h == QTime(0, 0) ? QDateTime() : QDateTime(j, h);
    }
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

namespace {

template<typename Texte>
bool lireIso(const Texte &s, QDate &date, QTime &time)
{
    auto c = [&](int i) { return QChar(s[i]).unicode(); };
    if (s.size() != 19 || c(4) != u'-' || c(7) != u'-' || c(10) != u' ' || c(13) != u':' || c(16) != u':')
        return false;
    bool chiffres = true;
    auto n = [&](int from, int len) {
        int r = 0;
        for (int i = from; i < from + len; ++i) {
            const char16_t k = c(i);
            if (k < u'0' || k > u'9')
                chiffres = false;
            r = r * 10 + int(k - u'0');
        }
        return r;
    };
    const QDate j(n(0, 4), n(5, 2), n(8, 2));
    const int heure = n(11, 2);
    const int minute = n(14, 2);
    const int seconde = n(17, 2);
    if (!chiffres || !j.isValid() || !QTime::isValid(heure, minute, seconde))
        return false;
    date = j;
    time = QTime(heure, minute, seconde);
    return true;
}

} // namespace

bool parseIsoText(QLatin1StringView text, QDate &date, QTime &time)
{
    return lireIso(text, date, time);
}

bool parseIsoText(QStringView text, QDate &date, QTime &time)
{
    return lireIso(text, date, time);
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

QueryCursor::QueryCursor(QSqlQuery &&query)
    : m_owned(std::move(query))
    , m_query(&*m_owned)
{
    start();
}

QueryCursor::QueryCursor(QSqlQuery *borrowed)
    : m_query(borrowed)
{
    start();
}

void QueryCursor::start()
{
    const QSqlRecord r = m_query->record();
    for (int i = 0; i < r.count(); ++i)
        m_columns.insert(r.fieldName(i), i);
    m_valid = m_query->next();
}

QVariant QueryCursor::field(const QString &name) const
{
    int i = m_columns.value(name, -1);
    if (i < 0) {
        // Servers may spell a column in another case.
        for (auto it = m_columns.cbegin(); it != m_columns.cend() && i < 0; ++it) {
            if (it.key().compare(name, Qt::CaseInsensitive) == 0)
                i = it.value();
        }
    }
    if (i < 0 || !m_valid)
        throw FieldError(QStringLiteral("colonne inconnue : ") + name);
    return m_query->value(i);
}

void QueryCursor::next()
{
    if (m_valid)
        m_valid = m_query->next();
}

std::unique_ptr<RecordCursor> DatabaseConnection::execute(const QString &sql)
{
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    if (!q.exec(sql))
        throw FieldError(q.lastError().text());
    return std::make_unique<QueryCursor>(std::move(q));
}
