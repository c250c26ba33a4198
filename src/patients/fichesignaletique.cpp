#include "patients/fichesignaletique.h"

#include "patients/cartes.h"
#include "patients/codespostaux.h"
#include "patients/dialoguesouverts.h"
#include "patients/gestiontype.h"
#include "patients/schemapatients.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"
#include "shell/base/supportui.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

namespace {

const QString titreProgramme = QStringLiteral("Tavonel");
const QString tagPrive = QStringLiteral("CodPostPriv");
const QString tagPro = QStringLiteral("CodPostPro");

bool quitteParUtilisateur(Qt::FocusReason r)
{
    return r == Qt::TabFocusReason || r == Qt::BacktabFocusReason || r == Qt::MouseFocusReason
           || r == Qt::ShortcutFocusReason || r == Qt::OtherFocusReason;
}

QString nomChamp(int i)
{
    return QStringLiteral("txtFields(%1)").arg(i);
}

QLabel *libelle(const QString &texte, QWidget *parent)
{
    return new QLabel(texte, parent);
}

// Two fields on one row of a form: the second with its own label.
QWidget *paire(QWidget *premier, const QString &libelleSecond, QWidget *second, QWidget *parent)
{
    auto *w = new QWidget(parent);
    auto *l = new QHBoxLayout(w);
    l->setContentsMargins(0, 0, 0, 0);
    l->addWidget(premier, 1);
    if (!libelleSecond.isEmpty())
        l->addWidget(libelle(libelleSecond, w));
    l->addWidget(second, 2);
    return w;
}

QFormLayout *formulaire(QWidget *parent)
{
    auto *f = new QFormLayout(parent);
    f->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    f->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    f->setVerticalSpacing(3);
    return f;
}

} // namespace

QString FicheSignaletique::colonneDuChamp(int i)
{
    static const QMap<int, QString> colonnes{
        {0, QStringLiteral("Nom")},
        {1, QStringLiteral("Prenom")},
        {2, QStringLiteral("Date de Naissance")},
        {3, QStringLiteral("Nom de jeune fille")},
        {4, QStringLiteral("Nom de l'assuré")},
        {5, QStringLiteral("INS_A")},
        {6, QStringLiteral("Pro_Mèl")},
        {7, QStringLiteral("Profession")},
        {8, QStringLiteral("Adresse1")},
        {9, QStringLiteral("Adresse2")},
        {10, QStringLiteral("Code Postal")},
        {11, QStringLiteral("Ville")},
        {12, QStringLiteral("Telephone1")},
        {13, QStringLiteral("Telephone2")},
        {14, QStringLiteral("INS_C")},
        {15, QStringLiteral("Enfants")},
        {17, QStringLiteral("Prise en charge")},
        {18, QStringLiteral("Numero de secu")},
        {19, QStringLiteral("Code CPAM")},
        {20, QStringLiteral("Code Centre")},
        {23, QStringLiteral("Fin de droit")},
        {24, QStringLiteral("CP_naissance")},
        {26, QStringLiteral("Ville_naissance")},
        {28, QStringLiteral("Pro_Portable")},
        {29, QStringLiteral("Pro_Téléphone")},
        {30, QStringLiteral("Pro_Ville")},
        {31, QStringLiteral("Pro_CP")},
        {32, QStringLiteral("mèl")},
        {33, QStringLiteral("Pro_adresse2")},
        {34, QStringLiteral("Pro_adresse1")},
        {38, QStringLiteral("Sesam_MutAdherent")},
        {39, QStringLiteral("Sesam_MutContrat")},
        {40, QStringLiteral("Sesam_Mutuelle")},
    };
    return colonnes.value(i);
}

