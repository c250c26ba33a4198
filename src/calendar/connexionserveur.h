#pragma once

#include "calendar/sqlrecord.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

// One connection to a database server through a Qt driver (QODBC for the
// ODBC names the user types, QMYSQL for our own MariaDB store), under a
// connection name of its own so that two stores never share one. Statements
// are sent as they are given.
class ConnexionServeur final : public RecordConnection
{
public:
    explicit ConnexionServeur(QString driver);
    ~ConnexionServeur() override;
    ConnexionServeur(const ConnexionServeur &) = delete;
    ConnexionServeur &operator=(const ConnexionServeur &) = delete;

    // Opens with the given connection text (QODBC: "DSN=...", passed on to
    // the driver manager as typed), user and password. On failure the
    // driver's words are in lastError().
    bool ouvrir(const QString &connexion, const QString &user = {}, const QString &password = {},
                const QString &host = {}, int port = 0, const QString &options = {});
    void fermer();
    [[nodiscard]] bool estOuverte() const;
    [[nodiscard]] QSqlDatabase db() const;
    [[nodiscard]] const QString &lastError() const { return m_lastError; }
    void noterErreur(const QString &texte) { m_lastError = texte; }

    // Runs a statement that gives no rows; throws FieldError with the
    // driver's words when it fails.
    void executer(const QString &sql);
    // Runs a statement and walks its rows; throws FieldError likewise.
    [[nodiscard]] std::unique_ptr<RecordCursor> execute(const QString &sql) override;

private:
    QString m_driver;
    QString m_nom;
    QString m_lastError;
};

// A row set opened on a statement, for writing: the columns are those of the
// statement's result, and the current row is its first row when it has one.
// AddNew starts a new row; Update writes the current row (an insert for a
// new one, an update by key otherwise) with the fields set since. A field set
// when there is no current row throws FieldError, and Update then fails.
class RecordsetServeur final : public RecordSink
{
public:
    RecordsetServeur(ConnexionServeur &connexion, QString table, QString keyColumn);

    // Throws FieldError when the statement fails.
    void Open(const QString &sql);
    void AddNew();
    void setField(const QString &name, const QVariant &value) override;
    // Writes the row; false with the driver's words in lastError().
    bool Update();
    void Close();

    [[nodiscard]] const QStringList &columns() const { return m_columns; }
    [[nodiscard]] const QString &lastError() const { return m_lastError; }

private:
    ConnexionServeur &m_connexion;
    QString m_table;
    QString m_keyColumn;
    QStringList m_columns;
    QStringList m_set;
    QList<QVariant> m_values;
    QVariant m_key;
    bool m_hasRow = false;
    bool m_new = false;
    QString m_lastError;
};
