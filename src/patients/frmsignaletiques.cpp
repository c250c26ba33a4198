#include "patients/frmsignaletiques.h"

#include "patients/gestiontype.h"
#include "patients/schemapatients.h"
#include "shell/appstate.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"
#include "shell/base/supportui.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QTabWidget>
#include <QTableWidget>
#include <QTextEdit>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

QTableWidget *grille(const QString &nom, const QStringList &titres, QWidget *parent)
{
    auto *t = new QTableWidget(0, static_cast<int>(titres.size()), parent);
    t->setObjectName(nom);
    t->setHorizontalHeaderLabels(titres);
    t->setEditTriggers(QAbstractItemView::NoEditTriggers);
    t->setSelectionBehavior(QAbstractItemView::SelectRows);
    t->setSelectionMode(QAbstractItemView::SingleSelection);
    t->verticalHeader()->hide();
    t->verticalHeader()->setDefaultSectionSize(t->fontMetrics().height() + 6);
    t->horizontalHeader()->setStretchLastSection(true);
    return t;
}

void remplirGrille(QTableWidget *t, const QList<QStringList> &lignes)
{
    t->setRowCount(static_cast<int>(lignes.size()));
    for (int r = 0; r < lignes.size(); ++r) {
        for (int c = 0; c < lignes[r].size() && c < t->columnCount(); ++c)
            t->setItem(r, c, new QTableWidgetItem(lignes[r][c]));
    }
    t->resizeColumnsToContents();
}

// The treating physician shown from Sesam_Divers.
void afficherMedecin(FicheSignaletique &f, const QString &sesamDivers)
{
    if (SeparerSesamDivers(sesamDivers) && !sesamDivers.startsWith(u'@')) {
        f.choisirMedecin(f.txt_MTnom->text() == MoiMeme ? f.Option2 : f.Option1);
    } else {
        f.Option4->setChecked(true);
        f.texte2->hide();
        f.Frame10->hide();
    }
}

const QString titreErreur = QStringLiteral("Erreur...");

} // namespace

// ---------------------------------------------------------------------------
// The own card

frmSignaletiques_AG::frmSignaletiques_AG(QWidget *parent)
    : FicheSignaletique(parent)
{
    setObjectName(QStringLiteral("frmSignaletiques_AG"));
    SSTab1->setTabText(1, QStringLiteral("   &Fiche"));
    SSTab1->addTab(new QWidget(SSTab1), QStringLiteral("Tab 5"));
    construireNote(ongletUn());

    auto *rdv = new QGroupBox(QStringLiteral("Rendez-vous pris "), this);
    auto *lr = new QVBoxLayout(rdv);
    DataRDV = grille(QStringLiteral("DataRDV"),
                     {QStringLiteral("Date"), QStringLiteral("Heure"), QStringLiteral("Praticien"), QStringLiteral("Motif"),
                      QStringLiteral("Date de Prise"), QStringLiteral("Dernière modif"), QStringLiteral("Numero")},
                     rdv);
    lr->addWidget(DataRDV);
    basIdentite()->addWidget(rdv);

    Table4 = grille(QStringLiteral("Table4"),
                    {QStringLiteral("Nom"), QStringLiteral("Prénom"), QStringLiteral("Né(e) le"), QStringLiteral("Adresse"),
                     QStringLiteral("Code postal"), QStringLiteral("Ville"), QStringLiteral("Téléphone")},
                    this);
    Table4->hide();
    Table4->installEventFilter(this);
    connect(Table4, &QTableWidget::cellActivated, this, &frmSignaletiques_AG::choisirFamille);
    txtFields[0]->setToolTip(QStringLiteral("Double-clic : patients de la même famille"));
    cacherOnglets({2, 3, 4, 5});
}

