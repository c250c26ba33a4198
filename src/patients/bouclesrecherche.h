#pragma once

#include <functional>

class QWidget;

// The patient search loops: a search dialog, then the patient card that the
// outcome asks for, until a patient is chosen or the user gives up.

// Which card a loop opens: the linked card (a row of a linked base) or the
// own card (a row of the own base, or a new patient). The card leaves
// PatientCourant as saved, or with Numero 0 when the user gave up. True when
// the card was saved.
enum class FichePatient { Liee, Agenda };
using OuvreurFiche = std::function<bool(FichePatient fiche, QWidget *parent)>;

// Installs the way cards are opened (tests install their own); an empty
// function reinstates the patient cards. Returns the previous one.
OuvreurFiche FixerOuvreurFiche(OuvreurFiche ouvreur);

// Opens the card modally (frmSignaletiques2_AG for Liee,
// frmSignaletiques_AG for Agenda) on PatientCourant and RetourRecherche.
bool OuvrirFichePatient(FichePatient fiche, QWidget *parent);

// The main window's patient command (toolbar button 12), on
// Recherche_patient_Agenda. RetourRecherche is 0 at the end.
void BoucleRecherchePatientPrincipale(QWidget *parent = nullptr);

// The appointment editor's patient choice, on Recherche_patient_AG. True when
// a patient was chosen: PatientCourant holds it and RetourRecherche tells how
// (1 linked row, 2 own row, 3 new patient, 4 the current patient kept).
bool BoucleRecherchePatientEditeur(QWidget *parent = nullptr);