FicheSignaletique::FicheSignaletique(QWidget *parent)
    : QDialog(parent)
{
    setModal(true);
    setWindowTitle(QStringLiteral("Fiche du patient"));
    CompterDialogueOuvert(this);

    // The text fields, created once and placed by the tabs below; the date
    // columns 21, 22, 36 and 37 are edited through their masks.
    for (int i = 0; i < NombreChamps; ++i) {
        const QString colonne = colonneDuChamp(i);
        if (!colonne.isEmpty())
            txtFields[i] = texte(nomChamp(i), colonne, this);
    }
    // The birth date column is fed from the mask DN.
    txtFields[2]->hide();

    Vitale2 = new QFrame(this);
    Vitale2->setObjectName(QStringLiteral("Vitale2"));
    Vitale2->setFrameShape(QFrame::StyledPanel);
    Vitale2->setToolTip(QStringLiteral("Double-cliquez pour afficher la fiche complète"));
    auto *resume = new QHBoxLayout(Vitale2);
    for (std::size_t i = 0; i < lblResume.size(); ++i) {
        lblResume[i] = new QLabel(Vitale2);
        lblResume[i]->setObjectName(QStringLiteral("lblResume(%1)").arg(i));
        QFont f = lblResume[i]->font();
        f.setPointSizeF(f.pointSizeF() * 1.5);
        f.setBold(i < 2);
        lblResume[i]->setFont(f);
        lblResume[i]->installEventFilter(this);
        resume->addWidget(lblResume[i]);
    }
    resume->addStretch();
    Vitale2->installEventFilter(this);

    lblDossier = new QLabel(this);
    lblDossier->setObjectName(QStringLiteral("lblDossier"));

    SSTab1 = new QTabWidget(this);
    SSTab1->setObjectName(QStringLiteral("SSTab1"));
    auto *identite = new QWidget(SSTab1);
    m_ongletUn = new QWidget(SSTab1);
    auto *sesam = new QWidget(SSTab1);
    construireIdentite(identite);
    construireSesam(sesam);
    SSTab1->addTab(identite, QStringLiteral("    &Identité"));
    SSTab1->addTab(m_ongletUn, QString());
    SSTab1->addTab(sesam, QStringLiteral("    &Sésam Vitale"));
    // Correspondents and free fields belong to the other product's base;
    // these tabs stay hidden on both cards.
    SSTab1->addTab(new QWidget(SSTab1), QStringLiteral("   &Correspondants"));
    SSTab1->addTab(new QWidget(SSTab1), QStringLiteral("   Champs &Libres"));

    List2 = new QListWidget(this);
    List2->setObjectName(QStringLiteral("List2"));
    List2->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    List2->hide();
    List2->installEventFilter(this);
    connect(List2, &QListWidget::itemActivated, this, &FicheSignaletique::choisirCodePostal);

    Table3 = new QListWidget(this);
    Table3->setObjectName(QStringLiteral("Table3"));
    Table3->hide();
    Table3->installEventFilter(this);
    connect(Table3, &QListWidget::itemActivated, this, &FicheSignaletique::choisirLigneMedecin);

    btn_enregistrer = new QPushButton(QStringLiteral("&Enregistrer"), this);
    btn_enregistrer->setObjectName(QStringLiteral("btn_enregistrer"));
    Btn_Abandon = new QPushButton(QStringLiteral("A&bandon"), this);
    Btn_Abandon->setObjectName(QStringLiteral("Btn_Abandon"));
    for (QPushButton *b : {btn_enregistrer, Btn_Abandon})
        b->setAutoDefault(false);
    connect(btn_enregistrer, &QPushButton::clicked, this, [this] { btn_enregistrer_Click(); });
    connect(Btn_Abandon, &QPushButton::clicked, this, [this] { Btn_Abandon_Click(); });

    m_barreBas = new QHBoxLayout;
    m_barreBas->addWidget(lblDossier);
    m_barreBas->addStretch();
    m_barreBas->addWidget(btn_enregistrer);
    m_barreBas->addWidget(Btn_Abandon);

    auto *principal = new QVBoxLayout(this);
    principal->addWidget(Vitale2);
    principal->addWidget(SSTab1, 1);
    principal->addLayout(m_barreBas);
    resize(1100, 680);
}

