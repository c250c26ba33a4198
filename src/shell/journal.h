#pragma once

#include "calendar/calendarevent.h"

#include <QDate>
#include <QDateTime>
#include <QString>

// The activity journal: one line for every appointment created, changed or
// deleted, in one text file a day under CheminLog, so that a practice can see
// afterwards which agenda did what and when. Nothing is written when
// CheminLog is empty.
//
// Layout: CheminLog/yyyy/yyyyMMdd_n.txt (year and day of writing), Windows-1252,
// each line closed by CRLF. A file held by another workstation is not waited
// for: the line goes to the next number n (0 to 200, from 0 again at every
// call).

// Actions of the journal.
enum ActionJournal : qint16 { JournalNouveau = 0, JournalModification = 1, JournalEffacement = 2 };

// One line, without its line end: agenda name on exactly 30 characters, the
// start "dd/MM/yyyy HH:mm:ss", the action on 12 ("Nouveau     ",
// "Modification", "Effacement  ", empty for any other number), "Déjà venu" or
// 9 blanks, "Privé" or 5 blanks, then Subject and Location as stored; each
// field followed by " | ".
[[nodiscard]] QString LigneJournal(const QString &agendaName, const CalendarEvent &event, qint16 action);

// Name of the journal file number n of a day: "yyyyMMdd_n.txt".
[[nodiscard]] QString NomFichierJournal(const QDate &jour, int n);

// Writes the line into the folder of today's year under cheminLog. Returns
// the path written to, or an empty text when cheminLog is empty or every one
// of the 201 names failed. Never throws, never shows anything.
QString EcrireJournal(const QString &cheminLog, const QString &agendaName, const CalendarEvent &event, qint16 action);

// The line of an unattended reminder run, in the same daily file: agenda name
// on 30 characters, the moment of the run, "Rappels" on 12 characters, then
// the status of the batch.
[[nodiscard]] QString LigneStatutRappels(const QString &agendaName, const QDateTime &moment, const QString &statut);
// Appends a line built elsewhere, as EcrireJournal does.
QString EcrireLigneJournal(const QString &cheminLog, const QString &ligne);

// The same for the running agenda (CheminLog and AgendaName of AppState). An
// empty event reference writes nothing. No failure reaches the caller: the
// appointment is already stored when the journal runs.
void EcrireJournal(const CalendarEventPtr &event, qint16 action);

// Held while a line is appended, so that two workstations never interleave
// their lines in one file; other programs may hold the same lock. Exposed
// for the tests, which play the other workstation.
class VerrouJournal final
{
public:
    // Takes the exclusive lock on an open file descriptor without waiting.
    explicit VerrouJournal(int descripteur);
    ~VerrouJournal();
    VerrouJournal(const VerrouJournal &) = delete;
    VerrouJournal &operator=(const VerrouJournal &) = delete;
    [[nodiscard]] bool obtenu() const { return m_obtenu; }

private:
    int m_descripteur;
    bool m_obtenu = false;
};