void frmSignaletiques_AG::construireNote(QWidget *page)
{
    auto *l = new QVBoxLayout(page);
    auto *barre = new QToolBar(page);
    HighEdit = new QTextEdit(page);
    HighEdit->setObjectName(QStringLiteral("HighEdit"));
    HighEdit->setAcceptRichText(true);
    QAction *gras = barre->addAction(QStringLiteral("G"), HighEdit, [this](bool b) {
        HighEdit->setFontWeight(b ? QFont::Bold : QFont::Normal);
    });
    gras->setCheckable(true);
    gras->setToolTip(QStringLiteral("Gras (Ctrl+G)"));
    gras->setShortcut(QKeySequence(QStringLiteral("Ctrl+G")));
    QAction *italique = barre->addAction(QStringLiteral("I"), HighEdit, [this](bool b) { HighEdit->setFontItalic(b); });
    italique->setCheckable(true);
    italique->setToolTip(QStringLiteral("Italique (Ctrl+I)"));
    italique->setShortcut(QKeySequence(QStringLiteral("Ctrl+I")));
    QAction *souligne = barre->addAction(QStringLiteral("S"), HighEdit, [this](bool b) { HighEdit->setFontUnderline(b); });
    souligne->setCheckable(true);
    souligne->setToolTip(QStringLiteral("Souligné (Ctrl+U)"));
    souligne->setShortcut(QKeySequence(QStringLiteral("Ctrl+U")));
    for (QAction *a : {gras, italique, souligne}) {
        QFont f = a->font();
        f.setBold(a == gras);
        f.setItalic(a == italique);
        f.setUnderline(a == souligne);
        a->setFont(f);
    }
    barre->addSeparator();
    static const char16_t *const bulles[] = {u"Surligner le texte Maj+Alt+9", u"Choisir la couleur du texte Maj+Alt+1",
                                            u"Mettre le texte en noir barré Maj+Alt+7",
                                            u"Rétablir la couleur du texte en noir Maj+Alt+8"};
    static const char *const touches[] = {"Shift+Alt+9", "Shift+Alt+1", "Shift+Alt+7", "Shift+Alt+8"};
    static const QColor pastilles[] = {QColor(255, 255, 0), QColor(200, 0, 0), QColor(90, 90, 90), Qt::black};
    for (int i = 0; i < 4; ++i) {
        auto *b = new QToolButton(page);
        b->setObjectName(QStringLiteral("ChoixCouleur(%1)").arg(i));
        b->setToolTip(QString::fromUtf16(bulles[i]));
        QPixmap p(14, 14);
        p.fill(pastilles[i]);
        b->setIcon(QIcon(p));
        connect(b, &QToolButton::clicked, this, [this, i] { couleur(i); });
        connect(new QShortcut(QKeySequence(QString::fromLatin1(touches[i])), this), &QShortcut::activated, this,
                [this, i] { couleur(i); });
        ChoixCouleur[i] = b;
        barre->addWidget(b);
    }
    l->addWidget(barre);
    l->addWidget(HighEdit, 1);
}

void frmSignaletiques_AG::couleur(int bouton)
{
    QTextCharFormat f;
    switch (bouton) {
    case 0:
        f.setBackground(QColor(255, 255, 0));
        break;
    case 1: {
        const auto c = Prompt::choisirCouleur(0x0000C8);
        if (!c)
            return;
        f.setForeground(QColor(static_cast<int>(*c & 0xFF), static_cast<int>((*c >> 8) & 0xFF),
                               static_cast<int>((*c >> 16) & 0xFF)));
        break;
    }
    case 2:
        f.setForeground(Qt::black);
        f.setFontStrikeOut(true);
        break;
    default:
        f.setForeground(Qt::black);
        f.setFontStrikeOut(false);
        f.setBackground(Qt::transparent);
        break;
    }
    HighEdit->mergeCurrentCharFormat(f);
    HighEdit->setFocus();
}

