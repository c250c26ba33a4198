#include "appointments/frmoccurrenceserieschooser.h"

#include "shell/base/modal.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

frmOccurrenceSeriesChooser::frmOccurrenceSeriesChooser(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmOccurrenceSeriesChooser"));
    setWindowTitle(QStringLiteral("Evènement récurrent : "));
    setModal(true);

    auto nomme = [](QObject *o, const char *nom) { o->setObjectName(QLatin1String(nom)); };
    txtDescription = new QLabel(this);
    nomme(txtDescription, "txtDescription");
    txtDescription->setWordWrap(true);
    txtAction = new QLabel(this);
    nomme(txtAction, "txtAction");
    optOccurrence = new QRadioButton(this);
    nomme(optOccurrence, "optOccurrence");
    optSeries = new QRadioButton(this);
    nomme(optSeries, "optSeries");
    btnOK = new QPushButton(QStringLiteral("OK"), this);
    nomme(btnOK, "btnOK");
    btnOK->setDefault(true);
    btnCancel = new QPushButton(QStringLiteral("Annuler"), this);
    nomme(btnCancel, "btnCancel");

    auto *colonne = new QVBoxLayout(this);
    colonne->addWidget(txtDescription);
    colonne->addWidget(txtAction);
    colonne->addWidget(optOccurrence);
    colonne->addWidget(optSeries);
    auto *boutons = new QHBoxLayout;
    boutons->addStretch(1);
    boutons->addWidget(btnOK);
    boutons->addWidget(btnCancel);
    colonne->addLayout(boutons);

    connect(btnOK, &QPushButton::clicked, this, &frmOccurrenceSeriesChooser::valider);
    connect(btnCancel, &QPushButton::clicked, this, &frmOccurrenceSeriesChooser::annuler);
    charger();
}

void frmOccurrenceSeriesChooser::charger()
{
    // The spellings of these texts are the program's own and stay as they are.
    if (modeSuppression) {
        txtAction->setText(QStringLiteral("Voulez-vous éffacer cette occurence ou la série ?"));
        optOccurrence->setText(QStringLiteral("Effacer l'Occurrence"));
        optSeries->setText(QStringLiteral("Effacer la Série"));
    } else {
        txtAction->setText(QStringLiteral("Voulerz vous ouvrir l'occurence ou la série ?"));
        optOccurrence->setText(QStringLiteral("Ouvrir l'Occurrence"));
        optSeries->setText(QStringLiteral("Ouvrir la Série"));
    }
    confirme = false;
    txtDescription->setText(QStringLiteral("'") + sujetEvenement + QStringLiteral("'") + QStringLiteral(" est un évènement récurent."));
    optOccurrence->setChecked(occurrenceChoisie);
    optSeries->setChecked(!occurrenceChoisie);
}

void frmOccurrenceSeriesChooser::valider()
{
    confirme = true;
    occurrenceChoisie = optOccurrence->isChecked();
    accept();
}

void frmOccurrenceSeriesChooser::annuler()
{
    confirme = false;
    reject();
}

ChoixOccurrence frmOccurrenceSeriesChooser::demander(QWidget *parent, bool suppression, const QString &sujet)
{
    frmOccurrenceSeriesChooser dialogue(parent);
    dialogue.modeSuppression = suppression;
    dialogue.sujetEvenement = sujet;
    dialogue.charger();
    ExecuterDialogue(dialogue);
    if (!dialogue.confirme)
        return ChoixOccurrence::Annule;
    return dialogue.occurrenceChoisie ? ChoixOccurrence::Occurrence : ChoixOccurrence::Serie;
}
