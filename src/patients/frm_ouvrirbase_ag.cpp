#include "patients/frm_ouvrirbase_ag.h"

#include "patients/dialoguesouverts.h"
#include "patients/liaisons.h"
#include "shell/base/modal.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// The desktop's fixed font, unless what it resolves to is not fixed pitch
// after all (a fontconfig "monospace" alias can land on a proportional
// face): then a monospaced family that the installation provides.
QFont PoliceFixe()
{
    QFont police = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (QFontInfo(police).fixedPitch())
        return police;
    for (const QString &famille : {QStringLiteral("Liberation Mono"), QStringLiteral("DejaVu Sans Mono"), QStringLiteral("Courier New")}) {
        QFont essai(famille, police.pointSize());
        essai.setStyleHint(QFont::TypeWriter);
        if (QFontInfo(essai).fixedPitch())
            return essai;
    }
    return police;
}

} // namespace

frm_OuvrirBase_AG::frm_OuvrirBase_AG(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frm_OuvrirBase_AG"));
    setWindowTitle(QStringLiteral("Choisir un fichier de configuration d'Brenwick"));
    setModal(true);

    Frame1 = new QGroupBox(QStringLiteral("Sélectionner un utilisateur"), this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    List1 = new QListWidget(Frame1);
    List1->setObjectName(QStringLiteral("List1"));
    // The names stand in a field of 8 characters: they line up only in a
    // fixed font.
    List1->setFont(PoliceFixe());
    List1->setMinimumWidth(420);
    (new QVBoxLayout(Frame1))->addWidget(List1);

    Frame2 = new QGroupBox(QStringLiteral("Utilisateur sélectionné"), this);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    lblFichier = new QLabel(Frame2);
    lblFichier->setObjectName(QStringLiteral("lblFichier"));
    (new QVBoxLayout(Frame2))->addWidget(lblFichier);

    List_Base = new QListWidget(this);
    List_Base->setObjectName(QStringLiteral("List_Base"));
    List_Base->hide();

    Btn_Ok = new QPushButton(QStringLiteral("OK"), this);
    Btn_Ok->setObjectName(QStringLiteral("Btn_Ok"));
    btn_Annuler = new QPushButton(QStringLiteral("Retour"), this);
    btn_Annuler->setObjectName(QStringLiteral("btn_Annuler"));
    Alert = new QPushButton(QStringLiteral("&Lancer Brenwick sans choisir d'utilisateur"), this);
    Alert->setObjectName(QStringLiteral("Alert"));
    for (QPushButton *b : {Btn_Ok, btn_Annuler, Alert})
        b->setAutoDefault(false);

    auto *boutons = new QHBoxLayout;
    boutons->addWidget(Alert);
    boutons->addStretch();
    boutons->addWidget(Btn_Ok);
    boutons->addWidget(btn_Annuler);
    auto *disposition = new QVBoxLayout(this);
    disposition->addWidget(Frame1, 1);
    disposition->addWidget(Frame2);
    disposition->addLayout(boutons);

    connect(List1, &QListWidget::currentRowChanged, this, &frm_OuvrirBase_AG::selectionner);
    connect(List1, &QListWidget::itemDoubleClicked, this, &frm_OuvrirBase_AG::valider);
    connect(Btn_Ok, &QPushButton::clicked, this, &frm_OuvrirBase_AG::valider);
    connect(btn_Annuler, &QPushButton::clicked, this, [this] {
        ChoixBaseValide = false;
        reject();
    });
    connect(Alert, &QPushButton::clicked, this, [this] {
        ChoixBase.clear();
        ChoixBaseValide = true;
        accept();
    });
    List1->installEventFilter(this);
    CompterDialogueOuvert(this);
}

bool frm_OuvrirBase_AG::charger()
{
    const QList<UtilisateurZek> utilisateurs = UtilisateursZek(DossierConfig);
    if (utilisateurs.isEmpty()) {
        Prompt::informer(QStringLiteral("Brenwick"), QStringLiteral("Aucune base n'a été trouvée."),
                         Prompt::Icone::Information);
        ChoixBaseValide = false;
        return false;
    }
    lblFichier->setText(ChoixBase);
    for (const UtilisateurZek &u : utilisateurs) {
        List_Base->addItem(u.fichier);
        List1->addItem(u.ligne);
    }
    List1->setCurrentRow(0);
    return true;
}

void frm_OuvrirBase_AG::selectionner(int ligne)
{
    if (ligne < 0 || ligne >= List_Base->count())
        return;
    lblFichier->setText(AjouterSlash(DossierConfig) + List_Base->item(ligne)->text());
}

void frm_OuvrirBase_AG::valider()
{
    ChoixBase = lblFichier->text();
    ChoixBaseValide = true;
    accept();
}

bool frm_OuvrirBase_AG::eventFilter(QObject *objet, QEvent *evenement)
{
    if (objet == List1 && evenement->type() == QEvent::KeyPress) {
        const int touche = static_cast<QKeyEvent *>(evenement)->key();
        if (touche == Qt::Key_Return || touche == Qt::Key_Enter) {
            valider();
            return true;
        }
    }
    return QDialog::eventFilter(objet, evenement);
}

void ChoisirFichierZek(QWidget *parent)
{
    frm_OuvrirBase_AG dialogue(parent);
    if (dialogue.charger())
        ExecuterDialogue(dialogue);
}