bool frmSignaletiques_AG::charger()
{
    AppState &etat = appState();
    const qint32 numeroCourant = etat.PatientCourant.Numero;
    NouvelleFiche = numeroCourant <= 0 || RetourRecherche == 3;
    if (NouvelleFiche) {
        masquerResume();
        SSTab1->setTabEnabled(3, false);
        SSTab1->setTabEnabled(4, false);
        choisirMedecin(Option4);
        fixerSexe(true);
        m_numero = NumeroNouvelleFiche();
        if (m_numero <= 0) {
            Prompt::informer(titreErreur, QStringLiteral("La base des patients de l'agenda ne peut être lue :\n")
                                              + CheminPatientsMdb(etat.CheminBaseAgenda), Prompt::Icone::Critique);
            return false;
        }
        afficherNumero(m_numero);
        SSTab1->setCurrentIndex(0);
        return true;
    }
    // The row also fills PatientCourant: a patient opened here and left with
    // "Abandon" still reaches the appointment with his telephones and mail.
    QString erreur;
    const auto valeurs = LireSignaletique(CheminPatientsMdb(etat.CheminBaseAgenda), numeroCourant, &erreur,
                                          ChargementPatient::Carte);
    if (!valeurs) {
        Prompt::informer(titreErreur,
                         QStringLiteral("La fiche n° %1 ne peut être ouverte dans la base de l'agenda.").arg(numeroCourant)
                             + (erreur.isEmpty() ? QString() : u'\n' + erreur),
                         Prompt::Icone::Critique);
        return false;
    }
    m_numero = numeroCourant;
    afficherValeurs(*valeurs);
    const NoteFiche note = LireNote(m_numero);
    if (note.existe)
        chargetexte(note.texte);
    remplirRendezVous(m_numero);
    const PatientCourantRecord &p = etat.PatientCourant;
    afficherResume(p.Nom, p.Prenom, p.DateNaissance);
    afficherNumero(m_numero);
    afficherMedecin(*this, valeurs->value(QStringLiteral("Sesam_Divers")).toString());
    SSTab1->setCurrentIndex(0);
    return true;
}

void frmSignaletiques_AG::remplirRendezVous(qint32 numero)
{
    QString erreur;
    remplirGrille(DataRDV, RendezVousDuPatient(numero, &erreur));
    if (!erreur.isEmpty())
        DataRDV->setToolTip(QStringLiteral("Les rendez-vous ne peuvent être lus : ") + erreur);
}

void frmSignaletiques_AG::chargetexte(const QString &texte)
{
    if (texte.isEmpty())
        return;
    HighEdit->clear();
    if (Qt::mightBeRichText(texte))
        HighEdit->setHtml(texte);
    else
        HighEdit->setPlainText(texte);
    HighEdit->moveCursor(QTextCursor::Start);
}

NoteSaisie frmSignaletiques_AG::Sauvetexte()
{
    if (HighEdit->document()->isEmpty())
        HighEdit->setPlainText(QStringLiteral(" "));
    return {HighEdit->toHtml(), HighEdit->toPlainText()};
}

void frmSignaletiques_AG::btn_enregistrer_Click()
{
    ValeursFiche v = lireValeurs();
    if (NouvelleFiche)
        v.insert(QStringLiteral("Date de Naissance"), texteMasque(DN));
    // A note typed on a new card is written with it, not lost.
    const NoteSaisie note = Sauvetexte();
    QString erreur;
    if (EnregistrerFicheAgenda(v, m_numero, NouvelleFiche, note, &erreur)) {
        accept();
        return;
    }
    // Nothing was written; the card stays open with what was typed. Another
    // station may have taken the number meanwhile: the next try takes the
    // next free one.
    Prompt::informer(titreErreur, QStringLiteral("Cette fiche ne peut être crée : vérifiez votre saisie\n") + erreur,
                     Prompt::Icone::Critique);
    if (NouvelleFiche) {
        if (const qint32 n = NumeroNouvelleFiche(); n > 0)
            m_numero = n;
        afficherNumero(m_numero);
    }
}

void frmSignaletiques_AG::identiteChangee()
{
    if (!NouvelleFiche || txtFields[0]->text().isEmpty() || txtFields[1]->text().isEmpty()
        || !LireDateTexte(txtFields[2]->text()).isValid())
        return;
    if (!SSTab1->isTabEnabled(3) && !SSTab1->isTabEnabled(4)) {
        SSTab1->setTabEnabled(3, true);
        SSTab1->setTabEnabled(4, true);
    }
}