void FicheSignaletique::construireIdentite(QWidget *page)
{
    auto *grille = new QGridLayout(page);

    // Civil status.
    auto *etat = new QGroupBox(QStringLiteral("État civil"), page);
    auto *f = formulaire(etat);
    f->addRow(QStringLiteral("&Nom :"), txtFields[0]);
    f->addRow(QStringLiteral("&Prénom :"), txtFields[1]);
    DN = masqueDate(QStringLiteral("DN"), QString(), etat);
    lblAge = new QLabel(etat);
    lblAge->setObjectName(QStringLiteral("lblAge"));
    f->addRow(QStringLiteral("Né(e) le :"), paire(DN, QString(), lblAge, etat));

    Text3 = new QLineEdit(etat);
    Text3->setObjectName(QStringLiteral("Text3"));
    Text3->setMaxLength(1);
    Text3->setFixedWidth(Text3->fontMetrics().horizontalAdvance(u'M') * 3);
    Text3->installEventFilter(this);
    Option3[0] = new QRadioButton(QStringLiteral("&F"), etat);
    Option3[0]->setObjectName(QStringLiteral("Option3(0)"));
    Option3[1] = new QRadioButton(QStringLiteral("&M"), etat);
    Option3[1]->setObjectName(QStringLiteral("Option3(1)"));
    SexeChk = new QCheckBox(etat);
    SexeChk->setObjectName(QStringLiteral("SexeChk"));
    SexeChk->hide();
    lier(QStringLiteral("Sexe"), SexeChk);
    imgSexe = new QLabel(etat);
    imgSexe->setObjectName(QStringLiteral("imgSexe"));
    auto *sexe = new QWidget(etat);
    auto *ls = new QHBoxLayout(sexe);
    ls->setContentsMargins(0, 0, 0, 0);
    for (QWidget *w : std::initializer_list<QWidget *>{Text3, Option3[0], Option3[1], imgSexe})
        ls->addWidget(w);
    ls->addStretch();
    f->addRow(QStringLiteral("Sexe :"), sexe);
    connect(Option3[0], &QRadioButton::clicked, this, [this] { fixerSexe(false); });
    connect(Option3[1], &QRadioButton::clicked, this, [this] { fixerSexe(true); });

    lblJeuneFille = libelle(QStringLiteral("Nom de &jeune fille :"), etat);
    lblJeuneFille->setBuddy(txtFields[3]);
    f->addRow(lblJeuneFille, txtFields[3]);
    f->addRow(QStringLiteral("Nom de l'ass&uré :"), txtFields[4]);
    Combo1 = new QComboBox(etat);
    Combo1->setObjectName(QStringLiteral("Combo1"));
    Combo1->addItems({QStringLiteral("Enfant"), QStringLiteral("Célibataire"), QStringLiteral("Concubinage"),
                      QStringLiteral("PACS"), QStringLiteral("Marié(e)"), QStringLiteral("Divorcé(e)"),
                      QStringLiteral("Séparé(e)"), QStringLiteral("Veuf(ve)")});
    Combo1->setCurrentIndex(-1);
    lier(QStringLiteral("Situation"), Combo1);
    f->addRow(QStringLiteral("Situation :"), paire(Combo1, QStringLiteral("Enfants :"), txtFields[15], etat));
    f->addRow(QStringLiteral("P&rofession :"), txtFields[7]);
    f->addRow(QStringLiteral("Né(e) à (CP, ville) :"), paire(txtFields[24], QString(), txtFields[26], etat));
    f->addRow(QStringLiteral("N° de sécurité sociale :"), txtFields[18]);
    f->addRow(QStringLiteral("INS A / INS C :"), paire(txtFields[5], QString(), txtFields[14], etat));
    Check1 = new QCheckBox(QStringLiteral("DCD"), etat);
    Check1->setObjectName(QStringLiteral("Check1"));
    lier(QStringLiteral("Decede"), Check1);
    f->addRow(QString(), Check1);

    // Private and work addresses.
    auto *adresse = new QGroupBox(QStringLiteral("Adresse"), page);
    auto *fa = formulaire(adresse);
    fa->addRow(QStringLiteral("A&dresse :"), txtFields[8]);
    fa->addRow(QString(), txtFields[9]);
    txtFields[10]->setToolTip(QStringLiteral("Double-clic ou touche Inser : villes de ce code postal"));
    fa->addRow(QStringLiteral("Code postal, ville :"), paire(txtFields[10], QString(), txtFields[11], adresse));
    btnCarte = new QPushButton(QStringLiteral("Voir sur une &carte"), adresse);
    btnCarte->setObjectName(QStringLiteral("btnCarte"));
    btnCarte->setAutoDefault(false);
    connect(btnCarte, &QPushButton::clicked, this, &FicheSignaletique::afficherCarte);
    fa->addRow(QString(), btnCarte);
    fa->addRow(QStringLiteral("&Téléphone :"), txtFields[12]);
    fa->addRow(QStringLiteral("P&ortable :"), txtFields[13]);
    fa->addRow(QStringLiteral("&Mèl :"), txtFields[32]);

    auto *pro = new QGroupBox(QStringLiteral("Coordonnées professionnelles"), page);
    auto *fp = formulaire(pro);
    fp->addRow(QStringLiteral("Adresse :"), txtFields[34]);
    fp->addRow(QString(), txtFields[33]);
    txtFields[31]->setToolTip(txtFields[10]->toolTip());
    fp->addRow(QStringLiteral("Code postal, ville :"), paire(txtFields[31], QString(), txtFields[30], pro));
    fp->addRow(QStringLiteral("Téléphone :"), txtFields[29]);
    fp->addRow(QStringLiteral("Portable :"), txtFields[28]);
    fp->addRow(QStringLiteral("Mèl :"), txtFields[6]);

    // Treating physician and notes.
    auto *medecin = new QGroupBox(QStringLiteral("Médecin traitant"), page);
    auto *lm = new QVBoxLayout(medecin);
    Option2 = new QRadioButton(QStringLiteral("Moi-même depuis le : "), medecin);
    Option2->setObjectName(QStringLiteral("Option2"));
    texte2 = masqueDate(QStringLiteral("texte2"), QStringLiteral("Date_Contrat"), medecin);
    auto *ligneMoi = new QHBoxLayout;
    ligneMoi->addWidget(Option2);
    ligneMoi->addWidget(texte2);
    ligneMoi->addStretch();
    lm->addLayout(ligneMoi);
    Option1 = new QRadioButton(QStringLiteral("Autre confrère"), medecin);
    Option1->setObjectName(QStringLiteral("Option1"));
    lm->addWidget(Option1);
    Frame10 = new QGroupBox(medecin);
    Frame10->setObjectName(QStringLiteral("Frame10"));
    auto *f10 = formulaire(Frame10);
    txt_MTnom = new QLineEdit(Frame10);
    txt_MTnom->setObjectName(QStringLiteral("txt_MTnom"));
    txt_MTnom->setToolTip(QStringLiteral("Double-clic : médecins déjà saisis sur d'autres fiches"));
    txt_MTprenom = new QLineEdit(Frame10);
    txt_MTprenom->setObjectName(QStringLiteral("txt_MTprenom"));
    for (QLineEdit *t : {txt_MTnom, txt_MTprenom})
        t->installEventFilter(this);
    f10->addRow(QStringLiteral("Nom :"), txt_MTnom);
    f10->addRow(QStringLiteral("Prénom :"), txt_MTprenom);
    lm->addWidget(Frame10);
    Option4 = new QRadioButton(QStringLiteral("Sans médecin traitant"), medecin);
    Option4->setObjectName(QStringLiteral("Option4"));
    lm->addWidget(Option4);
    for (QRadioButton *o : {Option1, Option2, Option4})
        connect(o, &QRadioButton::clicked, this, [this, o] { choisirMedecin(o); });
    Text4 = texte(QStringLiteral("Text4"), QStringLiteral("Médecin traitant"), medecin);
    auto *fm = formulaire(nullptr);
    fm->addRow(QStringLiteral("Médecin (texte libre) :"), Text4);
    lm->addLayout(fm);

    auto *notes = new QGroupBox(QStringLiteral("Notes"), page);
    auto *ln = new QVBoxLayout(notes);
    Text6 = texte(QStringLiteral("Text6"), QStringLiteral("Notes"), notes);
    Text7 = texte(QStringLiteral("Text7"), QStringLiteral("Note2"), notes);
    Text8 = texte(QStringLiteral("Text8"), QStringLiteral("Note3"), notes);
    for (QLineEdit *t : {Text6, Text7, Text8}) {
        ln->addWidget(t);
        // A note that holds something stands out in yellow.
        connect(t, &QLineEdit::textChanged, t, [t](const QString &v) {
            QPalette p = t->palette();
            p.setColor(QPalette::Base, v.isEmpty() ? t->style()->standardPalette().color(QPalette::Base) : QColor(255, 255, 160));
            t->setPalette(p);
        });
    }

    // Tab follows the columns as they are read, not the order of creation.
    QWidget *precedent = nullptr;
    for (QWidget *w : std::initializer_list<QWidget *>{
             txtFields[0], txtFields[1], DN, Text3, Option3[0], Option3[1], txtFields[3], txtFields[4], Combo1,
             txtFields[15], txtFields[7], txtFields[24], txtFields[26], txtFields[18], txtFields[5], txtFields[14], Check1,
             txtFields[8], txtFields[9], txtFields[10], txtFields[11], btnCarte, txtFields[12], txtFields[13], txtFields[32],
             txtFields[34], txtFields[33], txtFields[31], txtFields[30], txtFields[29], txtFields[28], txtFields[6], Option2,
             texte2, Option1, txt_MTnom, txt_MTprenom, Option4, Text4, Text6, Text7, Text8}) {
        if (precedent)
            setTabOrder(precedent, w);
        precedent = w;
    }
    ln->addStretch();
    lm->addStretch();

    grille->addWidget(etat, 0, 0, 2, 1);
    grille->addWidget(adresse, 0, 1);
    grille->addWidget(pro, 1, 1);
    grille->addWidget(medecin, 0, 2);
    grille->addWidget(notes, 1, 2);
    m_basIdentite = new QVBoxLayout;
    grille->addLayout(m_basIdentite, 2, 0, 1, 3);
    grille->setRowStretch(2, 1);
    for (int c = 0; c < 3; ++c)
        grille->setColumnStretch(c, 1);
}

