#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

// Small shared routines: durations in words, week numbers, paths and files,
// user and computer names, the age text. Stateless; interface thread only.
// The widget side (combo boxes, list widths) is in shell/supportui.h.

// --- Durations ---------------------------------------------------------

// "90" -> 90, "1.5 h" -> 90, "2d" -> 2880, "1 w" -> 10080, "3 x" -> 3;
// returns false for an empty text or a text without a number. minutes is set
// to 0 on entry.
bool ParseDuree(const QString &texte, qint32 &minutes);
[[nodiscard]] QString FormatDuree(qint32 minutes, bool force);
// The fixed list of the reminder combo boxes; unknown texts give 0, unknown
// numbers the empty text.
[[nodiscard]] qint32 DureeTexteVersMinutes(const QString &texte);
[[nodiscard]] QString MinutesVersDureeTexte(qint32 minutes);
// The entries that RemplirCombosDuree puts in a combo box, in order.
[[nodiscard]] QStringList ListeDurees(bool sans1minute, bool joursSeuls);

// --- Check boxes ---------------------------------------------------------

[[nodiscard]] constexpr bool CaseVersBooleen(int valeur) { return valeur > 0; }
[[nodiscard]] constexpr int BooleenVersCase(bool valeur) { return valeur ? 1 : 0; }

// --- Weeks -------------------------------------------------------------

// ISO 8601 week number, worked out as the practice always has.
[[nodiscard]] int GetWeekNumber(const QDate &date);
// 1 for an odd week number, 2 for an even one.
[[nodiscard]] int GetWeekParity(const QDate &date);
// Weekday with Sunday 1 ... Saturday 7.
[[nodiscard]] int JourSemaineDimanche1(const QDate &date);

// --- System errors -----------------------------------------------------

// Shows "WinAPI (where): <system text>" for the error code (errno when code
// is -1), or the "No description exists" text; returns what it showed.
QString ShowWinApiError(const QString &ou, int code = -1);

// --- Files and paths ---------------------------------------------------

// Trims and adds the platform separator unless the path already ends in
// "\" or "/".
[[nodiscard]] QString AjouterSlash(const QString &chemin);
// True when the file's length can be read; an empty file exists.
[[nodiscard]] bool FichierExiste(const QString &chemin);
// Makes every level of a folder path up to its last separator; never fails
// loudly.
void CreerDossiers(const QString &chemin);
// Reads a whole Windows-1252 text file; when the file is absent waits 3
// seconds once and looks again. No value: file not found (error 53).
[[nodiscard]] std::optional<QString> LireFichierTexte(const QString &chemin);
// Deletes the file (ignoring failure), then writes the text in Windows-1252.
bool EcrireFichierTexte(const QString &texte, const QString &chemin);
// Deletes a file; 0 for success, otherwise the error number (53 file not
// found, 70 permission denied, 75 path/file access error). Never raises.
int SupprimerFichier(const QString &chemin);

// --- Waiting, names, shell --------------------------------------------

// Shows the busy pointer and keeps the event loop running until the time has
// passed.
void Attendre(double secondes);
[[nodiscard]] QString NomUtilisateur();
[[nodiscard]] QString NomOrdinateur();
[[nodiscard]] QString ApostrophesSQL(const QString &texte);
// Opens a document with the desktop's program for it.
bool OuvrirDocument(const QString &chemin);
// Closes a top-level window of another program by its exact title. This
// platform gives no program access to other programs' windows, so nothing is
// found and false is returned.
bool FermerFenetreExterne(const QString &titre);
// Folder of a special-folder id (the platform's CSIDL numbers: 5 documents,
// 26 application data, 28 local application data, 36 windows, ...). Empty for
// an unknown id.
[[nodiscard]] QString DossierSpecial(int id);

// --- Patients ------------------------------------------------------------

// The patient number of a packed text: field 11 (the twelfth) of its "§"
// fields, read by the leading-number rule.
[[nodiscard]] qint64 ChampNumeroPatient(const QString &texte);
// The age shown beside a birth date: "12 jours", "13 semaines", "4 mois",
// "1 an", "42 ans", or empty. The date text may be rewritten (a date with two
// trailing blanks is reduced to its date part), hence the reference.
[[nodiscard]] QString TexteAge(QString &dateTexte);
