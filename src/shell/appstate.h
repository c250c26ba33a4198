#pragma once

#include "patients/patientcourant.h"
#include "rules/regles.h"

#include <QString>

#include <array>
#include <memory>

class CalendarDataProvider;
class ReminderEngine;

// The one application state record: written during start-up and by the
// dialogs that change settings, read everywhere. Folder paths end in a
// separator.
struct AppState
{
    // Colours as 0xBBGGRR, index row * 6 + column.
    std::array<quint32, 42> Nuancier{};
    // Index 0 to 6.
    std::array<QString, 7> TypesRDV;
    // Index 1 (Sunday) to 7 (Saturday); index 0 is unused.
    std::array<QString, 8> JoursSemaine;

    QString PathDB;
    QString AgendaName;
    QString CheminSauve;
    QString CheminSauvePartiel;
    QString CheminLog;
    QString CheminBaseAgenda;

    // Config.mdb and its table Ini are held by the settings layer
    // (ConfigOuverte), open from OuvrirConfig to FermerConfig.

    qint16 DureeDefaut = 0;
    bool RappelsMails = false;
    bool RappelsSMS = false;
    QString PauseDebut = QStringLiteral("12:00:00");
    QString PauseFin = QStringLiteral("14:00:00");

    // The four link slots, index 1 to 4 (index 0 unused).
    std::array<QString, 5> Path;
    std::array<QString, 5> Identity;
    std::array<QString, 5> Zek;

    PatientCourantRecord PatientCourant;
    RegleMatch RegleCourante;

    // The calendar store attached by OpenProvider, the kind attached (0
    // before the first), and the reminder watch over that store.
    std::shared_ptr<CalendarDataProvider> Calendrier;
    int TypeFournisseur = 0;
    std::shared_ptr<ReminderEngine> MoteurRappels;
};

// The agenda name of a start without argument; also the section of that
// agenda's keys in Agenda.ini.
inline const QString DefaultAgendaName = QStringLiteral("Agenda");

[[nodiscard]] AppState &appState();

// Fills the tables TypesRDV, JoursSemaine and Nuancier.
void InitTables(AppState &etat);
