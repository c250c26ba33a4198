#include "messaging/smtpsink.h"

#include <QHostAddress>
#include <QMutexLocker>
#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

// One client connection; lives in the sink's thread.
class SessionSmtp final
{
public:
    SessionSmtp(SmtpSink &sink, QTcpSocket *socket)
        : m_sink(sink)
        , m_socket(socket)
    {
    }

    void accueillir()
    {
        if (!m_sink.m_muet)
            repondre("220 127.0.0.1 ESMTP tavonel-sink");
    }

    void lire()
    {
        m_tampon += m_socket->readAll();
        if (m_sink.m_muet)
            return;
        qsizetype fin;
        while (m_socket->isOpen() && (fin = m_tampon.indexOf("\r\n")) >= 0) {
            const QByteArray ligne = m_tampon.left(fin);
            m_tampon.remove(0, fin + 2);
            traiter(ligne);
        }
    }

private:
    void repondre(const QByteArray &texte)
    {
        if (m_sink.m_delaiMs > 0)
            QThread::msleep(static_cast<unsigned long>(m_sink.m_delaiMs));
        m_socket->write(texte + "\r\n");
        m_socket->flush();
    }

    static QString adresseEntreChevrons(const QByteArray &ligne)
    {
        const qsizetype debut = ligne.indexOf('<');
        const qsizetype fin = ligne.indexOf('>', debut + 1);
        if (debut < 0 || fin < 0)
            return QString::fromUtf8(ligne.mid(ligne.indexOf(':') + 1).trimmed());
        return QString::fromUtf8(ligne.mid(debut + 1, fin - debut - 1));
    }

    void traiter(const QByteArray &ligne)
    {
        if (m_enDonnees) {
            if (ligne == ".") {
                m_enDonnees = false;
                if (m_sink.m_codeFinDonnees == 250) {
                    m_sink.noterMessage(m_courant);
                    repondre("250 OK message accepted");
                } else {
                    repondre(QByteArray::number(m_sink.m_codeFinDonnees) + " Message refused");
                }
                m_courant = SmtpSink::Message{m_courant.helo, {}, {}, {}};
                return;
            }
            m_courant.data += (ligne.startsWith('.') ? ligne.mid(1) : ligne) + "\r\n";
            return;
        }

        m_sink.noterCommande(QString::fromUtf8(ligne));
        const QByteArray verbe = ligne.left(4).toUpper();
        if (verbe == "EHLO") {
            m_courant.helo = QString::fromUtf8(ligne.mid(5).trimmed());
            repondre("250-127.0.0.1 greets you\r\n250 8BITMIME");
        } else if (verbe == "HELO") {
            m_courant.helo = QString::fromUtf8(ligne.mid(5).trimmed());
            repondre("250 127.0.0.1");
        } else if (ligne.toUpper().startsWith("MAIL FROM:")) {
            if (m_sink.m_codeMailFrom == 250) {
                m_courant.mailFrom = adresseEntreChevrons(ligne);
                repondre("250 OK");
            } else {
                repondre(QByteArray::number(m_sink.m_codeMailFrom) + " Sender refused");
            }
        } else if (ligne.toUpper().startsWith("RCPT TO:")) {
            if (m_sink.m_codeRcpt == 250) {
                m_courant.rcptTo.append(adresseEntreChevrons(ligne));
                repondre("250 OK");
            } else {
                repondre(QByteArray::number(m_sink.m_codeRcpt) + " No such user here");
            }
        } else if (verbe == "DATA") {
            if (m_courant.rcptTo.isEmpty()) {
                repondre("503 No valid recipients");
            } else {
                m_enDonnees = true;
                repondre("354 End data with <CR><LF>.<CR><LF>");
            }
        } else if (verbe == "RSET") {
            m_courant = SmtpSink::Message{m_courant.helo, {}, {}, {}};
            repondre("250 OK");
        } else if (verbe == "NOOP") {
            repondre("250 OK");
        } else if (verbe == "QUIT") {
            repondre("221 Bye");
            m_socket->disconnectFromHost();
        } else {
            repondre("502 Command not implemented");
        }
    }

    SmtpSink &m_sink;
    QTcpSocket *m_socket;
    QByteArray m_tampon;
    bool m_enDonnees = false;
    SmtpSink::Message m_courant;
};

SmtpSink::~SmtpSink()
{
    if (isRunning()) {
        quit();
        wait();
    }
}

bool SmtpSink::demarrer(QString *erreur)
{
    start();
    QMutexLocker verrou(&m_mutex);
    while (!m_demarre)
        m_pret.wait(&m_mutex);
    if (m_port == 0 && erreur)
        *erreur = m_erreur;
    return m_port != 0;
}

void SmtpSink::run()
{
    QTcpServer serveur;
    const bool ecoute = serveur.listen(QHostAddress::LocalHost, 0);
    {
        QMutexLocker verrou(&m_mutex);
        m_demarre = true;
        if (ecoute)
            m_port = serveur.serverPort();
        else
            m_erreur = serveur.errorString();
        m_pret.wakeAll();
    }
    if (!ecoute)
        return;

    std::vector<std::unique_ptr<SessionSmtp>> sessions;
    QObject::connect(&serveur, &QTcpServer::newConnection, &serveur, [&] {
        while (QTcpSocket *socket = serveur.nextPendingConnection()) {
            noterConnexion();
            auto session = std::make_unique<SessionSmtp>(*this, socket);
            SessionSmtp *s = session.get();
            sessions.push_back(std::move(session));
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [s] { s->lire(); });
            s->accueillir();
        }
    });
    exec();
    // The sockets are children of the server and go with it; the sessions
    // only point at them.
    serveur.close();
}

void SmtpSink::noterConnexion()
{
    QMutexLocker verrou(&m_mutex);
    ++m_connexions;
}

void SmtpSink::noterCommande(const QString &ligne)
{
    QMutexLocker verrou(&m_mutex);
    m_commandes.append(ligne);
}

void SmtpSink::noterMessage(const Message &message)
{
    QMutexLocker verrou(&m_mutex);
    m_messages.append(message);
}

QList<SmtpSink::Message> SmtpSink::messages() const
{
    QMutexLocker verrou(&m_mutex);
    return m_messages;
}

int SmtpSink::connexions() const
{
    QMutexLocker verrou(&m_mutex);
    return m_connexions;
}

QStringList SmtpSink::commandes() const
{
    QMutexLocker verrou(&m_mutex);
    return m_commandes;
}
