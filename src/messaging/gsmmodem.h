#pragma once

#include "messaging/serialline.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>

class QEventLoop;

// The state of the modem dialogue. There is one for the whole program: the
// sending copy and the diagnostic copy of the driver share it, and only one of
// them talks to a modem at a time.
struct EtatModem
{
    QString ExpectedText;  // ends the wait with success
    QString ErrorText;     // ends the wait with failure
    bool CommDone = false;
    bool CommOk = false;
    QString CommBuffer;    // everything received for the current command
    QString LastResponse;  // sending copy: the buffer after each arrival
    bool ModemHasGSM = false;
};
[[nodiscard]] EtatModem &etatModem();

// What the diagnostic sequence found out; an empty text for a command that
// failed.
struct InfosModem
{
    QString devType;
    QString manufacturer;
    QString provider;
    QString bauds;
    QString protocoles;
};

// The GSM modem driver: a strictly sequential dialogue of AT commands in text
// mode. Write one command (Windows-1252, ended by byte 13), wait for the
// expected word, the error word or a time limit, decide. The waits keep the
// event loop running; nothing blocks the interface.
//
// The program holds two copies: the sending copy (the main window: reminders
// and the editor's SMS) and the diagnostic copy (the messaging settings),
// which logs every exchange, reads the modem's identity, gives the body of a
// message 2 time units instead of 3, and complains of a missing "Modem"
// rather than a missing "Mobile".
class GsmModem final : public QObject
{
    Q_OBJECT

public:
    enum class Copie { Envoi, Diagnostic };

    // The time unit of the waits: 0.0001 day.
    static constexpr std::chrono::milliseconds DureeUniteNormale{8640};

    // Without a line the driver uses the QSerialPort line. A given line stays
    // the caller's.
    explicit GsmModem(Copie copie, LigneSerie *ligne = nullptr, QObject *parent = nullptr);
    ~GsmModem() override;

    [[nodiscard]] Copie copie() const { return m_copie; }
    [[nodiscard]] LigneSerie &ligne() { return *m_ligne; }

    // Closes the modem maker's connection program if it holds the port, then
    // opens port n. Returns n, or 0 when the port cannot be opened.
    int msComConnect(int port);
    // Closes the port; always true.
    bool msComDisconnect();
    [[nodiscard]] bool estConnecte() const;

    // Sends one command and waits timeUnits time units for an answer that
    // holds the expected word (success), the error word (failure) or ">"
    // (success, whatever was expected). After a time-out the busy pointer
    // stays: the caller puts the arrow back.
    bool sendIt(const QString &command, const QString &expected, const QString &error, int timeUnits);

    // "AT", up to eight operator queries a second apart, the SMS parameters
    // and the GSM character set. True when the modem is ready to send.
    bool InitMobile();
    // "AT+CMGS" with the number, then the text ended by byte 26. True when the
    // modem took the message.
    bool SendSMS(const QString &number, const QString &text);

    // Diagnostic copy: the identity sequence. False only when the modem does
    // not answer "AT"; then the box "Pas de Modem GSM trouvé" has been shown
    // and deconnexionDemandee emitted.
    bool getMobileInfo(InfosModem &infos);

    // Tests shorten the unit; the program keeps DureeUniteNormale.
    static void fixerDureeUnite(std::chrono::milliseconds duree);
    [[nodiscard]] static std::chrono::milliseconds dureeUnite();

    // The busy pointer of the dialogue (an hourglass in the windowed program).
    [[nodiscard]] static bool pointeurOccupe();
    static void restaurerPointeur();

signals:
    // Diagnostic copy: a line of the exchange log.
    void journal(const QString &ligne);
    // Diagnostic copy: the raw answer so far (empty at each new command).
    void sortie(const QString &texte);
    // Diagnostic copy: the modem did not answer; the port should be closed.
    void deconnexionDemandee();

private:
    void surEvenement(int numero);

    Copie m_copie;
    LigneSerie *m_ligne = nullptr;
    bool m_ligneAMoi = false;
    int m_port = 0;
    QEventLoop *m_attente = nullptr;
};

// One message on its own (the appointment editor's SMS button): opens the
// port, initialises the modem, sends, closes. Returns the status text:
// "Port Com <n> inaccessible", "Echec d'accès au Mobile GSM", "Echec de
// l'envoi du SMS" or "Envoi du SMS : OK". The text is sent as given: the
// caller builds, folds and cuts it.
[[nodiscard]] QString EnvoyerSMSSeul(GsmModem &modem, int port, const QString &numero, const QString &texte);

// The modem's port number: key COM of the agenda's section of Agenda.ini,
// "0" by default, read by the leading-number rule. 0 means no modem.
[[nodiscard]] int PortModem();

// Parsers of the diagnostic copy; each ends by removing control characters
// (code under 14) from both ends.
[[nodiscard]] QString getManufacturer(const QString &reponse);
[[nodiscard]] QString getDevType(const QString &reponse);
[[nodiscard]] QString GetBauds(const QString &reponse);
// Sets *gsm when the character sets named hold "GSM".
[[nodiscard]] QString GetProtocles(const QString &reponse, bool *gsm = nullptr);

// The port search of the messaging settings: ports 1 to 16 whose device is
// there, in order. statut receives the progress texts.
// depuisBouton: the refresh button (rather than the opening of the dialog)
// also announces the search.
[[nodiscard]] QList<int> RechercherPorts(bool depuisBouton, const std::function<void(const QString &)> &statut = {});
