#include "patients/frmzek_ag2.h"

#include "patients/dialoguesouverts.h"
#include "patients/frm_ouvrirbase_ag.h"
#include "patients/liaisons.h"
#include "shell/appstate.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmZek_AG2::frmZek_AG2(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmZek_AG2"));
    setWindowTitle(QStringLiteral("Liaison avec Brenwick"));
    setModal(true);
    // The folder of the user files, as it is now.
    DossierConfig = LireDossierConfig();

    const QString libelles[5] = {
        QString(),
        QStringLiteral("Base Principale (dans cette configuration, une base d'agenda doit être trouvée)  :"),
        QStringLiteral("Base Secondaire :"),
        QStringLiteral("Base Secondaire 2 :"),
        QStringLiteral("Base Secondaire 3 :"),
    };
    auto *grille = new QGridLayout;
    // The keys as Agenda.ini holds them now.
    const CleLiaisons cles = LireCleLiaisons(appState().AgendaName);
    for (int i = 1; i <= 4; ++i) {
        const int ligne = (i - 1) * 2;
        grille->addWidget(new QLabel(libelles[i], this), ligne, 0, 1, 4);
        auto champ = [&](const QString &nom) {
            auto *t = new QLineEdit(this);
            t->setObjectName(QStringLiteral("%1(%2)").arg(nom).arg(i));
            return t;
        };
        DBPath[i] = champ(QStringLiteral("DBPath"));
        DBIdentity[i] = champ(QStringLiteral("DBIdentity"));
        TextZek[i] = champ(QStringLiteral("TextZek"));
        DBpathDialog[i] = new QPushButton(QStringLiteral("..."), this);
        DBpathDialog[i]->setObjectName(QStringLiteral("DBpathDialog(%1)").arg(i));
        DBpathDialog[i]->setAutoDefault(false);
        DBPath[i]->setMinimumWidth(280);
        grille->addWidget(DBPath[i], ligne + 1, 0);
        grille->addWidget(DBIdentity[i], ligne + 1, 1);
        grille->addWidget(TextZek[i], ligne + 1, 2);
        grille->addWidget(DBpathDialog[i], ligne + 1, 3);
        DBPath[i]->setText(cles.paths[i]);
        DBIdentity[i]->setText(cles.identites[i]);
        TextZek[i]->setText(cles.zeks[i]);
        connect(DBpathDialog[i], &QPushButton::clicked, this, [this, i] { Parcourir(i); });
    }

    btnValider = new QPushButton(QStringLiteral("&Valider"), this);
    btnValider->setObjectName(QStringLiteral("btnValider"));
    btnAnnuler = new QPushButton(QStringLiteral("&Annuler"), this);
    btnAnnuler->setObjectName(QStringLiteral("btnAnnuler"));
    btnValider->setAutoDefault(false);
    btnAnnuler->setAutoDefault(false);
    connect(btnValider, &QPushButton::clicked, this, &frmZek_AG2::Valider);
    connect(btnAnnuler, &QPushButton::clicked, this, &QDialog::reject);

    auto *boutons = new QHBoxLayout;
    boutons->addStretch();
    boutons->addWidget(btnValider);
    boutons->addWidget(btnAnnuler);
    auto *disposition = new QVBoxLayout(this);
    disposition->addLayout(grille);
    disposition->addLayout(boutons);
    CompterDialogueOuvert(this);
}

void frmZek_AG2::Parcourir(int i)
{
    ChoisirFichierZek(this);
    if (!ChoixBaseValide)
        return;
    const LiaisonZek l = LireLiaisonZek(ChoixBase);
    DBPath[i]->setText(l.path);
    DBIdentity[i]->setText(l.identity);
    TextZek[i]->setText(ChoixBase);
}

void frmZek_AG2::Valider()
{
    std::array<QString, 5> paths, identites, zeks;
    for (int i = 1; i <= 4; ++i) {
        paths[i] = DBPath[i]->text();
        identites[i] = DBIdentity[i]->text();
        zeks[i] = TextZek[i]->text();
    }
    EcrireLiaisons(appState(), paths, identites, zeks);
    accept();
}
