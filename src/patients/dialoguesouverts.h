#pragma once

class QDialog;

// The patient dialogs count themselves in the main window's DialoguesOuverts
// while they are shown (the reminder window waits for it to come back to 0).
// Installs itself on the dialog: +1 when shown, -1 when hidden.
void CompterDialogueOuvert(QDialog *dialogue);
