#pragma once

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QThread>
#include <QWaitCondition>

// A small SMTP server on 127.0.0.1 for the tests. It runs in its own thread,
// so that a client that blocks the test's thread still gets answers. It
// speaks just enough SMTP (greeting, EHLO/HELO, MAIL FROM, RCPT TO, DATA and
// the final ".", RSET, NOOP, QUIT) and records the envelope and the text of
// every message it accepted.
class SmtpSink final : public QThread
{
public:
    struct Message
    {
        QString helo;
        QString mailFrom;       // the address between the angle brackets
        QStringList rcptTo;
        QByteArray data;        // the message text, dot-stuffing undone, CRLF line ends
    };

    SmtpSink() = default;
    ~SmtpSink() override;
    SmtpSink(const SmtpSink &) = delete;
    SmtpSink &operator=(const SmtpSink &) = delete;

    // Behaviour, set before demarrer().
    void setCodeMailFrom(int code) { m_codeMailFrom = code; }
    void setCodeRcpt(int code) { m_codeRcpt = code; }
    void setCodeFinDonnees(int code) { m_codeFinDonnees = code; }
    // Never greets nor answers: a server that hangs.
    void setMuet(bool muet) { m_muet = muet; }
    // Waits this long before each answer.
    void setDelaiReponseMs(int ms) { m_delaiMs = ms; }

    // Starts listening on a free port of 127.0.0.1; false with the reason
    // when the socket cannot be opened.
    bool demarrer(QString *erreur);
    [[nodiscard]] quint16 port() const { return m_port; }
    [[nodiscard]] QString adresse() const { return QStringLiteral("127.0.0.1:%1").arg(m_port); }

    [[nodiscard]] QList<Message> messages() const;
    [[nodiscard]] int connexions() const;
    // The command lines received, in order, over all connections.
    [[nodiscard]] QStringList commandes() const;

protected:
    void run() override;

private:
    friend class SessionSmtp;
    void noterConnexion();
    void noterCommande(const QString &ligne);
    void noterMessage(const Message &message);

    int m_codeMailFrom = 250;
    int m_codeRcpt = 250;
    int m_codeFinDonnees = 250;
    bool m_muet = false;
    int m_delaiMs = 0;

    mutable QMutex m_mutex;
    QWaitCondition m_pret;
    bool m_demarre = false;
    QString m_erreur;
    quint16 m_port = 0;
    QList<Message> m_messages;
    QStringList m_commandes;
    int m_connexions = 0;
};

// Fails the test, with the reason, when the sink cannot listen.
#define DEMARRER_SINK(sink)                                                                                    \
    do {                                                                                                       \
        QString raison;                                                                                        \
        QVERIFY2((sink).demarrer(&raison), qPrintable(QStringLiteral("SMTP sink cannot listen: ") + raison)); \
    } while (false)
