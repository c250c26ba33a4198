#pragma once

#include <QString>

class QComboBox;
class QWidget;

// The widget side of the shared routines.

// Adds the reminder durations to a combo box (see ListeDurees).
void RemplirCombosDuree(QComboBox *combo, bool sans1minute, bool joursSeuls);

// Widens the horizontal scrolling of a list (QListView, QListWidget) to its
// longest entry, by number of characters, plus 4 pixels, for as long as the
// list lives; for a combo box the drop-down list gets that width at least.
// Any other widget, or none, shows
// "mListBoxAdjustHScroll: Invalid argument value for ctlControl.".
void mListBoxAdjustHScroll(QWidget *controle);
// Width in pixels of a text in the control's font (the application's font
// without a control).
[[nodiscard]] int mlStringLenInControl(QWidget *controle, const QString &texte);

// Selects the text in the list, adding it first when the list lacks it (a
// value written by hand or by another program stays as it is).
void ChoisirTexte(QComboBox *liste, const QString &texte);