void frmSignaletiques_AG::rechercherFamille()
{
    if (txtFields[0]->text().isEmpty()) {
        Prompt::informer(QStringLiteral("Recherche de patient de la même famille"),
                         QStringLiteral("Veuillez saisir au moins la première lettre du nom !"), Prompt::Icone::Exclamation);
        return;
    }
    QString erreur;
    const QList<ValeursFiche> familles = MemeFamille(txtFields[0]->text(), &erreur);
    if (!erreur.isEmpty()) {
        Prompt::informer(titreErreur, QStringLiteral("La base des patients ne peut être lue :\n") + erreur,
                         Prompt::Icone::Critique);
        return;
    }
    static const char16_t *const colonnes[] = {u"Nom", u"Prenom", u"Date de Naissance", u"Adresse1",
                                              u"Code Postal", u"Ville", u"Telephone1"};
    QList<QStringList> lignes;
    for (const ValeursFiche &f : familles) {
        QStringList l;
        for (const char16_t *c : colonnes)
            l << f.value(QString::fromUtf16(c)).toString();
        lignes << l;
    }
    remplirGrille(Table4, lignes);
    Table4->setProperty("familles", QVariant::fromValue(familles));
    if (lignes.isEmpty())
        return;
    Table4->selectRow(0);
    montrerSous(Table4, txtFields[0], 640);
}

void frmSignaletiques_AG::choisirFamille()
{
    const auto familles = Table4->property("familles").value<QList<ValeursFiche>>();
    const int r = Table4->currentRow();
    if (r < 0 || r >= familles.size())
        return;
    const ValeursFiche &f = familles[r];
    for (int i : {8, 9, 10, 11, 12, 13})
        txtFields[i]->setText(f.value(colonneDuChamp(i)).toString());
    if (const auto m = SeparerSesamDivers(f.value(QStringLiteral("Sesam_Divers")).toString())) {
        txt_MTnom->setText(m->nom);
        txt_MTprenom->setText(m->prenom);
        choisirMedecin(Option1);
    }
    Table4->hide();
    txtFields[1]->setFocus();
}

bool frmSignaletiques_AG::eventFilter(QObject *objet, QEvent *evenement)
{
    if (objet == txtFields[0] && evenement->type() == QEvent::MouseButtonDblClick) {
        rechercherFamille();
        return true;
    }
    if (objet == Table4) {
        if (evenement->type() == QEvent::FocusOut
            || (evenement->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(evenement)->key() == Qt::Key_Escape)) {
            Table4->hide();
            return evenement->type() == QEvent::KeyPress;
        }
    }
    return FicheSignaletique::eventFilter(objet, evenement);
}

// ---------------------------------------------------------------------------
// The linked card

frmSignaletiques2_AG::frmSignaletiques2_AG(QWidget *parent)
    : FicheSignaletique(parent)
{
    setObjectName(QStringLiteral("frmSignaletiques2_AG"));
    SSTab1->setTabText(1, QStringLiteral("   &Administratif"));
    construireAdministratif(ongletUn());
    for (std::size_t i = 0; i < lblCarte.size(); ++i) {
        lblCarte[i] = new QLabel(this);
        lblCarte[i]->setObjectName(QStringLiteral("lblCarte(%1)").arg(i));
        lblNoDossier[i] = new QLabel(this);
        lblNoDossier[i]->setObjectName(QStringLiteral("lblNoDossier(%1)").arg(i));
    }
    // The linked base's number stands beside the own one's label.
    lblDossier->hide();
    barreBas()->insertWidget(0, lblNoDossier[0]);
    barreBas()->insertWidget(1, lblCarte[0]);
    barreBas()->insertWidget(2, lblCarte[1]);
    lblNoDossier[1]->hide();
    connect(SSTab1, &QTabWidget::currentChanged, this, [this](int index) {
        if (index == 1)
            choisirSousOnglet();
    });
    cacherOnglets({3, 4});
}

