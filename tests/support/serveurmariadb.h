#pragma once

#include <QString>
#include <QTemporaryDir>

// A real MariaDB server for one test program (or bench): started on a
// temporary data folder, a socket in it and a free port of 127.0.0.1, with the
// database Calendar (the two calendar tables), an empty database Calendar6
// and the user agenda/agenda; unixODBC is pointed (ODBCSYSINI, ODBCINI) at a
// temporary odbc.ini naming Calendar_MySQL and Calendar_SQLServer. Stopped
// when the object goes. Started by scripts/mariadb-test.sh.
class ServeurMariaDb final
{
public:
    ServeurMariaDb();
    ~ServeurMariaDb();
    ServeurMariaDb(const ServeurMariaDb &) = delete;
    ServeurMariaDb &operator=(const ServeurMariaDb &) = delete;

    // False (with the reason in erreur()) when the server could not start.
    [[nodiscard]] bool demarre() const { return m_demarre; }
    [[nodiscard]] const QString &erreur() const { return m_erreur; }
    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] const QString &socket() const { return m_socket; }
    // The parameters of the MariaDB store on the database given.
    [[nodiscard]] QString parametresMariaDb(const QString &base = QStringLiteral("Calendar6")) const;
    // Runs SQL as the server's administrator; false with the reason in erreur().
    bool executer(const QString &base, const QString &sql);

private:
    [[nodiscard]] QString script() const;
    QTemporaryDir m_dossier;
    bool m_demarre = false;
    QString m_erreur;
    int m_port = 0;
    QString m_socket;
};
