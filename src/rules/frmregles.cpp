#include "rules/frmregles.h"

#include "patients/dialoguesouverts.h"
#include "rules/reglages.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/nombres.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

QString OldEndDate;
QString NewEndDate;

namespace {

QLineEdit *masque(const QString &nom, const QString &forme, QWidget *parent)
{
    auto *t = new QLineEdit(parent);
    t->setObjectName(nom);
    t->setInputMask(forme);
    t->setFixedWidth(t->fontMetrics().horizontalAdvance(QStringLiteral("00/00/00000")) + 12);
    return t;
}

QDate dateDuMasque(const QLineEdit *m)
{
    return LireDateTexte(m->displayText());
}

QTime heureDuMasque(const QLineEdit *m)
{
    return QTime::fromString(m->displayText(), QStringLiteral("HH:mm"));
}

const QString titreErreur = QStringLiteral("Erreur");

} // namespace

quint32 CouleurBouton(const QPushButton *b)
{
    return b->property("couleur").toUInt();
}

void FixerCouleurBouton(QPushButton *b, quint32 couleur)
{
    couleur &= 0xFFFFFF;
    b->setProperty("couleur", couleur);
    const QColor c(static_cast<int>(couleur & 0xFF), static_cast<int>((couleur >> 8) & 0xFF),
                   static_cast<int>((couleur >> 16) & 0xFF));
    b->setStyleSheet(QStringLiteral("background-color: %1; border: 1px solid gray;").arg(c.name()));
}