void frmSignaletiques2_AG::construireAdministratif(QWidget *page)
{
    auto *l = new QVBoxLayout(page);
    auto *visite = new QFormLayout;
    DateVisite = masqueDate(QStringLiteral("DateVisite"), QStringLiteral("Derniere Visite"), page);
    visite->addRow(QStringLiteral("Dernière visite :"), DateVisite);
    l->addLayout(visite);

    SSTab2 = new QTabWidget(page);
    SSTab2->setMaximumWidth(LargeurFormulaire + 60);
    SSTab2->setObjectName(QStringLiteral("SSTab2"));
    auto *amc = new QWidget(SSTab2);
    auto *mut = new QWidget(SSTab2);
    SSTab2->addTab(amc, QStringLiteral("Coordonnées AMC"));
    SSTab2->addTab(mut, QStringLiteral("Coordonnées Mutuelle"));
    l->addWidget(SSTab2, 1);

    auto champ = [this](int i, QWidget *parent) {
        auto *t = new QLineEdit(parent);
        t->setObjectName(QStringLiteral("txtFields(%1)").arg(i));
        t->installEventFilter(this);
        txtFields[i] = t;
        return t;
    };
    auto masque = [this](const QString &nom, QWidget *parent) { return masqueDate(nom, QString(), parent); };
    auto liste = [](const QString &nom, const QStringList &items, QWidget *parent) {
        auto *c = new QComboBox(parent);
        c->setObjectName(nom);
        c->addItems(items);
        c->setCurrentIndex(-1);
        return c;
    };
    const QStringList aiguillage{QStringLiteral("4 ; Service Tarification FFSA"), QStringLiteral("8 ; Service Tarification TCIP"),
                                 QStringLiteral("M ; Service Tarification FNMF"), QStringLiteral("R ; Service Traification A8")};

    auto *fa = new QFormLayout(amc);
    static const char16_t *const libellesAMC[] = {u"No organisme comp. :", u"No d'adhérent :", u"N° Identifiant assuré :",
                                                 u"Code Routage Flux :", u"Identifiant Hôte :", u"Nom de Domaine :",
                                                 u"N° Complémen. EDI :", u"Type Services Associés :",
                                                 u"Services associés :"};
    for (int i = 0; i < 9; ++i)
        fa->addRow(QString::fromUtf16(libellesAMC[i]), champ(50 + i, amc));
    MaskEdBox3 = masque(QStringLiteral("MaskEdBox3"), amc);
    MaskEdBox4 = masque(QStringLiteral("MaskEdBox4"), amc);
    fa->addRow(QStringLiteral("Fin droits :"), MaskEdBox3);
    fa->addRow(QStringLiteral("Debut droits :"), MaskEdBox4);
    Combo2 = liste(QStringLiteral("Combo2"),
                   {QStringLiteral("00 ; Pas de DRE possible, pas de flux de rectification"),
                    QStringLiteral("12 ; DRE possible en HTP, pas de flux de rectification"),
                    QStringLiteral("13 ; DRE possible en HTP, flux de rectification possible"),
                    QStringLiteral("12 ; DRE possible en TP, pas de flux de rectification"),
                    QStringLiteral("23 ; DRE possible en TP, flux de rectification possible"),
                    QStringLiteral("32 ; DRE possible en TP et HTP, pas de flux de rectification"),
                    QStringLiteral("33 ; DRE possible en TP et HTP, flux de rectification possible"),
                    QStringLiteral("60 ; CMU Complémentaire, pas de DRE possible, pas de flux de rectification"),
                    QStringLiteral("62 ; CMU Complémentaire, DRE possible, pas de flux de rectification"),
                    QStringLiteral("63 ; CMU Complémentaire, DRE possible,flux de rectification possible"),
                    QStringLiteral("72 ; CMU Complémentaire sortant, DRE possible, pas de flux de rectification"),
                    QStringLiteral("73 ; CMU Complémentaire sortant, DRE possible, flux de rectification possible")},
                   amc);
    Combo3 = liste(QStringLiteral("Combo3"), aiguillage, amc);
    fa->addRow(QStringLiteral("Indicateur Traitement :"), Combo2);
    fa->addRow(QStringLiteral("Code Aiguillage STS :"), Combo3);
    btnSupprimerAMC = new QPushButton(QStringLiteral("Supprimer"), amc);
    btnSupprimerAMC->setObjectName(QStringLiteral("btnSupprimerAMC"));
    fa->addRow(QString(), btnSupprimerAMC);

    auto *fm = new QFormLayout(mut);
    fm->addRow(QStringLiteral("N° Identification :"), champ(60, mut));
    fm->addRow(QStringLiteral("Garanties du contrat :"), champ(61, mut));
    MaskEdBox1 = masque(QStringLiteral("MaskEdBox1"), mut);
    MaskEdBox2 = masque(QStringLiteral("MaskEdBox2"), mut);
    fm->addRow(QStringLiteral("Fin droits :"), MaskEdBox1);
    fm->addRow(QStringLiteral("Debut droits :"), MaskEdBox2);
    Combo4 = liste(QStringLiteral("Combo4"),
                   {QStringLiteral("00 ; Pas de Tiers-Payant complémentaire autorisé"),
                    QStringLiteral("01 ; TP compl. autorisé selon accord PS-AMC"),
                    QStringLiteral("02 ;TP compl. autorisé selon réglementation"),
                    QStringLiteral("62 ; CMU : Tiers payant réglementaire, pas d'éclatement"),
                    QStringLiteral("71 ; Sortant CMU complémentaire, pas d'éclatement")},
                   mut);
    Combo5 = liste(QStringLiteral("Combo5"), aiguillage, mut);
    fm->addRow(QStringLiteral("Indicateur Traitement :"), Combo4);
    fm->addRow(QStringLiteral("Code Aiguillage STS :"), Combo5);
    btnSupprimerMutuelle = new QPushButton(QStringLiteral("Supprimer"), mut);
    btnSupprimerMutuelle->setObjectName(QStringLiteral("btnSupprimerMutuelle"));
    fm->addRow(QString(), btnSupprimerMutuelle);

    for (QPushButton *b : {btnSupprimerAMC, btnSupprimerMutuelle})
        b->setAutoDefault(false);
    connect(btnSupprimerAMC, &QPushButton::clicked, this, &frmSignaletiques2_AG::viderAMC);
    connect(btnSupprimerMutuelle, &QPushButton::clicked, this, [this] {
        viderMutuelle();
        SSTab2->setCurrentIndex(0);
    });
    // The two blocks exclude each other: filling one empties the other.
    connect(txtFields[50], &QLineEdit::textChanged, this, [this] {
        if (!m_chargement && txtFields[50]->text().size() > 1 && txtFields[51]->text().size() > 1)
            viderMutuelle();
    });
    connect(txtFields[60], &QLineEdit::textChanged, this, [this] {
        if (!m_chargement && txtFields[60]->text().size() > 1 && txtFields[61]->text().size() > 1)
            viderAMC();
    });
}

