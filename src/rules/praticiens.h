#pragma once

#include "rules/regles.h"

#include <QDateTime>
#include <QString>

#include <functional>

// The practice's two practitioners as the appointment editor proposes them.

// The result of the practitioner chooser. It keeps its values between two
// choices: closing the chooser without a choice leaves them as they were.
extern QString ChosenPraticien;
extern QString ChosenColor; // as the settings write it, "&HFFFFFF"
extern qint16 ChosenNumero; // 1 or 2

// The name of practitioner 1 or 2 (section "Praticien" + n, item "Nom"),
// "Praticien 1" / "Praticien 2" when none is set.
[[nodiscard]] QString NomPraticien(int numero);
// The colour kept beside practitioner 1 or 2 (section "RDVType1", item
// "Couleur" + n), "&HFFFFFF" when none is set.
[[nodiscard]] QString CouleurPraticien(int numero);

// A press on the chooser's button 0 or 1: the chosen values take that
// practitioner's name (the button's caption), number and colour.
void ChoisirPraticien(int index, const QString &legende, const QString &couleur);

// Shows the chooser; true when a practitioner was chosen (the Chosen values
// then hold it).
using ChoixPraticien = std::function<bool()>;

// The practitioner and type of a new appointment: the rule of the start plus
// one second (so that an appointment at the very hour where one rule ends
// and another begins falls under the second) goes into RegleCourante; a
// moment without a rule naming a practitioner asks the chooser, and the
// choice becomes RegleCourante's practitioner, number and colour (TypeRV
// stays 0). Without a choice the practitioner stays empty. A Config.mdb that
// cannot be read is told in one box and asks no chooser: the practitioner
// stays empty rather than be picked against a rule nobody could read.
const RegleMatch &ProposerPraticien(const QDateTime &debut, const ChoixPraticien &choisir);

// The index of the editor's label list for a rule: TypeRV, plus 8 for the
// second practitioner (the list holds the eight labels of practitioner 1,
// then those of practitioner 2).
[[nodiscard]] int IndexLibelle(const RegleMatch &regle);
