#pragma once

#include <QString>
#include <QStringList>

// The patient base Patients.mdb (SQLite on this platform): tables
// Signaletiques (68 columns), Events, Notes and Brenwick, with their indexes.

// Path of the patient base in a folder. The creator has always spelled the
// file "patients.mdb" and every reader "Patients.mdb": on a case-sensitive
// file system both are the same base, so an existing file of either spelling
// is returned, and "Patients.mdb" otherwise.
[[nodiscard]] QString CheminPatientsMdb(const QString &dossier);

// Creates the base "Patients.mdb" in the folder (with or without a trailing
// separator; the folder is given back with one) when no file of either
// spelling exists yet. An existing file is never touched: false, no box. On a
// failure shows the critical box titled "Tavonel" (SQLite error number, two
// line breaks, description), removes its own half-made file and returns false.
// True once the four tables and the Brenwick row are committed.
bool CreerBasePatients(QString &dossier);

// The 68 column names of Signaletiques, in their order.
[[nodiscard]] const QStringList &ColonnesSignaletiques();

// What a column of Signaletiques holds, and how it is stored (see the layout
// at the top of the .cpp): a card converts its fields by it.
enum class GenreColonne { Texte, Memo, Booleen, Long, DateHeure, Compteur };
struct DescriptionColonne
{
    GenreColonne genre = GenreColonne::Texte;
    int longueur = 0; // characters, Texte only
};
// The column of Signaletiques with this name; Memo for a name it does not have.
[[nodiscard]] DescriptionColonne ColonneSignaletiques(const QString &nom);
