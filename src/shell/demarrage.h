#pragma once

#include "calendar/calendarlabel.h"

#include <QString>
#include <QTime>

#include <optional>

struct AppState;

// What the load reads for the main window and its calendar.
struct ParametresFenetre
{
    CalendarLabelList libelles;      // the eighteen labels
    bool rappelsActifs = false;      // RemindersManEnabled
    QTime debutJournee{8, 0};        // Ouverture / Debut
    QTime finJournee{20, 0};         // Ouverture / Fin
    QString printFrom = QStringLiteral("08:00:00");
    QString printTo = QStringLiteral("20:00:00");
    int printFromToExactly = -1;
    int margesPage = 500;            // each of the four page margins
    bool premierLancement = false;   // Config.mdb was created by this start
};

// The start of the program and its end, without any window: which agenda this
// process serves, where its files lie, the stores created and opened, the
// settings read into AppState; and the shut-down list.
class Demarrage final
{
public:
    Demarrage(AppState &etat, QString dossierProgramme);

    // Initialisation: the enciphered argument (empty for a start without one)
    // gives the agenda. Returns the fatal text when the agenda cannot be
    // served; nothing is created or opened then.
    [[nodiscard]] std::optional<QString> initialiser(const QString &argument);

    // Load: Config.mdb and Patients.mdb created where missing, Config.mdb
    // opened, the settings read. Returns the fatal text when Config.mdb
    // cannot be opened.
    [[nodiscard]] std::optional<QString> charger(ParametresFenetre &parametres);

    // The connection string of the embedded calendar store.
    [[nodiscard]] QString connexionEvenements() const;

    // Shut-down list; every step goes on past a failure.
    void arreter(bool rappelsActifs);

    // Texts of the two fatal boxes.
    static QString texteAgendaNonConfigure();
    static QString texteBaseIntrouvable(const QString &pathDB);
    // The one box of a Config.mdb that is a database but cannot be read.
    static QString texteConfigEndommagee(const QString &chemin, const QString &detail);

private:
    AppState &m_etat;
    QString m_dossierProgramme;
};

// The eighteen labels of the calendar, from the types and colours of table
// Ini (through LireConfig).
[[nodiscard]] CalendarLabelList ConstruireLibelles(const AppState &etat);

// The agenda number with which a deciphered launch argument begins, as text
// ("0" when it begins with no number).
[[nodiscard]] QString NumeroAgenda(const QString &texteDechiffre);