void FicheSignaletique::construireSesam(QWidget *page)
{
    auto *l = new QVBoxLayout(page);
    auto *carte = new QGroupBox(QStringLiteral("Contenu de la carte Sesam_Vitale:"), page);
    carte->setMaximumWidth(LargeurFormulaire);
    auto *lc = new QFormLayout(carte);
    text1 = new QPlainTextEdit(carte);
    text1->setObjectName(QStringLiteral("text1"));
    text1->setReadOnly(true);
    text1->setMaximumHeight(90);
    lier(QStringLiteral("Sesam_Vitale"), text1);
    Nom_Sesam = texte(QStringLiteral("Nom_Sesam"), QStringLiteral("Nom_Sesam"), carte);
    Prenom_Sesam = texte(QStringLiteral("Prenom_Sesam"), QStringLiteral("Prenom_Sesam"), carte);
    lc->addRow(text1);
    lc->addRow(QStringLiteral("Nom, prénom :"), paire(Nom_Sesam, QString(), Prenom_Sesam, carte));
    l->addWidget(carte);

    auto *amo = new QGroupBox(QStringLiteral("Assurance maladie"), page);
    amo->setMaximumWidth(LargeurFormulaire);
    auto *fa = formulaire(amo);
    fa->addRow(QStringLiteral("Prise en charge :"), txtFields[17]);
    fa->addRow(QStringLiteral("Code CPAM, centre :"), paire(txtFields[19], QString(), txtFields[20], amo));
    ALDDebut = masqueDate(QStringLiteral("ALDDebut"), QStringLiteral("Debut ALD"), amo);
    ALDFin = masqueDate(QStringLiteral("ALDFin"), QStringLiteral("Fin ALD"), amo);
    auto *ald = new QWidget(amo);
    auto *la = new QHBoxLayout(ald);
    la->setContentsMargins(0, 0, 0, 0);
    la->addWidget(ALDDebut);
    la->addWidget(libelle(QStringLiteral("au :"), ald));
    la->addWidget(ALDFin);
    la->addStretch();
    fa->addRow(QStringLiteral("ALD du :"), ald);
    fa->addRow(QStringLiteral("Fin de droit :"), txtFields[23]);
    l->addWidget(amo);

    auto *amc = new QGroupBox(QStringLiteral("AMC :"), page);
    amc->setMaximumWidth(LargeurFormulaire);
    auto *fc = formulaire(amc);
    fc->addRow(QStringLiteral("No organisme comp. :"), txtFields[40]);
    fc->addRow(QStringLiteral("Type de contrat:"), txtFields[39]);
    fc->addRow(QStringLiteral("No d'adhérent :"), txtFields[38]);
    SesamMutDebut = masqueDate(QStringLiteral("SesamMutDebut"), QStringLiteral("Sesam_Mutdebut"), amc);
    SesamMutFin = masqueDate(QStringLiteral("SesamMutFin"), QStringLiteral("Sesam_MutFin"), amc);
    fc->addRow(QStringLiteral("Debut droits :"), SesamMutDebut);
    fc->addRow(QStringLiteral("Fin droits :"), SesamMutFin);
    l->addWidget(amc);
    l->addStretch();
}

