#pragma once

#include <QList>
#include <QString>

#include <array>

struct AppState;

// The links of the agenda with the patient bases of the practice-management
// product: four slots of three keys (Path, Identity, Zek) in the agenda's
// section of Agenda.ini, and the *.zek user files of that product.

// The folder of the *.zek files (see LireDossierConfig), read when the
// practice settings or the link dialog open.
extern QString DossierConfig;
// The outcome of the user file chooser: the chosen file (empty for "no
// user") and whether a choice was made.
extern QString ChoixBase;
extern bool ChoixBaseValide;

// The twelve keys of an agenda's section of Agenda.ini, index 1 to 4 of each
// array (0 unused): Path1 to Path4, Identity1 to Identity4, Zek1 to Zek4,
// each empty by default.
struct CleLiaisons
{
    std::array<QString, 5> paths;
    std::array<QString, 5> identites;
    std::array<QString, 5> zeks;
};
// Read from the given Agenda.ini (the program folder's when none is given).
[[nodiscard]] CleLiaisons LireCleLiaisons(const QString &agenda, const QString &agendaIni = {});

// Reads the twelve keys of the state's agenda into the state (Path,
// Identity, Zek).
void LireLiaisons(AppState &etat, const QString &agendaIni = {});

// Writes the twelve keys in the same order (index 1 to 4 of each array),
// then reads them back into the state.
void EcrireLiaisons(AppState &etat, const std::array<QString, 5> &paths, const std::array<QString, 5> &identites,
                    const std::array<QString, 5> &zeks);

// The folder where the system keeps the other product's profile file
// "Kelmoreg.reg": TAVONEL_DOSSIER_PROFILS when set, else /etc/tavonel when it
// holds the file, else the program folder's "System". Ends in a separator.
[[nodiscard]] QString DossierProfilsSysteme();

// DossierConfig: the folder of the *.zek files, key Path of section
// "Brenwick.32" of Kelmoreg.reg; empty when not set.
[[nodiscard]] QString LireDossierConfig();

// One line of the user list: the file name and the text shown.
struct UtilisateurZek
{
    QString fichier; // the file name, without folder
    QString ligne;   // name on 8 characters + " : " + Titre + " " + Nom + " " + Prenom
};

// The *.zek files of the folder in name order, at most 101; a file whose
// name has no "." ends the list. Empty when the folder holds none.
[[nodiscard]] QList<UtilisateurZek> UtilisateursZek(const QString &dossierConfig);

// What a *.zek file gives a link slot: the path of the base ("Patients" of
// section Base, with the separator and "Patients.mdb" added when not empty)
// and its identifier (key IdentifiantBase of section Base).
struct LiaisonZek
{
    QString path;
    QString identity;
};
[[nodiscard]] LiaisonZek LireLiaisonZek(const QString &fichierZek);

// The identifier that a linked base gives its rows (the commonest value of
// column Base other than "Agenda"); empty when it holds none or cannot be
// read.
[[nodiscard]] QString IdentifiantDansBase(const QString &cheminPatients);
