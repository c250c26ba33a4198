#include "appointments/frmcustomeventproperties.h"

#include "calendar/calendarevent.h"
#include "patients/dialoguesouverts.h"
#include "shell/base/modal.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmCustomEventProperties::frmCustomEventProperties(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmCustomEventProperties"));
    setWindowTitle(QStringLiteral("Custom Event Properties"));
    setModal(true);
    CompterDialogueOuvert(this);

    auto *grille = new QGridLayout;
    lblPropName = new QLabel(QStringLiteral("Property name"), this);
    lblPropName->setObjectName(QStringLiteral("lblPropName"));
    lblPropValue = new QLabel(QStringLiteral("Value"), this);
    lblPropValue->setObjectName(QStringLiteral("lblPropValue"));
    grille->addWidget(lblPropName, 0, 0);
    grille->addWidget(lblPropValue, 0, 1);
    for (int i = 0; i < NombreLignes; ++i) {
        editPropName[i] = new QLineEdit(this);
        editPropName[i]->setObjectName(QStringLiteral("editPropName(%1)").arg(i));
        editPropValue[i] = new QLineEdit(this);
        editPropValue[i]->setObjectName(QStringLiteral("editPropValue(%1)").arg(i));
        grille->addWidget(editPropName[i], i + 1, 0);
        grille->addWidget(editPropValue[i], i + 1, 1);
    }
    grille->setColumnStretch(1, 2);
    grille->setColumnStretch(0, 1);

    cmdOk = new QPushButton(QStringLiteral("OK"), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdOk->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    auto *boutons = new QHBoxLayout;
    boutons->addStretch();
    boutons->addWidget(cmdOk);
    boutons->addWidget(cmdCancel);

    auto *disposition = new QVBoxLayout(this);
    disposition->addLayout(grille);
    disposition->addLayout(boutons);
    setMinimumWidth(420);

    connect(cmdOk, &QPushButton::clicked, this, &frmCustomEventProperties::valider);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmCustomEventProperties::SetEvent(const CalendarEventPtr &event)
{
    if (!event)
        return;
    m_pEvent = event;
    int ligne = 0;
    for (const CustomProperties::Entry &entree : event->CustomProperties().Entries()) {
        if (ligne >= NombreLignes)
            break;
        editPropName[ligne]->setText(entree.first);
        editPropValue[ligne]->setText(entree.second.toString());
        ++ligne;
    }
}

void frmCustomEventProperties::valider()
{
    if (m_pEvent) {
        CustomProperties &sac = m_pEvent->CustomProperties();
        sac.RemoveAll();
        for (int i = 0; i < NombreLignes; ++i) {
            const QString nom = editPropName[i]->text().trimmed();
            if (!nom.isEmpty())
                sac.SetProperty(nom, editPropValue[i]->text());
        }
    }
    accept();
}

bool EditerProprietesPersonnalisees(const CalendarEventPtr &event, QWidget *parent)
{
    frmCustomEventProperties dialogue(parent);
    dialogue.SetEvent(event);
    return ExecuterDialogue(dialogue) == QDialog::Accepted;
}