std::array<QWidget *, NombreValeursAMC> frmSignaletiques2_AG::controlesAMC() const
{
    return {txtFields[50], txtFields[51], txtFields[52], txtFields[53], txtFields[54], txtFields[55], txtFields[56],
            txtFields[57], txtFields[58], MaskEdBox3,    MaskEdBox4,    Combo2,        Combo3,        txtFields[60],
            txtFields[61], MaskEdBox1,    MaskEdBox2,    Combo4,        Combo5};
}

BlocAMC frmSignaletiques2_AG::blocAMC() const
{
    BlocAMC bloc;
    const auto controles = controlesAMC();
    for (std::size_t i = 0; i < bloc.size(); ++i) {
        if (auto *t = qobject_cast<QLineEdit *>(controles[i]))
            bloc[i] = t->inputMask().isEmpty() ? t->text() : texteMasque(t);
        else if (auto *c = qobject_cast<QComboBox *>(controles[i]))
            bloc[i] = c->currentText();
    }
    return bloc;
}

void frmSignaletiques2_AG::afficherAMC(const QStringList &valeurs)
{
    const auto controles = controlesAMC();
    for (int i = 0; i < valeurs.size() && i < NombreValeursAMC; ++i) {
        if (auto *t = qobject_cast<QLineEdit *>(controles[i]))
            t->setText(valeurs[i]);
        else if (auto *c = qobject_cast<QComboBox *>(controles[i]))
            ChoisirTexte(c, valeurs[i]);
    }
}

