#pragma once

#include <QDate>
#include <QString>

#include <optional>

// A demonstration agenda, to show the program to a practice or to try it
// out: the default agenda of a start without argument, in a program folder of
// its own (and agenda 1 of that folder, see NomAgendaDemo). Two practitioners with their names, the seven appointment types
// with their colours, the rules of a working week (mornings, pause,
// afternoons that change hands between odd and even weeks, a paediatrics
// afternoon, a home-visit slot), fifty patients in Patients.mdb and about
// sixty appointments in the week of the given day (Monday to Friday), packed
// as the appointment editor packs them, mirrored into the patient base. Some
// of the past ones are marked arrived; one patient comes weekly (a series).
//
// Everything is worked out from the given day, so the same day always gives
// the same agenda; only the ages shown in the subjects and the change times
// follow the clock (Horloge).

struct BilanDemo
{
    int regles = 0;
    int patients = 0;
    // Appointments stored: plain ones and the master of the series.
    int rendezVous = 0;
    QDate lundi; // Monday of the week filled
};

// Creates the agenda in `dossier` (made when missing). An existing agenda
// there (Config.mdb, Events.mdb or Patients.mdb) is never touched: the
// French reason is returned, as for any failure. The application state is
// used for the time of the creation and given back as it was.
[[nodiscard]] std::optional<QString> CreerDemo(const QString &dossier, const QDate &jour, BilanDemo *bilan = nullptr);

// The name of agenda 1 of the demonstration folder: the same data as the
// default agenda, opened with the launch argument of agenda 1, with the
// activity journal kept in the folder's Journal/ (Agenda.ini, written by
// CreerDemo).
[[nodiscard]] QString NomAgendaDemo();

// The practitioners' names of the demonstration (sections Praticien1 and
// Praticien2 of table Ini).
[[nodiscard]] QString NomPraticienDemo(int numero);
