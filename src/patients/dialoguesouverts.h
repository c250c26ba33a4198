#pragma once

class QDialog;

// The editing dialogs count themselves in the main window's DialoguesOuverts
// while they are shown (the reminder window waits for it to come back to 0):
// the appointment editor, its custom properties, the settings, the time
// zones, the advanced options, the store chooser, the rules, the linked
// base choices, the messaging set-up, the start-up window, the two searches
// and the two patient cards. No other window counts.
// Installs itself on the dialog: +1 when shown, -1 when hidden.
void CompterDialogueOuvert(QDialog *dialogue);

// The counter the dialogs count in: the main window hands its own when it is
// made and takes it back when it goes (only the counter handed last is taken
// back). Without one, shown dialogs count nowhere.
void FixerCompteurDialogues(int *compteur);
void RetirerCompteurDialogues(const int *compteur);
