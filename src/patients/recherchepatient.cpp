#include "patients/recherchepatient.h"

#include "patients/dialoguesouverts.h"
#include "patients/gestiontype.h"
#include "shell/appstate.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"

#include <QApplication>
#include <QFontMetrics>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

// ---------------------------------------------------------------------------

void ModeleRecherche::fixer(ResultatRecherche resultat)
{
    beginResetModel();
    m_resultat = std::move(resultat);
    endResetModel();
}

void ModeleRecherche::vider()
{
    fixer(ResultatRecherche());
}

int ModeleRecherche::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_resultat.size());
}

int ModeleRecherche::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 7;
}

QVariant ModeleRecherche::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    const LigneRecherche &l = m_resultat.ligne(index.row());
    switch (index.column()) {
    case 0:
        return l.Base;
    case 1:
        return l.Nom;
    case 2:
        return l.Prenom;
    case 3:
        return TexteDateBase(l.DateNaissance);
    case 4:
        return TexteDateBase(l.DerniereVisite);
    case 5:
        return l.Numero;
    case 6:
        return l.Agenda;
    default:
        return {};
    }
}

QVariant ModeleRecherche::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    static const char16_t *const titres[] = {u"Base", u"Nom", u"Prénom", u"Date de Naissance",
                                             u"Dernière Consultation", u"Numéro de fiche", u"N° Agenda"};
    if (section < 0 || section >= 7)
        return {};
    return QString::fromUtf16(titres[section]);
}

// ---------------------------------------------------------------------------

namespace {

QPushButton *bouton(const QString &nom, const QString &texte, QWidget *parent)
{
    auto *b = new QPushButton(texte, parent);
    b->setObjectName(nom);
    b->setAutoDefault(false);
    return b;
}

const QString titreProgramme = QStringLiteral("Tavonel");

} // namespace

