#pragma once

#include <QString>
#include <QStringList>

class CalendarDataProvider;

// What an unattended run of the reminders did.
struct BilanRappelsAuto
{
    bool lu = false;          // the store could be read
    int dus = 0;              // reminders due when the run began
    int laissesAilleurs = 0;  // sent or dismissed by another sender meanwhile
    QString statut;           // the status line of the batch
    QStringList raisons;      // why each failed message failed

    [[nodiscard]] bool reussi() const { return lu && raisons.isEmpty(); }
};

// Sends the due reminders of the open calendar with nobody at a window: the
// batch of the send button (texts, modem, mail, the pause between reminders,
// the claims, the dismissal of what went out only), without its question. It
// turns an event loop of its own until the batch ends, then appends the
// status line to the activity journal under cheminLog (nothing when that is
// empty).
BilanRappelsAuto EnvoyerRappelsAutomatiques(CalendarDataProvider &calendrier, const QString &agendaName,
                                            const QString &cheminLog);