void FicheSignaletique::lier(const QString &colonne, QWidget *controle)
{
    if (auto *t = qobject_cast<QLineEdit *>(controle); t && t->inputMask().isEmpty()) {
        const DescriptionColonne d = ColonneSignaletiques(colonne);
        if (d.genre == GenreColonne::Texte)
            t->setMaxLength(d.longueur);
    }
    m_liaisons.push_back({colonne, controle});
}

QLineEdit *FicheSignaletique::texte(const QString &nom, const QString &colonne, QWidget *parent)
{
    auto *t = new QLineEdit(parent);
    t->setObjectName(nom);
    t->installEventFilter(this);
    lier(colonne, t);
    return t;
}

QLineEdit *FicheSignaletique::masqueDate(const QString &nom, const QString &colonne, QWidget *parent)
{
    auto *t = new QLineEdit(parent);
    t->setObjectName(nom);
    t->setInputMask(QStringLiteral("99/99/9999;_"));
    t->setFixedWidth(t->fontMetrics().horizontalAdvance(QStringLiteral("00/00/00000")) + 12);
    t->installEventFilter(this);
    if (!colonne.isEmpty())
        lier(colonne, t);
    return t;
}

QString FicheSignaletique::texteMasque(const QLineEdit *masque)
{
    return masque->displayText();
}

