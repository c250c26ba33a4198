#pragma once

#include "calendar/calendarevent.h"

#include <QList>
#include <QString>

#include <optional>

class BaseSqlite;
class CalendarDataProvider;

// The reduced copy of every appointment in table Events of the agenda's own
// Patients.mdb, so that a patient card lists its appointments without the
// calendar store; and the activity journal line that goes with each change.
//
// The main window calls BrancherMiroir once on its calendar provider: every
// eventAdded / eventChanged / eventDeleted then writes the row and the
// journal. The calendar store has already changed when this runs, so a
// failure here never loses the appointment: it is told to the user (box
// "Erreur", TexteEchecMiroir) and the journal line is written all the same.

// Adds or updates the row whose ID is the event's key: Numero (field 11 of
// Body), DateRv and HeureRV (the start), DateModif (now, from Horloge),
// Praticien, Motif (Location with its " => " part, cut to the column's 64
// characters), DatePrise (CreationTime). No value on success; otherwise the
// French reason (base not found or locked, a Body without the patient
// number, ...). Nothing is half-written: one transaction.
[[nodiscard]] std::optional<QString> EcrireMiroir(const QString &cheminBaseAgenda, const CalendarEvent &event,
                                                  const QString &praticien);

// Deletes the row of that key (none is no failure).
[[nodiscard]] std::optional<QString> EffacerMiroir(const QString &cheminBaseAgenda, int eventId);
// Deletes the rows of those keys on an open base, in one transaction.
[[nodiscard]] std::optional<QString> EffacerMiroir(BaseSqlite &base, const QList<int> &eventIds);

// A copy that could not be written (the file held by another station past
// the busy wait) is kept here and written again by RejouerMiroir, which the
// main window calls at each refresh; the latest change of a key replaces an
// older one still waiting. Should the program stop before the file is free
// again, the next start writes the missing copies of the last days
// (RattraperMiroir), and store-check --repair any other.
// Writes what waits, oldest first, and stops at the first that fails again.
// Answers how many still wait.
int RejouerMiroir(const QString &cheminBaseAgenda);

// The three handlers, on AppState (CheminBaseAgenda, RegleCourante, the
// journal). Added and changed look up the rule in force at the start
// (GetRegleForDate, the start unchanged) into RegleCourante, whose
// practitioner goes into the row. An empty reference does nothing. Nothing
// escapes them.
void MiroirEvenementAjoute(const CalendarEventPtr &event);
void MiroirEvenementModifie(const CalendarEventPtr &event);
void MiroirEvenementSupprime(const CalendarEventPtr &event);

// Connects the provider's three notifications to the handlers above.
void BrancherMiroir(CalendarDataProvider &provider);

// Title and text of the box that tells a failed copy.
[[nodiscard]] QString TitreEchecMiroir();
[[nodiscard]] QString TexteEchecMiroir(const QString &raison);
