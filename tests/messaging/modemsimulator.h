#pragma once

#include "support/dossiertest.h"
#include "support/repondeurscripte.h"

#include <chrono>

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QProcess>
#include <QSerialPort>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// A GSM modem on the far end of a real pseudo-terminal pair made by socat.
// The driver opens peripherique(); the simulator reads what arrives there,
// echoes it when echo is on, takes each line ended by a carriage return as a
// command, and answers from its script. "AT+CMGS=..." is answered with the
// prompt, after which everything up to byte 26 is the message body.
//
// It runs on the test's own event loop: the driver's waits let it answer.
class ModemSimule final : public QObject
{
    Q_OBJECT

public:
    // One answer: pieces written one after the other, delaiMs apart (the
    // first at once). No pieces:
    // the modem stays silent.
    struct Reponse
    {
        QList<QByteArray> morceaux;
        int delaiMs = 150;
    };

    explicit ModemSimule(QObject *parent = nullptr);
    ~ModemSimule() override;

    // Starts socat and opens the far end. False with the reason in *erreur
    // when socat is missing or the links do not appear.
    bool demarrer(QString *erreur);
    // Full path of the modem end, for the driver.
    [[nodiscard]] QString peripherique() const;

    void fixerEcho(bool echo) { m_echo = echo; }
    // Each received carriage return inside a message body is followed by the
    // "\r\n> " prompt, as real modems do.
    void fixerInvitesDansCorps(bool invites) { m_invitesCorps = invites; }
    // Answers to a command, used in turn; the last one is kept for the
    // following times.
    void script(const QString &commande, const QList<Reponse> &reponses);
    void script(const QString &commande, const Reponse &reponse) { script(commande, QList<Reponse>{reponse}); }
    // Answer to the body of a message once byte 26 arrived.
    void scriptCorps(const Reponse &reponse) { m_reponseCorps = reponse; }
    // Silent to everything.
    void fixerMuet(bool muet) { m_muet = muet; }

    [[nodiscard]] const QByteArray &recu() const { return m_recu; }
    [[nodiscard]] const QStringList &commandes() const { return m_commandes; }
    [[nodiscard]] const QList<QByteArray> &corps() const { return m_corps; }
    [[nodiscard]] int nombre(const QString &commande) const { return static_cast<int>(m_commandes.count(commande)); }

    // Common answers.
    static Reponse Ok() { return {{"\r\nOK\r\n"}}; }
    static Reponse Erreur() { return {{"\r\nERROR\r\n"}}; }
    static Reponse Silence() { return {}; }
    static Reponse Texte(const QByteArray &lignes) { return {{"\r\n" + lignes + "\r\n\r\nOK\r\n"}}; }

private:
    void lire();
    void traiterCommande(const QByteArray &ligne);
    void envoyer(const Reponse &reponse);
    [[nodiscard]] Reponse reponsePar(const QString &commande) const;

    QTemporaryDir m_dossier;
    QProcess m_socat;
    QSerialPort m_loin;
    bool m_echo = true;
    bool m_invitesCorps = true;
    bool m_muet = false;
    bool m_dansCorps = false;
    QByteArray m_ligne;
    QByteArray m_corpsCourant;
    QByteArray m_recu;
    QStringList m_commandes;
    QList<QByteArray> m_corps;
    QHash<QString, QList<Reponse>> m_script;
    Reponse m_reponseCorps{{"\r\n+CMGS: 42\r\n\r\nOK\r\n"}};
};

// What every modem test needs: a program folder, the scripted answerer and a
// simulated modem that the driver reaches as COM<port> once demarrer() ran.
// The driver's time unit and pointer and the port variables are put back
// when it goes.
struct BancModem
{
    BancModem(int port, std::chrono::milliseconds unite);
    ~BancModem();
    BancModem(const BancModem &) = delete;
    BancModem &operator=(const BancModem &) = delete;

    // Starts the simulator and points the port at it; false with the reason
    // when socat cannot start.
    bool demarrer(QString *erreur);

    DossierProgrammeTest dossier;
    RepondeurScripte repondeur;
    ModemSimule modem;
    const int port;
};

// Fails the test, with the reason, when the simulated modem cannot start.
#define DEMARRER_MODEM(banc)                                                                                   \
    do {                                                                                                       \
        QString raison;                                                                                        \
        QVERIFY2((banc).demarrer(&raison), qPrintable(QStringLiteral("le modem simulé ne démarre pas : ") + raison)); \
    } while (false)
