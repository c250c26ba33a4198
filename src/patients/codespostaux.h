#pragma once

#include <QString>
#include <QStringList>

// The town help of the patient cards: the towns of a postal code, or of all
// the codes that begin with what was typed, from the list delivered beside
// the program (System/cp.mdb, table CP, columns CP and Localité).

struct AideCodePostal
{
    enum class Issue {
        Liste,       // lignes holds the lines to show
        Departement, // too short or not numeric: the field takes the focus back
        Inconnu,     // no row
        Erreur,      // the list cannot be read
    };
    Issue issue = Issue::Erreur;
    QString message; // the text to show, for every issue but Liste
    // Code padded with blanks to 8 characters, then the town; ordered by town,
    // then code.
    QStringList lignes;
};

// The lines of the codes that begin with the text of the code field. The
// text needs at least 2 characters and must be numeric ("2A" is not);
// otherwise "Veuillez saisir au moins le département".
[[nodiscard]] AideCodePostal ChercherCodePostal(const QString &texte);

struct CodeVille
{
    QString code;
    QString ville;
};

// The code and the town of a chosen line: a line shorter than 9 characters is
// the code alone; otherwise the code is the first 7 characters and the town
// what follows the 8th, both trimmed.
[[nodiscard]] CodeVille LireLigneCodePostal(const QString &ligne);