void FicheSignaletique::afficherValeurs(const ValeursFiche &valeurs)
{
    for (const Liaison &l : m_liaisons) {
        const QVariant v = valeurs.value(l.colonne);
        if (auto *t = qobject_cast<QLineEdit *>(l.controle))
            t->setText(v.toString());
        else if (auto *c = qobject_cast<QCheckBox *>(l.controle))
            c->setChecked(v.toBool());
        else if (auto *b = qobject_cast<QComboBox *>(l.controle))
            ChoisirTexte(b, v.toString());
        else if (auto *p = qobject_cast<QPlainTextEdit *>(l.controle))
            p->setPlainText(v.toString());
    }
    DN->setText(txtFields[2]->text());
    majAge();
    const auto medecin = SeparerSesamDivers(valeurs.value(QStringLiteral("Sesam_Divers")).toString());
    txt_MTnom->setText(medecin ? medecin->nom : QString());
    txt_MTprenom->setText(medecin ? medecin->prenom : QString());
    fixerSexe(valeurs.value(QStringLiteral("Sexe")).toBool());
}

ValeursFiche FicheSignaletique::lireValeurs() const
{
    ValeursFiche v;
    for (const Liaison &l : m_liaisons) {
        if (auto *t = qobject_cast<QLineEdit *>(l.controle)) {
            QString s = t->inputMask().isEmpty() ? t->text() : texteMasque(t);
            if (s == MasqueDateVide)
                s.clear();
            v.insert(l.colonne, s);
        } else if (auto *c = qobject_cast<QCheckBox *>(l.controle)) {
            v.insert(l.colonne, c->isChecked());
        } else if (auto *b = qobject_cast<QComboBox *>(l.controle)) {
            v.insert(l.colonne, b->currentText());
        } else if (auto *p = qobject_cast<QPlainTextEdit *>(l.controle)) {
            v.insert(l.colonne, p->toPlainText());
        }
    }
    v.insert(QStringLiteral("Sesam_Divers"), JoindreSesamDivers(txt_MTnom->text(), txt_MTprenom->text()));
    v.insert(QStringLiteral("Contrat"), Option2->isChecked() || Option1->isChecked());
    return v;
}

void FicheSignaletique::afficherResume(const QString &nom, const QString &prenom, const QString &naissance)
{
    lblResume[0]->setText(nom);
    lblResume[1]->setText(prenom);
    lblResume[2]->setText(naissance);
    Vitale2->show();
}

void FicheSignaletique::masquerResume()
{
    Vitale2->hide();
    setWindowTitle(QStringLiteral("Signalétique"));
}

void FicheSignaletique::afficherNumero(qint32 numero)
{
    lblDossier->setText(QStringLiteral("No dossier : ") + QStringLiteral("%1").arg(numero, 9, 10, QLatin1Char('0')));
}

void FicheSignaletique::majAge()
{
    QString date = texteMasque(DN);
    lblAge->setText(TexteAge(date));
}

void FicheSignaletique::cacherOnglets(std::initializer_list<int> index)
{
    for (int i : index)
        SSTab1->setTabVisible(i, false);
}

FicheSignaletique::~FicheSignaletique()
{
    // The map page holds the patient's address: it goes with the card.
    SupprimerPageCarte();
}

void FicheSignaletique::Btn_Abandon_Click()
{
    RetourRecherche = 0;
    QDialog::reject();
}

void FicheSignaletique::reject()
{
    // Escape and the close box leave as "Abandon" does.
    Btn_Abandon_Click();
}

void FicheSignaletique::sortieNaissance()
{
    const ControleNaissance c = ControlerNaissance(texteMasque(DN), Horloge::aujourdhui());
    switch (c.etat) {
    case ControleNaissance::Etat::Vide:
        return;
    case ControleNaissance::Etat::Erronee:
        Prompt::informer(titreProgramme, QStringLiteral("Date de naissance erronée"), Prompt::Icone::Exclamation);
        return;
    case ControleNaissance::Etat::Future:
        DN->setText(c.texte);
        Prompt::informer(titreProgramme, QStringLiteral("Date de naissance dans le futur !!"), Prompt::Icone::Exclamation);
        QTimer::singleShot(0, DN, [this] { DN->setFocus(Qt::OtherFocusReason); });
        return;
    case ControleNaissance::Etat::Valide:
        DN->setText(c.texte);
        txtFields[2]->setText(c.texte);
        majAge();
        identiteChangee();
        return;
    }
}

