#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QPair>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <optional>
#include <stdexcept>

// Rows reached by column name, as the calendar's record mapping reads and
// writes them. A name the row does not have, or a value that cannot go into
// the member it is meant for, throws FieldError: the mapping catches it for
// the whole record, so a bad row is skipped rather than half read.
class FieldError final : public std::runtime_error
{
public:
    explicit FieldError(const QString &what)
        : std::runtime_error(what.toStdString())
    {
    }
};

// The current row of a result, read by name.
class RecordSource
{
public:
    virtual ~RecordSource() = default;
    [[nodiscard]] virtual bool atEnd() const = 0;
    // Throws FieldError when the row has no such column.
    [[nodiscard]] virtual QVariant field(const QString &name) const = 0;
};

// A row being filled, written by name.
class RecordSink
{
public:
    virtual ~RecordSink() = default;
    // Throws FieldError when the row has no such column.
    virtual void setField(const QString &name, const QVariant &value) = 0;
};

// A result that can be walked forward.
class RecordCursor : public RecordSource
{
public:
    virtual void next() = 0;
};

// Something that runs a statement and hands back its rows.
class RecordConnection
{
public:
    virtual ~RecordConnection() = default;
    // Throws FieldError when the statement fails.
    [[nodiscard]] virtual std::unique_ptr<RecordCursor> execute(const QString &sql) = 0;
};

// Strict conversions of a column value to a member. Null, or text that is
// not a number or a date, throws FieldError.
namespace RecordValue {
[[nodiscard]] QString text(const QVariant &v);
[[nodiscard]] qint32 integer(const QVariant &v);
[[nodiscard]] bool flag(const QVariant &v); // true when the number is not 0
[[nodiscard]] QDateTime dateTime(const QVariant &v);
// The calendar's zero date (day 0 of the date count) stands for "no date".
[[nodiscard]] QDateTime zeroDate();
// "yyyy-MM-dd HH:mm:ss", the zero date for an invalid value.
[[nodiscard]] QString isoText(const QDateTime &d);
// The stores' own text of a date-time, exactly "yyyy-MM-dd HH:mm:ss" (digits
// only, a real date and time of day), read without the general parser: a week
// of the calendar holds hundreds of them. False for any other text (the caller
// then falls back on dateTime()).
[[nodiscard]] bool parseIsoText(QLatin1StringView text, QDate &date, QTime &time);
[[nodiscard]] bool parseIsoText(QStringView text, QDate &date, QTime &time);
} // namespace RecordValue

// A row held in memory, with a fixed list of columns in order. Used to fill
// the bound values of a statement and, in tests, to stand for a server row.
class MemoryRecord final : public RecordSource, public RecordSink
{
public:
    explicit MemoryRecord(QStringList columns = {});

    [[nodiscard]] bool atEnd() const override { return m_atEnd; }
    [[nodiscard]] QVariant field(const QString &name) const override;
    void setField(const QString &name, const QVariant &value) override;

    void setAtEnd(bool atEnd) { m_atEnd = atEnd; }
    [[nodiscard]] const QStringList &columns() const { return m_columns; }
    [[nodiscard]] const QList<QVariant> &values() const { return m_values; }
    // Names in the order in which setField was called (repeats kept).
    [[nodiscard]] const QStringList &writeOrder() const { return m_writeOrder; }

private:
    [[nodiscard]] qsizetype indexOf(const QString &name) const;
    QStringList m_columns;
    QList<QVariant> m_values;
    QStringList m_writeOrder;
    bool m_atEnd = false;
};

// Rows held in memory, walked as a result.
class MemoryCursor final : public RecordCursor
{
public:
    explicit MemoryCursor(QList<MemoryRecord> rows)
        : m_rows(std::move(rows))
    {
    }
    [[nodiscard]] bool atEnd() const override { return m_position >= m_rows.size(); }
    [[nodiscard]] QVariant field(const QString &name) const override
    {
        if (atEnd())
            throw FieldError(QStringLiteral("fin des lignes"));
        return m_rows.at(m_position).field(name);
    }
    void next() override { ++m_position; }

private:
    QList<MemoryRecord> m_rows;
    qsizetype m_position = 0;
};

// A connection that answers every statement with the same rows: a question
// already answered by an earlier, wider read.
class FixedRowsConnection final : public RecordConnection
{
public:
    explicit FixedRowsConnection(QList<MemoryRecord> rows)
        : m_rows(std::move(rows))
    {
    }
    [[nodiscard]] std::unique_ptr<RecordCursor> execute(const QString &) override { return std::make_unique<MemoryCursor>(m_rows); }

private:
    QList<MemoryRecord> m_rows;
};

// A forward-only query result seen as a cursor: it owns the query, or walks
// one that its owner keeps prepared.
class QueryCursor final : public RecordCursor
{
public:
    explicit QueryCursor(QSqlQuery &&query);
    explicit QueryCursor(QSqlQuery *borrowed);
    [[nodiscard]] bool atEnd() const override { return !m_valid; }
    [[nodiscard]] QVariant field(const QString &name) const override;
    void next() override;

private:
    void start();
    std::optional<QSqlQuery> m_owned;
    QSqlQuery *m_query = nullptr;
    // Column positions by name, as the result names them.
    QHash<QString, int> m_columns;
    bool m_valid = false;
};

// A Qt database connection seen as a RecordConnection.
class DatabaseConnection final : public RecordConnection
{
public:
    explicit DatabaseConnection(QSqlDatabase db)
        : m_db(std::move(db))
    {
    }
    [[nodiscard]] std::unique_ptr<RecordCursor> execute(const QString &sql) override;

private:
    QSqlDatabase m_db;
};