RecherchePatient::RecherchePatient(Genre genre, QWidget *parent)
    : QDialog(parent)
    , m_genre(genre)
{
    setWindowTitle(estRendezVous() ? QStringLiteral("Recherche d'un patient")
                                   : QStringLiteral("Base patients de l'AGENDA : gestion des fiches"));
    setModal(true);

    auto *champs = new QGridLayout;
    auto ajouterChamp = [&](int ligne, const QString &libelle, const QString &nom) {
        auto *l = new QLabel(libelle, this);
        auto *t = new QLineEdit(this);
        t->setObjectName(nom);
        l->setBuddy(t);
        champs->addWidget(l, ligne, 0);
        champs->addWidget(t, ligne, 1);
        return t;
    };
    Text1 = ajouterChamp(0, QStringLiteral("Nom :"), QStringLiteral("Text1"));
    Text2 = ajouterChamp(1, QStringLiteral("Prénom :"), QStringLiteral("Text2"));
    Text3 = ajouterChamp(2, QStringLiteral("Né(e) le :"), QStringLiteral("Text3"));

    Btn_Rechercher[1] = bouton(QStringLiteral("Btn_Rechercher(1)"), QStringLiteral("Rechercher dans Brenwick"), this);
    Btn_Rechercher[2] =
        bouton(QStringLiteral("Btn_Rechercher(2)"), QStringLiteral("Rechercher dans la base Agenda"), this);
    Btn_Ouvrir_Fiche =
        bouton(QStringLiteral("Btn_Ouvrir_Fiche"), QStringLiteral("Ouvrir la fiche du patient sélectionné"), this);
    Btn_Lire_carte = bouton(QStringLiteral("Btn_Lire_carte"), QStringLiteral("Choisir le patient en cours"), this);
    Btn_Creer_Patient =
        bouton(QStringLiteral("Btn_Creer_Patient"), QStringLiteral("Créer la fiche d'un nouveau patient"), this);
    Btn_Abandon = bouton(QStringLiteral("Btn_Abandon"), QStringLiteral("Abandon"), this);

    auto *recherches = new QVBoxLayout;
    recherches->addWidget(Btn_Rechercher[1]);
    recherches->addWidget(Btn_Rechercher[2]);
    recherches->addStretch();
    auto *haut = new QHBoxLayout;
    haut->addLayout(champs, 1);
    haut->addLayout(recherches);

    m_modele = new ModeleRecherche(this);
    DBGrid1 = new QTableView(this);
    DBGrid1->setObjectName(QStringLiteral("DBGrid1"));
    DBGrid1->setModel(m_modele);
    DBGrid1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    DBGrid1->setSelectionBehavior(QAbstractItemView::SelectRows);
    DBGrid1->setSelectionMode(QAbstractItemView::SingleSelection);
    DBGrid1->verticalHeader()->setDefaultSectionSize(DBGrid1->fontMetrics().height() + 6);
    DBGrid1->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    DBGrid1->horizontalHeader()->setStretchLastSection(true);
    // Every column at least as wide as its caption: the secretary must read
    // "Date de Naissance" whole. Measured on the captions only, so that no
    // row is fetched for it.
    const QFontMetrics mesureEntete(DBGrid1->horizontalHeader()->font());
    int largeurColonnes = 0;
    for (int colonne = 0; colonne < m_modele->columnCount(); ++colonne) {
        const QString legende = m_modele->headerData(colonne, Qt::Horizontal, Qt::DisplayRole).toString();
        const int largeur = std::max(DBGrid1->horizontalHeader()->defaultSectionSize(),
                                     mesureEntete.horizontalAdvance(legende) + 24);
        DBGrid1->setColumnWidth(colonne, largeur);
        largeurColonnes += largeur;
    }
    // The seven columns fit without scrolling sideways.
    DBGrid1->setMinimumWidth(largeurColonnes + DBGrid1->verticalHeader()->sizeHint().width() +
                             DBGrid1->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 2 * DBGrid1->frameWidth() + 4);
    DBGrid1->setMinimumHeight(260);

    lb = new QLabel(this);
    lb->setObjectName(QStringLiteral("lb"));
    LabelMessage = new QLabel(this);
    LabelMessage->setObjectName(QStringLiteral("LabelMessage"));

    auto *commandes = new QHBoxLayout;
    commandes->addWidget(Btn_Ouvrir_Fiche);
    commandes->addWidget(Btn_Lire_carte);
    commandes->addWidget(Btn_Creer_Patient);
    commandes->addStretch();
    commandes->addWidget(Btn_Abandon);

    auto *disposition = new QVBoxLayout(this);
    disposition->addLayout(haut);
    disposition->addWidget(LabelMessage);
    disposition->addWidget(DBGrid1, 1);
    disposition->addWidget(lb);
    disposition->addLayout(commandes);

    DBGrid1->hide();
    lb->hide();
    Btn_Ouvrir_Fiche->hide();

    connect(Btn_Rechercher[1], &QPushButton::clicked, this, [this] { Rechercher(1); });
    connect(Btn_Rechercher[2], &QPushButton::clicked, this, [this] { Rechercher(2); });
    connect(Btn_Ouvrir_Fiche, &QPushButton::clicked, this, &RecherchePatient::OuvrirFiche);
    connect(DBGrid1, &QTableView::doubleClicked, this, &RecherchePatient::OuvrirFiche);
    connect(Btn_Lire_carte, &QPushButton::clicked, this, &RecherchePatient::ChoisirPatientEnCours);
    connect(Btn_Creer_Patient, &QPushButton::clicked, this, &RecherchePatient::CreerPatient);
    connect(Btn_Abandon, &QPushButton::clicked, this, &RecherchePatient::Abandon);

    // The dialog sees the keys before its controls (F1, F2, F11, arrows).
    for (QWidget *w : findChildren<QWidget *>())
        w->installEventFilter(this);
    installEventFilter(this);
    CompterDialogueOuvert(this);
}