void FicheSignaletique::fixerSexe(bool homme)
{
    SexeChk->setChecked(homme);
    Option3[homme ? 1 : 0]->setChecked(true);
    Text3->setText(homme ? QStringLiteral("M") : QStringLiteral("F"));
    imgSexe->setText(homme ? QStringLiteral("\u2642") : QStringLiteral("\u2640"));
    lblJeuneFille->setVisible(!homme);
    txtFields[3]->setVisible(!homme);
}

void FicheSignaletique::choisirMedecin(QRadioButton *option)
{
    option->setChecked(true);
    if (option == Option2) {
        texte2->show();
        Frame10->hide();
        if (texteMasque(texte2) == MasqueDateVide)
            texte2->setText(Horloge::aujourdhui().toString(QStringLiteral("dd/MM/yyyy")));
        txt_MTnom->setText(MoiMeme);
        txt_MTprenom->clear();
    } else if (option == Option1) {
        texte2->hide();
        Frame10->show();
        if (txt_MTnom->text() == MoiMeme) {
            txt_MTnom->clear();
            txt_MTprenom->clear();
            texte2->clear();
        }
    } else {
        texte2->hide();
        Frame10->hide();
        if (texteMasque(texte2) == MasqueDateVide)
            texte2->setText(Horloge::aujourdhui().toString(QStringLiteral("dd/MM/yyyy")));
        txt_MTnom->clear();
        txt_MTprenom->clear();
    }
}

void FicheSignaletique::montrerSous(QWidget *liste, QWidget *champ, int largeur)
{
    const QPoint bas = champ->mapTo(this, QPoint(0, champ->height()));
    // As high as its rows, within the card.
    int hauteur = 220;
    if (auto *vue = qobject_cast<QAbstractItemView *>(liste)) {
        const int lignes = vue->model()->rowCount() + (qobject_cast<QTableWidget *>(liste) ? 1 : 0);
        hauteur = std::min(hauteur, lignes * (vue->fontMetrics().height() + 6) + 2 * vue->frameWidth() + 4);
    }
    hauteur = std::max(std::min(hauteur, height() - bas.y() - 8), 40);
    liste->setGeometry(std::min(bas.x(), width() - largeur - 8), bas.y(), largeur, hauteur);
    liste->raise();
    liste->show();
    liste->setFocus();
}

void FicheSignaletique::aideCodePostal(int index)
{
    QLineEdit *champ = txtFields[index == 10 || index == 11 ? 10 : 31];
    const AideCodePostal aide = ChercherCodePostal(champ->text());
    if (aide.issue != AideCodePostal::Issue::Liste) {
        Prompt::informer(titreProgramme, aide.message, Prompt::Icone::Exclamation);
        if (aide.issue == AideCodePostal::Issue::Departement)
            champ->setFocus();
        return;
    }
    m_tagCodePostal = champ == txtFields[10] ? tagPrive : tagPro;
    List2->clear();
    List2->addItems(aide.lignes);
    List2->setCurrentRow(0);
    montrerSous(List2, champ, 360);
}

void FicheSignaletique::choisirCodePostal()
{
    const QListWidgetItem *ligne = List2->currentItem();
    if (!ligne)
        return;
    const CodeVille cv = LireLigneCodePostal(ligne->text());
    const bool prive = m_tagCodePostal == tagPrive;
    txtFields[prive ? 10 : 31]->setText(cv.code);
    txtFields[prive ? 11 : 30]->setText(cv.ville);
    List2->hide();
    txtFields[prive ? 12 : 29]->setFocus();
}

void FicheSignaletique::aideMedecin()
{
    if (txt_MTnom->text().isEmpty()) {
        Prompt::informer(QStringLiteral("Aide à la saisie du médecin traitant"),
                         QStringLiteral("Veuillez saisir au moins la première lettre du nom !"), Prompt::Icone::Exclamation);
        return;
    }
    QString erreur;
    const QStringList medecins = MedecinsConnus(txt_MTnom->text(), &erreur);
    if (!erreur.isEmpty()) {
        Prompt::informer(QStringLiteral("Erreur..."), QStringLiteral("La liste des médecins ne peut être lue :\n") + erreur,
                         Prompt::Icone::Critique);
        return;
    }
    Table3->clear();
    for (const QString &m : medecins) {
        auto *item = new QListWidgetItem(QString(m).replace(u'@', u' '), Table3);
        item->setData(Qt::UserRole, m);
    }
    if (Table3->count() == 0)
        return;
    Table3->setCurrentRow(0);
    montrerSous(Table3, txt_MTnom, 300);
}

