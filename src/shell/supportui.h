#pragma once

#include <QString>

class QComboBox;
class QWidget;

// The widget side of the shared routines.

// Adds the reminder durations to a combo box (see ListeDurees).
void RemplirCombosDuree(QComboBox *combo, bool sans1minute, bool joursSeuls);

// Widens the horizontal scrolling of a list or combo box to its longest
// entry plus 4 pixels. Any other widget shows
// "mListBoxAdjustHScroll: Invalid argument value for ctlControl.".
void mListBoxAdjustHScroll(QWidget *controle);
// Width in pixels of a text in the control's font.
[[nodiscard]] int mlStringLenInControl(QWidget *controle, const QString &texte);
