#pragma once

#include <QString>

// The map of a patient's address: the template page delivered beside the
// program (System/Maps.htm) with the address put in place of every
// "------ADRESSE------", written as ~maps.htm in the program folder for the
// viewer, and deleted once the viewer is closed.

// The address block of a card, as its fields hold it.
struct AdresseCarte
{
    QString adresse1;
    QString adresse2;
    QString codePostal;
    QString ville;
};

struct PageCarte
{
    enum class Issue {
        Ecrite,            // chemin is the page to open
        AdresseIncomplete, // message goes with the title "Erreur de saisie" and the exclamation icon
        Erreur,            // the template could not be read or the page written
    };
    Issue issue = Issue::Erreur;
    QString chemin;
    QString message;
};

// Adresse1, the code and the town must not be empty once trimmed; the page
// then gets the four fields, each followed by a blank.
[[nodiscard]] PageCarte EcrirePageCarte(const AdresseCarte &adresse);

// The path of the generated page. One spelling only: on a file system that
// heeds case, "~Maps.htm" would be another file.
[[nodiscard]] QString CheminPageCarte();

// Deletes the generated page, if any.
void SupprimerPageCarte();
