#include "modemsimulator.h"

#include "messaging/gsmmodem.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

ModemSimule::ModemSimule(QObject *parent)
    : QObject(parent)
{
    connect(&m_loin, &QSerialPort::readyRead, this, &ModemSimule::lire);
}

ModemSimule::~ModemSimule()
{
    m_loin.close();
    if (m_socat.state() != QProcess::NotRunning) {
        m_socat.terminate();
        if (!m_socat.waitForFinished(3000)) {
            m_socat.kill();
            m_socat.waitForFinished(3000);
        }
    }
}

QString ModemSimule::peripherique() const
{
    return m_dossier.filePath(QStringLiteral("modem"));
}

bool ModemSimule::demarrer(QString *erreur)
{
    const QString socat = QStandardPaths::findExecutable(QStringLiteral("socat"));
    if (socat.isEmpty()) {
        *erreur = QStringLiteral("socat est introuvable : installez-le (scripts/install-deps.sh)");
        return false;
    }
    if (!m_dossier.isValid()) {
        *erreur = QStringLiteral("dossier temporaire impossible");
        return false;
    }
    const QString loin = m_dossier.filePath(QStringLiteral("far"));
    m_socat.setProgram(socat);
    m_socat.setArguments({QStringLiteral("-d"), QStringLiteral("-d"),
                          QStringLiteral("pty,raw,echo=0,link=") + peripherique(),
                          QStringLiteral("pty,raw,echo=0,link=") + loin});
    m_socat.setProcessChannelMode(QProcess::ForwardedOutputChannel);
    m_socat.setStandardErrorFile(QProcess::nullDevice());
    m_socat.start();
    if (!m_socat.waitForStarted(5000)) {
        *erreur = QStringLiteral("socat ne démarre pas : ") + m_socat.errorString();
        return false;
    }
    const QDeadlineTimer limite(5000);
    while (!(QFileInfo::exists(peripherique()) && QFileInfo::exists(loin))) {
        if (limite.hasExpired() || m_socat.state() == QProcess::NotRunning) {
            *erreur = QStringLiteral("socat n'a pas créé les liens des pseudo-terminaux");
            return false;
        }
        QThread::msleep(10);
    }
    m_loin.setPortName(loin);
    if (!m_loin.open(QIODevice::ReadWrite)) {
        *erreur = QStringLiteral("bout distant inaccessible : ") + m_loin.errorString();
        return false;
    }
    return true;
}

void ModemSimule::script(const QString &commande, const QList<Reponse> &reponses)
{
    m_script.insert(commande, reponses);
}

ModemSimule::Reponse ModemSimule::reponsePar(const QString &commande) const
{
    if (commande.startsWith(QLatin1String("AT+CMGS=")))
        return {{"\r\n> "}};
    if (commande == QLatin1String("ATI"))
        return Texte("Manufacturer: huawei\r\nModel: E1750\r\nRevision: 11.126.16.00.00");
    if (commande == QLatin1String("AT+CGMI"))
        return Texte("huawei");
    if (commande == QLatin1String("AT+COPS?"))
        return Texte("+COPS: 0,2,\"20801\",2");
    if (commande == QLatin1String("AT+IPR?"))
        return Texte("+IPR: 115200");
    if (commande == QLatin1String("AT+CSCS=?"))
        return Texte("+CSCS: (\"IRA\",\"GSM\",\"UCS2\")");
    if (commande.startsWith(QLatin1String("AT")))
        return Ok();
    return Erreur();
}

void ModemSimule::lire()
{
    const QByteArray octets = m_loin.readAll();
    m_recu += octets;
    for (const char c : octets) {
        if (m_dansCorps) {
            if (c == '\x1A') {
                m_dansCorps = false;
                m_corps.append(m_corpsCourant);
                m_corpsCourant.clear();
                if (!m_muet)
                    envoyer(m_reponseCorps);
                continue;
            }
            m_corpsCourant += c;
            if (m_echo && !m_muet)
                m_loin.write(QByteArray(1, c));
            if (c == '\r' && m_invitesCorps && !m_muet)
                m_loin.write("\n> ");
            continue;
        }
        // After a body the terminating carriage return is no command.
        if (c == '\r' && m_ligne.isEmpty())
            continue;
        if (m_echo && !m_muet)
            m_loin.write(QByteArray(1, c));
        if (c == '\r') {
            const QByteArray ligne = m_ligne;
            m_ligne.clear();
            traiterCommande(ligne);
        } else {
            m_ligne += c;
        }
    }
}

void ModemSimule::traiterCommande(const QByteArray &ligne)
{
    const QString commande = QString::fromLatin1(ligne);
    m_commandes.append(commande);
    Reponse reponse;
    auto it = m_script.find(commande);
    if (it != m_script.end() && !it->isEmpty()) {
        reponse = it->size() > 1 ? it->takeFirst() : it->first();
    } else {
        reponse = reponsePar(commande);
    }
    if (commande.startsWith(QLatin1String("AT+CMGS=")) && !reponse.morceaux.isEmpty()
        && reponse.morceaux.join().contains('>')) {
        m_dansCorps = true;
    }
    if (!m_muet)
        envoyer(reponse);
}

void ModemSimule::envoyer(const Reponse &reponse)
{
    for (qsizetype i = 0; i < reponse.morceaux.size(); ++i) {
        const QByteArray morceau = reponse.morceaux.at(i);
        if (i == 0) {
            m_loin.write(morceau);
        } else {
            QTimer::singleShot(static_cast<int>(i) * reponse.delaiMs, this, [this, morceau] {
                if (m_loin.isOpen())
                    m_loin.write(morceau);
            });
        }
    }
}

BancModem::BancModem(int port, std::chrono::milliseconds unite)
    : port(port)
{
    GsmModem::fixerDureeUnite(unite);
    GsmModem::restaurerPointeur();
    etatModem() = EtatModem();
}

BancModem::~BancModem()
{
    GsmModem::fixerDureeUnite(GsmModem::DureeUniteNormale);
    GsmModem::restaurerPointeur();
    for (int n = 1; n <= 16; ++n)
        qunsetenv(QStringLiteral("TAVONEL_MODEM_DEVICE_%1").arg(n).toLatin1().constData());
}

bool BancModem::demarrer(QString *erreur)
{
    if (!modem.demarrer(erreur))
        return false;
    qputenv(QStringLiteral("TAVONEL_MODEM_DEVICE_%1").arg(port).toLatin1().constData(), QFile::encodeName(modem.peripherique()));
    return true;
}
