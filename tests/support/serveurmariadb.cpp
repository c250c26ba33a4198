#include "support/serveurmariadb.h"

#include <QProcess>

#include <cstdlib>

QString ServeurMariaDb::script() const
{
    return qEnvironmentVariable("TAVONEL_SOURCE_DIR", QStringLiteral(TAVONEL_SOURCE_DIR_DEFAUT))
           + QStringLiteral("/scripts/mariadb-test.sh");
}

ServeurMariaDb::ServeurMariaDb()
    : m_dossier(QStringLiteral("/tmp/tavonel-mariadb-XXXXXX"))
{
    if (!m_dossier.isValid()) {
        m_erreur = QStringLiteral("pas de dossier temporaire");
        return;
    }
    QProcess p;
    p.start(QStringLiteral("bash"), {script(), QStringLiteral("start"), m_dossier.path()});
    if (!p.waitForFinished(120000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        m_erreur = QStringLiteral("le serveur MariaDB n'a pas démarré : ") + QString::fromLocal8Bit(p.readAllStandardError());
        return;
    }
    for (const QString &ligne : QString::fromLocal8Bit(p.readAllStandardOutput()).split(QLatin1Char('\n'))) {
        if (ligne.startsWith(QLatin1String("PORT=")))
            m_port = ligne.mid(5).toInt();
        else if (ligne.startsWith(QLatin1String("SOCKET=")))
            m_socket = ligne.mid(7).trimmed();
    }
    qputenv("ODBCSYSINI", m_dossier.path().toLocal8Bit());
    qputenv("ODBCINI", (m_dossier.path() + QStringLiteral("/odbc.ini")).toLocal8Bit());
    m_demarre = m_port > 0;
    if (!m_demarre)
        m_erreur = QStringLiteral("port du serveur inconnu");
}

ServeurMariaDb::~ServeurMariaDb()
{
    if (m_dossier.isValid()) {
        QProcess p;
        p.start(QStringLiteral("bash"), {script(), QStringLiteral("stop"), m_dossier.path()});
        p.waitForFinished(30000);
    }
}

QString ServeurMariaDb::parametresMariaDb(const QString &base) const
{
    return QStringLiteral("Server=127.0.0.1;Port=%1;Database=%2;User=agenda;Password=agenda").arg(m_port).arg(base);
}

bool ServeurMariaDb::executer(const QString &base, const QString &sql)
{
    QProcess p;
    p.start(QStringLiteral("mariadb"), {QStringLiteral("--no-defaults"), QStringLiteral("-uroot"),
                                        QStringLiteral("--socket=") + m_socket, base, QStringLiteral("-e"), sql});
    if (p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0)
        return true;
    m_erreur = QString::fromLocal8Bit(p.readAllStandardError());
    return false;
}
