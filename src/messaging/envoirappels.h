#pragma once

#include "calendar/reminderengine.h"

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <memory>

class GsmModem;

// The texts of table Ini that a batch reads once the modem is open.
struct ParametresEnvoi
{
    QString mailFrom;
    QString smtp;
    QString mailSujet;
    QString mailFirst;
    QString mailLast;
    QString smsFirst;
    QString smsLast;
    QString praticien1;
    QString praticien2;
};
[[nodiscard]] ParametresEnvoi LireParametresEnvoi();

// The practitioner named in a reminder: practitioner 1's name only when the
// decimal text of the label number holds the words "Praticien 1", which a
// number never does; so the second name goes out for every appointment. The
// practice's messages have always read so.
[[nodiscard]] QString PraticienRappel(int labelId, const ParametresEnvoi &parametres);

// The status line after a batch: "Envois Mails OK" or "Erreur Mail RdV :"
// and the failed positions, " / ", then "Envois SMS OK" or "Erreur SMS RdV :"
// and the failed positions (each position followed by ";").
[[nodiscard]] QString StatutEnvoi(const QString &mailErrors, const QString &smsErrors);

// What tells a reminder apart in DoneIds (Reminder::key).
[[nodiscard]] QString CleRappel(const Reminder &rappel);

// The batch behind the send button of the SMS reminder window: to every due
// reminder a mail when the appointment carries an address, an SMS when the
// modem is ready and it carries a number, one second apart, then the
// dismissal of what went out.
//
// It runs as a chain of steps on the event loop: demarrer() asks, opens the
// modem and returns; each reminder is one step, and the one-second pause
// between reminders is a timer, so the window stays alive throughout. The
// modem's dialogue and the mail transfer keep the loop running while they
// wait. While the batch runs, BatchRunning() is set and the reminder window
// leaves its list alone.
//
// Each reminder is claimed in the store before anything goes out: one that
// another sender (a station, the unattended run) is sending or has just
// dismissed is left to it, neither sent nor dismissed here.
class EnvoiRappels final : public QObject
{
    Q_OBJECT

public:
    explicit EnvoiRappels(ReminderEngine &moteur, QObject *parent = nullptr);
    ~EnvoiRappels() override;

    // The send button: lignes is the number of rows the list shows. With none,
    // only the status "Pas de rappel à effectuer ! "; otherwise the question,
    // and on yes the batch starts.
    void demarrer(int lignes);
    // The batch without the question, for the unattended run.
    void lancer();
    [[nodiscard]] bool BatchRunning() const { return m_etape != Etape::Inactif; }

    // Time the last batch spent in its pauses and in sending mails
    // (composition and the server's dialogue), for the measurements.
    [[nodiscard]] qint64 attentesMs() const { return m_attentesMs; }
    [[nodiscard]] qint64 mailsMs() const { return m_mailsMs; }
    // Why each failed message failed: "RdV 2 : SMS refusé par le modem".
    [[nodiscard]] const QStringList &raisons() const { return m_raisons; }
    // Reminders of the last batch left to another sender.
    [[nodiscard]] int laissesAilleurs() const { return int(m_ailleurs.size()); }

    // The pause between two reminders (one second in the program).
    static constexpr int PauseMs = 1000;

signals:
    void statut(const QString &texte);
    // The progress bar: shown with its maximum at the start, then the value.
    void progression(int valeur, int maximum);
    void termine();

private:
    enum class Etape { Inactif, InitModem, Lecture, Element, FinAttente, Fin };

    void planifier(Etape etape, int delaiMs = 0);
    void avancer();
    void initialiserModem();
    void lireEtPreparer();
    void envoyerElement();
    void finAttente();
    void terminer();
    void rejeter();
    bool envoyerMail(const QString &body, const QString &praticien, const QString &dateTexte,
                     QString *raison);

    ReminderEngine &m_moteur;
    Etape m_etape = Etape::Inactif;
    QTimer m_minuterie;
    std::unique_ptr<GsmModem> m_modem;
    ParametresEnvoi m_parametres;
    QList<Reminder> m_lot;
    QList<Reminder> m_pris;
    QList<Reminder> m_ailleurs;
    qsizetype m_index = 0;
    bool m_smsReady = false;
    bool m_itemFailed = false;
    bool m_sablier = false;
    QString m_mailErrors;
    QString m_smsErrors;
    QString m_doneIds;
    QStringList m_raisons;
    QElapsedTimer m_attente;
    qint64 m_attentesMs = 0;
    qint64 m_mailsMs = 0;
};