void RecherchePatient::showEvent(QShowEvent *event)
{
    Text1->clear();
    Text2->clear();
    Text3->clear();
    Btn_Ouvrir_Fiche->setDefault(false);
    Btn_Rechercher[indexParDefaut()]->setDefault(true);
    Text1->setFocus();
    QDialog::showEvent(event);
}

bool RecherchePatient::eventFilter(QObject *objet, QEvent *evenement)
{
    if (evenement->type() == QEvent::KeyPress) {
        auto *touche = static_cast<QKeyEvent *>(evenement);
        switch (touche->key()) {
        case Qt::Key_Down:
            deplacer(1);
            return true;
        case Qt::Key_Up:
            deplacer(-1);
            return true;
        case Qt::Key_F1:
            Rechercher(1);
            return true;
        case Qt::Key_F2:
            Rechercher(2);
            return true;
        case Qt::Key_F11:
            CreerPatient();
            return true;
        default:
            break;
        }
    } else if (evenement->type() == QEvent::FocusOut && objet == Text3) {
        // Only leaving the field for another control counts: switching to
        // another window, or a menu opening, leaves the date unchecked.
        const Qt::FocusReason raison = static_cast<QFocusEvent *>(evenement)->reason();
        if (raison != Qt::ActiveWindowFocusReason && raison != Qt::PopupFocusReason)
            verifierDateNaissance();
    }
    return QDialog::eventFilter(objet, evenement);
}

void RecherchePatient::deplacer(int pas)
{
    const int n = m_modele->rowCount();
    if (n == 0)
        return;
    const int actuelle = DBGrid1->currentIndex().isValid() ? DBGrid1->currentIndex().row() : 0;
    const int cible = std::clamp(actuelle + pas, 0, n - 1);
    const int colonne = DBGrid1->currentIndex().isValid() ? DBGrid1->currentIndex().column() : 1;
    DBGrid1->setCurrentIndex(m_modele->index(cible, colonne));
}

void RecherchePatient::verifierDateNaissance()
{
    const QString texte = Text3->text();
    // Only a field left truly empty is spared: blanks alone are no date.
    if (texte.isEmpty() || LireDateTexte(texte).isValid())
        return;
    Prompt::informer(QStringLiteral("Erreur de saisie"), QStringLiteral("Veuillez vérifier la date de naissance saisie."),
                     Prompt::Icone::Exclamation);
}

void RecherchePatient::Rechercher(int index)
{
    Btn_Rechercher[indexParDefaut()]->setDefault(false);
    Btn_Ouvrir_Fiche->setDefault(true);
    LabelMessage->clear();
    RetourRecherche = static_cast<qint16>(index);

    const AppState &etat = appState();
    if (index == 1 && estRendezVous() && etat.Path[1].isEmpty()) {
        Prompt::informer(QStringLiteral("Erreur..."),
                         QStringLiteral("La configuration de la liason avec Brenwick n'est pas faite !"),
                         Prompt::Icone::Critique);
        return;
    }

    for (;;) {
        ResultatRecherche resultat;
        const std::optional<ErreurRecherche> erreur = index == 1
                                                          ? RechercheBasesLiees(etat, Text1->text(), Text2->text(), resultat)
                                                          : RechercheBaseAgenda(etat, Text1->text(), Text2->text(), resultat);
        if (!erreur) {
            m_modele->fixer(std::move(resultat));
            break;
        }
        m_modele->vider();
        const QString texte = QStringLiteral("Erreur %1 lors de la recherche d'une fiche\n%2")
                                  .arg(erreur->numero)
                                  .arg(erreur->description);
        if (!estRendezVous()) {
            // This dialog has no trap of its own: the failure is told once.
            Prompt::informer(titreProgramme, texte, Prompt::Icone::Critique);
            break;
        }
        // The failed step is run again for as long as the user asks for it;
        // a base that stays out of reach leaves the dialog as it was.
        const Prompt::Reponse r = Prompt::demander({titreProgramme, texte, Prompt::Icone::Critique,
                                                    Prompt::Boutons::ReessayerAnnuler, Prompt::Reponse::Annuler});
        if (r != Prompt::Reponse::Reessayer)
            break;
    }
    afficherResultat();
}

