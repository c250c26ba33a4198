#include "rules/frmpraticiens.h"

#include "rules/praticiens.h"
#include "shell/base/modal.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

frmPraticiens::frmPraticiens(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmPraticiens"));
    setWindowTitle(QStringLiteral("Choisir un Praticien"));
    setModal(true);

    auto *colonne = new QVBoxLayout(this);
    auto *consigne = new QLabel(QStringLiteral("Aucune règle ne donne le praticien de ce rendez-vous."), this);
    colonne->addWidget(consigne);
    auto *ligne = new QHBoxLayout;
    for (int i = 0; i < 2; ++i) {
        btn_Prat[i] = new QPushButton(NomPraticien(i + 1), this);
        btn_Prat[i]->setObjectName(QStringLiteral("btn_Prat(%1)").arg(i));
        btn_Prat[i]->setMinimumSize(160, 48);
        btn_Prat[i]->setAutoDefault(false);
        m_couleurs[i] = CouleurPraticien(i + 1);
        connect(btn_Prat[i], &QPushButton::clicked, this, [this, i] { choisir(i); });
        ligne->addWidget(btn_Prat[i]);
    }
    colonne->addLayout(ligne);
}

void frmPraticiens::choisir(int index)
{
    ChoisirPraticien(index, btn_Prat[index]->text(), m_couleurs[index]);
    accept();
}

bool frmPraticiens::Choisir(QWidget *parent)
{
    frmPraticiens dialogue(parent);
    return ExecuterDialogue(dialogue) == QDialog::Accepted;
}