namespace {

void vider(const std::array<QWidget *, NombreValeursAMC> &controles, int debut, int fin)
{
    for (int i = debut; i < fin; ++i) {
        if (auto *t = qobject_cast<QLineEdit *>(controles[i]))
            t->clear();
        else if (auto *c = qobject_cast<QComboBox *>(controles[i]))
            c->setCurrentIndex(-1);
    }
}

} // namespace

void frmSignaletiques2_AG::viderAMC()
{
    vider(controlesAMC(), 0, SlotIdentificationMutuelle);
}

void frmSignaletiques2_AG::viderMutuelle()
{
    vider(controlesAMC(), SlotIdentificationMutuelle, NombreValeursAMC);
}

void frmSignaletiques2_AG::choisirSousOnglet()
{
    SSTab2->setCurrentIndex(txtFields[60]->text().isEmpty() ? 0 : 1);
}

bool frmSignaletiques2_AG::charger()
{
    const PatientCourantRecord &p = appState().PatientCourant;
    m_cheminLie = BaseDuPatientLie(p.Base);
    m_numeroLie = p.Numero;
    QString erreur;
    m_chargement = true;
    const auto valeurs = LireSignaletique(m_cheminLie, m_numeroLie, &erreur, ChargementPatient::Carte2);
    if (!valeurs) {
        m_chargement = false;
        Prompt::informer(titreErreur,
                         QStringLiteral("La fiche n° %1 ne peut être ouverte dans la base liée :\n%2")
                             .arg(m_numeroLie)
                             .arg(erreur.isEmpty() ? m_cheminLie : erreur),
                         Prompt::Icone::Critique);
        return false;
    }
    afficherValeurs(*valeurs);
    const QString photo = valeurs->value(QStringLiteral("Photo")).toString();
    if (!photo.isEmpty())
        afficherAMC(GetAMC(photo));
    m_chargement = false;
    afficherResume(p.Nom, p.Prenom, p.DateNaissance);
    afficherNumero(m_numeroLie);
    const QString nomSesam = valeurs->value(QStringLiteral("Nom_Sesam")).toString();
    lblCarte[0]->setText(nomSesam.isEmpty() ? QStringLiteral("Carte non lue") : nomSesam);
    lblCarte[1]->setText(nomSesam.isEmpty() ? QString() : valeurs->value(QStringLiteral("Prenom_Sesam")).toString());
    afficherMedecin(*this, valeurs->value(QStringLiteral("Sesam_Divers")).toString());
    for (QLabel *l : lblNoDossier)
        l->setText(QStringLiteral("No Dossier : ") + (m_numeroLie < 1 ? QString() : QString::number(m_numeroLie)));
    SSTab1->setCurrentIndex(1);
    SSTab1->setCurrentIndex(0);
    return true;
}

void frmSignaletiques2_AG::btn_enregistrer_Click()
{
    ValeursFiche v = lireValeurs();
    v.insert(QStringLiteral("Photo"), StockerAMC(blocAMC()));
    QString erreur;
    if (EnregistrerFicheLiee(m_cheminLie, m_numeroLie, v, &erreur)) {
        accept();
        return;
    }
    // The card stays open with what was typed; the own base holds no half
    // mirror (its write is one transaction).
    Prompt::informer(titreErreur,
                     QStringLiteral("Une erreur est survenue à la sauvegarde du signalétique.\n"
                                    "Vérifiez votre saisie (notamment la validité des dates)."),
                     Prompt::Icone::Critique);
}

void frmSignaletiques2_AG::Btn_Abandon_Click()
{
    // The current patient still carries the linked base's number, which in
    // the own base names another person: nothing is booked on it.
    ViderPatientCourant();
    FicheSignaletique::Btn_Abandon_Click();
}