void FicheSignaletique::choisirLigneMedecin()
{
    const QListWidgetItem *ligne = Table3->currentItem();
    if (!ligne)
        return;
    if (const auto m = SeparerSesamDivers(ligne->data(Qt::UserRole).toString())) {
        txt_MTnom->setText(m->nom);
        txt_MTprenom->setText(m->prenom);
    }
    Table3->hide();
    txt_MTnom->setFocus();
}

void FicheSignaletique::afficherCarte()
{
    const PageCarte page = EcrirePageCarte({txtFields[8]->text(), txtFields[9]->text(), txtFields[10]->text(), txtFields[11]->text()});
    if (page.issue == PageCarte::Issue::AdresseIncomplete) {
        Prompt::informer(QStringLiteral("Erreur de saisie"), page.message, Prompt::Icone::Exclamation);
        return;
    }
    if (page.issue != PageCarte::Issue::Ecrite) {
        Prompt::informer(QStringLiteral("Erreur..."), page.message, Prompt::Icone::Critique);
        return;
    }
    // The desktop's browser shows the page; it reads the file at once, and
    // the next map replaces it.
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(page.chemin)))
        Prompt::informer(QStringLiteral("Erreur..."),
                         QStringLiteral("Aucun navigateur n'a pu ouvrir la carte :\n") + page.chemin, Prompt::Icone::Exclamation);
}

void FicheSignaletique::sortieTexte(QLineEdit *champ)
{
    if (champ == txtFields[0]) {
        champ->setText(NomEnCapitales(champ->text()));
        identiteChangee();
    } else if (champ == txtFields[1]) {
        champ->setText(PrenomCapitalise(champ->text()));
        identiteChangee();
    } else if (champ == DN) {
        sortieNaissance();
    }
}

bool FicheSignaletique::eventFilter(QObject *objet, QEvent *evenement)
{
    auto *champ = qobject_cast<QLineEdit *>(objet);
    switch (evenement->type()) {
    case QEvent::FocusIn:
        // Every field selects its whole text when it gets the focus.
        if (champ)
            QTimer::singleShot(0, champ, &QLineEdit::selectAll);
        break;
    case QEvent::FocusOut:
        // Only a field that the user leaves is checked: a message box that
        // takes the focus would otherwise check it again, and again.
        if (champ && isVisible() && quitteParUtilisateur(static_cast<QFocusEvent *>(evenement)->reason()))
            sortieTexte(champ);
        if (objet == List2 || objet == Table3)
            static_cast<QWidget *>(objet)->hide();
        break;
    case QEvent::MouseButtonDblClick:
        if (objet == txtFields[10] || objet == txtFields[31]) {
            aideCodePostal(objet == txtFields[10] ? 10 : 31);
            return true;
        }
        if (objet == txt_MTnom) {
            aideMedecin();
            return true;
        }
        if (objet == Vitale2 || std::find(lblResume.begin(), lblResume.end(), objet) != lblResume.end()) {
            masquerResume();
            return true;
        }
        break;
    case QEvent::MouseButtonRelease:
        if (std::find(lblResume.begin(), lblResume.end(), objet) != lblResume.end())
            masquerResume();
        break;
    case QEvent::KeyPress: {
        auto *touche = static_cast<QKeyEvent *>(evenement);
        if (touche->key() == Qt::Key_Insert && (objet == txtFields[10] || objet == txtFields[31])) {
            aideCodePostal(objet == txtFields[10] ? 10 : 31);
            return true;
        }
        if ((objet == List2 || objet == Table3) && touche->key() == Qt::Key_Escape) {
            static_cast<QWidget *>(objet)->hide();
            return true;
        }
        if (objet == Text3) {
            const QString t = touche->text().toUpper();
            if (t == QLatin1String("M") || t == QLatin1String("F"))
                fixerSexe(t == QLatin1String("M"));
            if (!t.isEmpty() && t[0].isPrint())
                return true;
        }
        break;
    }
    default:
        break;
    }
    return QDialog::eventFilter(objet, evenement);
}
