#pragma once

#include <QString>

// The record through which the appointment editor, the search dialogs and the
// patient cards hand a patient to one another (AppState::PatientCourant).
// Twenty-three values, in the order of the base's columns.
struct PatientCourantRecord
{
    QString Nom;
    QString Prenom;
    QString NomJeuneFille;
    QString DateNaissance;
    qint32 Numero = 0;
    bool Sexe = false;
    QString NomAssure;
    QString NomSesam;
    QString PrenomSesam;
    QString Contrat;
    QString Profession;
    QString Adresse1;
    QString Adresse2;
    QString CodePostal;
    QString Ville;
    QString Telephone1;
    QString Telephone2;
    QString Mel;
    QString NumeroSecu;
    QString InsC;
    QString InsA;
    QString Identifiant;
    QString Base;
};
