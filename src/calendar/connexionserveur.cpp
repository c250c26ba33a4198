#include "calendar/connexionserveur.h"

#include <QAtomicInt>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace {

QString nomUnique()
{
    static QAtomicInt compteur;
    return QStringLiteral("tavonel-serveur-%1").arg(compteur.fetchAndAddRelaxed(1) + 1);
}

QString texteErreur(const QSqlError &e)
{
    const QString driver = e.driverText().trimmed();
    const QString base = e.databaseText().trimmed();
    if (base.isEmpty())
        return driver;
    if (driver.isEmpty())
        return base;
    return base + QLatin1Char(' ') + driver;
}

// Qt's ODBC driver puts "DSN=" in front of a string that names neither a
// driver nor a server: a string typed as "DSN=Calendar_MySQL" is handed to it
// without its own "DSN=", so that the driver manager gets it as typed.
QString texteOdbc(const QString &driver, const QString &connexion)
{
    if (driver != QLatin1String("QODBC") || connexion.contains(QLatin1String("DRIVER="), Qt::CaseInsensitive)
        || connexion.contains(QLatin1String("SERVER="), Qt::CaseInsensitive)
        || connexion.contains(QLatin1String(".dsn"), Qt::CaseInsensitive))
        return connexion;
    const QString t = connexion.trimmed();
    return t.startsWith(QLatin1String("DSN="), Qt::CaseInsensitive) ? t.mid(4) : t;
}

} // namespace

ConnexionServeur::ConnexionServeur(QString driver)
    : m_driver(std::move(driver))
    , m_nom(nomUnique())
{
}

ConnexionServeur::~ConnexionServeur()
{
    fermer();
}

bool ConnexionServeur::ouvrir(const QString &connexion, const QString &user, const QString &password, const QString &host,
                              int port, const QString &options)
{
    fermer();
    m_lastError.clear();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(m_driver, m_nom);
        if (!db.isValid()) {
            m_lastError = QStringLiteral("pilote %1 absent").arg(m_driver);
        } else {
            db.setDatabaseName(texteOdbc(m_driver, connexion));
            db.setUserName(user);
            db.setPassword(password);
            if (!host.isEmpty())
                db.setHostName(host);
            if (port > 0)
                db.setPort(port);
            if (!options.isEmpty())
                db.setConnectOptions(options);
            if (db.open())
                return true;
            m_lastError = texteErreur(db.lastError());
        }
    }
    QSqlDatabase::removeDatabase(m_nom);
    return false;
}

void ConnexionServeur::fermer()
{
    if (!QSqlDatabase::contains(m_nom))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_nom, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_nom);
}

bool ConnexionServeur::estOuverte() const
{
    return QSqlDatabase::contains(m_nom) && QSqlDatabase::database(m_nom, false).isOpen();
}

QSqlDatabase ConnexionServeur::db() const
{
    return QSqlDatabase::database(m_nom, false);
}

void ConnexionServeur::executer(const QString &sql)
{
    QSqlQuery q(db());
    if (!q.exec(sql)) {
        m_lastError = texteErreur(q.lastError());
        throw FieldError(m_lastError);
    }
}

std::unique_ptr<RecordCursor> ConnexionServeur::execute(const QString &sql)
{
    QSqlQuery q(db());
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        m_lastError = texteErreur(q.lastError());
        throw FieldError(m_lastError);
    }
    return std::make_unique<QueryCursor>(std::move(q));
}

RecordsetServeur::RecordsetServeur(ConnexionServeur &connexion, QString table, QString keyColumn)
    : m_connexion(connexion)
    , m_table(std::move(table))
    , m_keyColumn(std::move(keyColumn))
{
}

void RecordsetServeur::Open(const QString &sql)
{
    Close();
    QSqlQuery q(m_connexion.db());
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        m_lastError = texteErreur(q.lastError());
        throw FieldError(m_lastError);
    }
    const QSqlRecord r = q.record();
    for (int i = 0; i < r.count(); ++i)
        m_columns.append(r.fieldName(i));
    m_values.resize(m_columns.size());
    if (q.next()) {
        m_hasRow = true;
        const int k = r.indexOf(m_keyColumn);
        if (k >= 0)
            m_key = q.value(k);
    }
}

void RecordsetServeur::AddNew()
{
    m_hasRow = true;
    m_new = true;
    m_set.clear();
    m_values.fill(QVariant());
}

void RecordsetServeur::setField(const QString &name, const QVariant &value)
{
    qsizetype i = -1;
    for (qsizetype c = 0; c < m_columns.size() && i < 0; ++c) {
        if (m_columns.at(c).compare(name, Qt::CaseInsensitive) == 0)
            i = c;
    }
    if (i < 0)
        throw FieldError(QStringLiteral("colonne inconnue : ") + name);
    if (!m_hasRow)
        throw FieldError(QStringLiteral("pas de ligne courante"));
    // An unset date is day 0 of the calendar's date count, as in the
    // statements.
    QVariant v = value;
    if (v.typeId() == QMetaType::QDateTime && !v.toDateTime().isValid())
        v = RecordValue::zeroDate();
    else if (v.typeId() == QMetaType::QString && v.toString().isNull())
        v = QStringLiteral("");
    m_values[i] = v;
    if (!m_set.contains(m_columns.at(i)))
        m_set.append(m_columns.at(i));
}

bool RecordsetServeur::Update()
{
    if (!m_hasRow || (!m_new && !m_key.isValid())) {
        m_lastError = QStringLiteral("pas de ligne courante");
        return false;
    }
    QSqlQuery q(m_connexion.db());
    QStringList parties;
    for (const QString &c : std::as_const(m_set))
        parties << (m_new ? c : c + QStringLiteral(" = ?"));
    if (m_new) {
        QStringList marques;
        for (qsizetype i = 0; i < m_set.size(); ++i)
            marques << QStringLiteral("?");
        q.prepare(QStringLiteral("INSERT INTO ") + m_table + QStringLiteral(" (") + parties.join(QStringLiteral(", "))
                  + QStringLiteral(") VALUES (") + marques.join(QStringLiteral(", ")) + QStringLiteral(")"));
    } else {
        if (m_set.isEmpty())
            return true;
        q.prepare(QStringLiteral("UPDATE ") + m_table + QStringLiteral(" SET ") + parties.join(QStringLiteral(", "))
                  + QStringLiteral(" WHERE ") + m_keyColumn + QStringLiteral(" = ?"));
    }
    for (const QString &c : std::as_const(m_set))
        q.addBindValue(m_values.at(m_columns.indexOf(c)));
    if (!m_new)
        q.addBindValue(m_key);
    if (!q.exec()) {
        m_lastError = texteErreur(q.lastError());
        return false;
    }
    m_new = false;
    m_set.clear();
    return true;
}

void RecordsetServeur::Close()
{
    m_columns.clear();
    m_set.clear();
    m_values.clear();
    m_key = QVariant();
    m_hasRow = false;
    m_new = false;
}
