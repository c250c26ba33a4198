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
// is -1, read on entry: pass the code when anything may have run since the
// failure), or "WinAPI (where): <code> - No description exists for this error
// number." for a code the system does not know; returns what it showed.
QString ShowWinApiError(const QString &ou, int code = -1);

// --- Files and paths ---------------------------------------------------

// Trims and adds the platform separator unless the path already ends in
// "\" or "/".
[[nodiscard]] QString AjouterSlash(const QString &chemin);
// True when the file's length can be read; an empty file exists.
[[nodiscard]] bool FichierExiste(const QString &chemin);
// Makes every level of a folder path up to its last separator ("\" and "/"
// alike), so a folder path must end in one; a path without any separator is
// made as one folder (relative to the working folder). Never fails loudly.
void CreerDossiers(const QString &chemin);
// Reads a whole Windows-1252 text file; when the file is absent waits 3
// seconds once (Attendre) and looks again. No value: file not found (error
// 53), or a file that cannot be opened.
[[nodiscard]] std::optional<QString> LireFichierTexte(const QString &chemin);
// Deletes the file (ignoring failure), then writes the text in Windows-1252
// as a whole, with nothing added. False when the file could not be written.
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
// Opens a document with the desktop's program for it. False without a
// windowed application, or when the desktop refuses.
bool OuvrirDocument(const QString &chemin);
// Closes a top-level window of another program by its exact title. This
// platform gives no program access to other programs' windows, so nothing is
// found and false is returned.
bool FermerFenetreExterne(const QString &titre);
// Folder of a special-folder id (the platform's CSIDL numbers: 0 desktop,
// 5 documents, 7 start-up, 13 music, 14 video, 26 application data (the
// user's settings folder), 28 local application data, 35 shared application
// data, 39 pictures, 40 the user's home, ...), without a final separator.
// Empty for an id without a folder here (36 windows, 37 system, 38 program
// files, ...) and for an unknown id. The flag 0x8000 makes the folder.
[[nodiscard]] QString DossierSpecial(int id);

// --- Patients ------------------------------------------------------------

// The patient number of a packed text: field 11 (the twelfth) of its "§"
// fields, read by the leading-number rule; 0 when the text has fewer fields.
[[nodiscard]] qint64 ChampNumeroPatient(const QString &texte);
// A date as the user types it, day first: "15/03/1985", "5/3/1985",
// "15/03/85" (two-digit years 00-29 are 2000-2029, 30-99 1930-1999); "-" or
// "." may separate too. Invalid QDate when the text is no such date.
[[nodiscard]] QDate LireDateTexte(const QString &texte);
// The age shown beside a birth date: "12 jours", "13 semaines", "4 mois",
// "1 an", "42 ans", or empty, counted to Horloge::aujourdhui(). The date text
// may be rewritten (a short date with two trailing blanks is written out in
// full), hence the reference; a birth on 29 February counts from the 28th,
// but the caller's text keeps the 29th.
[[nodiscard]] QString TexteAge(QString &dateTexte);