void RecherchePatient::Search()
{
    ResultatRecherche resultat;
    if (RechercheBaseAgenda(appState(), Text1->text(), Text2->text(), resultat))
        m_modele->vider();
    else
        m_modele->fixer(std::move(resultat));
    afficherResultat();
}

void RecherchePatient::afficherResultat()
{
    const int n = m_modele->rowCount();
    if (n > 0) {
        DBGrid1->show();
        lb->setText(QStringLiteral("%1 patients").arg(n));
        lb->show();
        Btn_Ouvrir_Fiche->show();
        DBGrid1->setCurrentIndex(m_modele->index(0, 1));
        DBGrid1->setFocus();
        return;
    }
    DBGrid1->hide();
    lb->hide();
    Btn_Ouvrir_Fiche->hide();
    LabelMessage->setText(QStringLiteral("Aucun patient ne correspond à cette sélection"));
    Text1->setFocus();
    Btn_Ouvrir_Fiche->setDefault(false);
    Btn_Rechercher[indexParDefaut()]->setDefault(true);
}

void RecherchePatient::OuvrirFiche()
{
    ResultatRecherche &resultat = m_modele->resultat();
    if (resultat.isEmpty()) {
        Prompt::bip();
        return;
    }
    const qsizetype i = DBGrid1->currentIndex().isValid() ? DBGrid1->currentIndex().row() : 0;
    for (;;) {
        ErreurRecherche erreur;
        if (resultat.lire(i, &erreur))
            break;
        // The number alone: unlike the search's, this box gives no text.
        const QString texte = QStringLiteral("Erreur %1 lors de l'ouverture de la fiche").arg(erreur.numero);
        const Prompt::Reponse r = Prompt::demander({titreProgramme, texte, Prompt::Icone::Critique,
                                                    Prompt::Boutons::ReessayerAnnuler, Prompt::Reponse::Annuler});
        if (r != Prompt::Reponse::Reessayer)
            return;
    }
    const LigneRecherche &l = resultat.ligne(i);
    if (l.Numero.toLongLong() <= 0) {
        Prompt::informer(titreProgramme, QStringLiteral("Veuillez sélectionner un patient"), Prompt::Icone::Aucune);
        return;
    }
    // Only the five fields of the row are left in the record by the editor's
    // dialog; the main window's dialog leaves the others as they were.
    ChargerDepuisLigne(l, estRendezVous());
    accept();
}

void RecherchePatient::Abandon()
{
    reject();
}

// Escape and the window's close box leave as "Abandon" does: otherwise the
// outcome of an earlier search would stay behind and the caller would open
// a patient card nobody asked for.
void RecherchePatient::reject()
{
    RetourRecherche = 0;
    ViderPatientCourant();
    QDialog::reject();
}

void RecherchePatient::CreerPatient()
{
    RetourRecherche = 3;
    accept();
}

void RecherchePatient::ChoisirPatientEnCours()
{
    if (appState().PatientCourant.Numero != 0) {
        RetourRecherche = 4;
        accept();
        return;
    }
    Prompt::informer(titreProgramme, QStringLiteral("Il n'y a pas de patient sélectionné actuellement"),
                     Prompt::Icone::Exclamation);
}

Recherche_patient_AG::Recherche_patient_AG(QWidget *parent)
    : RecherchePatient(Genre::RendezVous, parent)
{
    setObjectName(QStringLiteral("Recherche_patient_AG"));
}

Recherche_patient_Agenda::Recherche_patient_Agenda(QWidget *parent)
    : RecherchePatient(Genre::Agenda, parent)
{
    setObjectName(QStringLiteral("Recherche_patient_Agenda"));
}