frmRegles::frmRegles(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmRegles"));
    setWindowTitle(QStringLiteral("Règle de plage de Rendez-vous"));
    setModal(true);
    CompterDialogueOuvert(this);

    auto *jours = new QHBoxLayout;
    static const char *const noms[] = {"", "Dim", "Lun", "Mar", "Mer", "Jeu", "Ven", "Sam"};
    // Shown from Monday to Sunday; the index stays the day's number.
    for (int j : {2, 3, 4, 5, 6, 7, 1}) {
        optDay[j] = new QRadioButton(QString::fromLatin1(noms[j]), this);
        optDay[j]->setObjectName(QStringLiteral("optDay(%1)").arg(j));
        jours->addWidget(optDay[j]);
    }
    Combo1 = new QComboBox(this);
    Combo1->setObjectName(QStringLiteral("Combo1"));
    Combo1->addItems({QStringLiteral("Semaine impaire"), QStringLiteral("Semaine paire"), QStringLiteral("Semaine toutes")});
    Combo1->setCurrentIndex(-1);
    MaskEdBox1 = masque(QStringLiteral("MaskEdBox1"), QStringLiteral("99/99/9999;_"), this);
    MaskEdBox3 = masque(QStringLiteral("MaskEdBox3"), QStringLiteral("99/99/9999;_"), this);
    MaskEdBox2 = masque(QStringLiteral("MaskEdBox2"), QStringLiteral("99:99;_"), this);
    MaskEdBox4 = masque(QStringLiteral("MaskEdBox4"), QStringLiteral("99:99;_"), this);
    Combo2 = new QComboBox(this);
    Combo2->setObjectName(QStringLiteral("Combo2"));
    Combo3 = new QComboBox(this);
    Combo3->setObjectName(QStringLiteral("Combo3"));
    PicColor1 = new QPushButton(this);
    PicColor1->setObjectName(QStringLiteral("PicColor1"));
    PicColor1->setFixedSize(60, 24);
    PicColor1->setToolTip(QStringLiteral("Couleur de la plage : cliquez pour la changer"));
    cmdOk = new QPushButton(QStringLiteral("&OK"), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel = new QPushButton(QStringLiteral("&Annuler"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));

    auto *f = new QFormLayout;
    f->addRow(QStringLiteral("Jour :"), jours);
    f->addRow(QStringLiteral("Semaine :"), Combo1);
    f->addRow(QStringLiteral("Début de la règle le :"), MaskEdBox1);
    f->addRow(QStringLiteral("Fin de la règle le :"), MaskEdBox3);
    auto *heures = new QHBoxLayout;
    heures->addWidget(MaskEdBox2);
    heures->addWidget(new QLabel(QStringLiteral("à"), this));
    heures->addWidget(MaskEdBox4);
    heures->addStretch();
    f->addRow(QStringLiteral("Plage de :"), heures);
    f->addRow(QStringLiteral("Praticien :"), Combo2);
    f->addRow(QStringLiteral("Type de rendez-vous :"), Combo3);
    f->addRow(QStringLiteral("Couleur :"), PicColor1);
    auto *boutons = new QHBoxLayout;
    boutons->addStretch();
    boutons->addWidget(cmdOk);
    boutons->addWidget(cmdCancel);
    auto *l = new QVBoxLayout(this);
    l->addLayout(f);
    l->addLayout(boutons);

    // The seven types and "Absent"; the practitioners that have a name.
    const AppState &etat = appState();
    for (int t = 0; t < 7; ++t) {
        const QString section = QStringLiteral("RDVType%1").arg(t + 1);
        Combo3->addItem(LireConfig(section, QStringLiteral("Type"), etat.TypesRDV.at(t)));
        m_couleurs[0][t] = LireCouleur(LireConfig(section, QStringLiteral("Couleur1"), QStringLiteral("&HFFFFFF")));
        m_couleurs[1][t] = LireCouleur(LireConfig(section, QStringLiteral("Couleur2"), QStringLiteral("&HFFFFFF")));
    }
    Combo3->addItem(QStringLiteral("Absent"));
    m_couleurs[0][7] = m_couleurs[1][7] = 0xFFFFFF;
    for (int p = 1; p <= 2; ++p) {
        const QString nom = LireConfig(QStringLiteral("Praticien%1").arg(p), QStringLiteral("Nom"), QString());
        if (!nom.isEmpty())
            Combo2->addItem(nom);
    }
    Combo2->setCurrentIndex(-1);
    Combo3->setCurrentIndex(-1);

    const RegleEdition &t = RegleEnEdition;
    const int jour = static_cast<int>(LireEntier(t.JourNumero));
    if (jour >= 1 && jour <= 7)
        optDay[jour]->setChecked(true);
    // A buffer of colour 0 opens the dialog blank.
    if (t.TypeColor != 0) {
        Combo1->setCurrentIndex(t.Semaine - 1);
        MaskEdBox1->setText(t.DateDebut.toString(QStringLiteral("dd/MM/yyyy")));
        MaskEdBox3->setText(t.DateFin.toString(QStringLiteral("dd/MM/yyyy")));
        MaskEdBox2->setText(t.HeureDebut.toString(QStringLiteral("HH:mm")));
        MaskEdBox4->setText(t.HeureFin.toString(QStringLiteral("HH:mm")));
        Combo2->setCurrentIndex(Combo2->findText(t.Praticien));
        Combo3->setCurrentIndex(t.TypeRV);
        afficherCouleur(static_cast<quint32>(t.TypeColor));
    } else {
        afficherCouleur(0xFFFFFF);
    }
    connect(Combo2, &QComboBox::activated, this, &frmRegles::couleurDuType);
    connect(Combo3, &QComboBox::activated, this, &frmRegles::couleurDuType);
    connect(PicColor1, &QPushButton::clicked, this, &frmRegles::choisirCouleur);
    connect(cmdOk, &QPushButton::clicked, this, &frmRegles::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmRegles::reject);
}

void frmRegles::afficherCouleur(quint32 couleur)
{
    m_couleur = couleur & 0xFFFFFF;
    FixerCouleurBouton(PicColor1, m_couleur);
}

void frmRegles::couleurDuType()
{
    // The practitioner's row of colours; with one name only, the list's
    // index is still the practitioner's number less one.
    if (Combo2->currentIndex() < 0 || Combo3->currentIndex() < 0)
        return;
    afficherCouleur(m_couleurs[static_cast<std::size_t>(std::min(Combo2->currentIndex(), 1))]
                              [static_cast<std::size_t>(Combo3->currentIndex())]);
}

void frmRegles::choisirCouleur()
{
    if (const auto c = Prompt::choisirCouleur(m_couleur))
        afficherCouleur(*c);
}

bool frmRegles::refuser(QWidget *champ, const QString &message)
{
    Prompt::informer(titreErreur, message, Prompt::Icone::Exclamation);
    champ->setFocus();
    return false;
}

void frmRegles::cmdOk_Click()
{
    int jour = 0;
    for (int j = 1; j <= 7; ++j) {
        if (optDay[j]->isChecked())
            jour = j;
    }
    const QString dateInvalide = QStringLiteral("Veuillez entrer une date valide");
    const QString heureInvalide = QStringLiteral("Veuillez entrer une heure valide");
    if (jour == 0) {
        refuser(optDay[2], QStringLiteral("Veuillez sélectionner un jour"));
        return;
    }
    if (Combo1->currentIndex() < 0) {
        refuser(Combo1, QStringLiteral("Veuillez saisir la parité de la semaine"));
        return;
    }
    if (!dateDuMasque(MaskEdBox1).isValid() && !refuser(MaskEdBox1, dateInvalide))
        return;
    if (!dateDuMasque(MaskEdBox3).isValid() && !refuser(MaskEdBox3, dateInvalide))
        return;
    if (!heureDuMasque(MaskEdBox2).isValid() && !refuser(MaskEdBox2, heureInvalide))
        return;
    if (!heureDuMasque(MaskEdBox4).isValid() && !refuser(MaskEdBox4, heureInvalide))
        return;
    RegleEdition &t = RegleEnEdition;
    t.DateDebut = dateDuMasque(MaskEdBox1);
    t.DateFin = dateDuMasque(MaskEdBox3);
    t.HeureDebut = heureDuMasque(MaskEdBox2);
    t.HeureFin = heureDuMasque(MaskEdBox4);
    t.Jour = NomJourRegle(jour);
    t.JourNumero = QString::number(jour);
    t.Semaine = static_cast<qint16>(Combo1->currentIndex() + 1);
    t.Praticien = Combo2->currentText();
    t.PraticienNumero = QString::number(Combo2->currentIndex() + 1);
    t.TypeRV = static_cast<qint16>(Combo3->currentIndex());
    t.TypeText = Combo3->currentText();
    t.TypeColor = static_cast<qint32>(m_couleur);
    accept();
}

void frmRegles::reject()
{
    RegleEnEdition.JourNumero = QStringLiteral("-1");
    QDialog::reject();
}

frmChangeDate::frmChangeDate(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmChangeDate"));
    setWindowTitle(QStringLiteral("Modifier une date de fin de règle"));
    setModal(true);
    OldEndDate.clear();
    NewEndDate.clear();
    auto *f = new QFormLayout;
    for (int i = 0; i < 2; ++i)
        mebDateFinRegle[i] = masque(QStringLiteral("mebDateFinRegle(%1)").arg(i), QStringLiteral("99/99/9999;_"), this);
    f->addRow(QStringLiteral("Date de fin actuelle :"), mebDateFinRegle[0]);
    f->addRow(QStringLiteral("Nouvelle date de fin :"), mebDateFinRegle[1]);
    cmdOk = new QPushButton(QStringLiteral("&OK"), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel = new QPushButton(QStringLiteral("&Annuler"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    auto *boutons = new QHBoxLayout;
    boutons->addStretch();
    boutons->addWidget(cmdOk);
    boutons->addWidget(cmdCancel);
    auto *l = new QVBoxLayout(this);
    l->addLayout(f);
    l->addLayout(boutons);
    connect(cmdOk, &QPushButton::clicked, this, &frmChangeDate::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmChangeDate::cmdOk_Click()
{
    for (QLineEdit *m : mebDateFinRegle) {
        if (!dateDuMasque(m).isValid()) {
            m->setFocus();
            Prompt::bip();
            return;
        }
    }
    OldEndDate = dateDuMasque(mebDateFinRegle[0]).toString(QStringLiteral("yyyy/MM/dd"));
    NewEndDate = dateDuMasque(mebDateFinRegle[1]).toString(QStringLiteral("yyyy/MM/dd"));
    accept();
}
