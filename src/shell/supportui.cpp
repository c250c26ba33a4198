#include "shell/supportui.h"

#include "shell/support.h"

#include <QComboBox>

void RemplirCombosDuree(QComboBox *combo, bool sans1minute, bool joursSeuls)
{
    combo->addItems(ListeDurees(sans1minute, joursSeuls));
}
// TEMP placeholder
void mListBoxAdjustHScroll(QWidget *) {}
int mlStringLenInControl(QWidget *, const QString &) { return 0; }
