#include "messaging/frmreminders.h"

#include "messaging/envoirappels.h"
#include "messaging/rappels.h"
#include "shell/base/horloge.h"
#include "shell/base/prompt.h"
#include "shell/base/supportui.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

template <typename T>
T *nomme(T *objet, const char *nom)
{
    objet->setObjectName(QLatin1String(nom));
    return objet;
}

} // namespace

// --- Both windows ----------------------------------------------------------

FenetreRappels::FenetreRappels(ReminderEngine &moteur, const char *nom, QWidget *parent)
    : QDialog(parent)
    , m_moteur(moteur)
{
    setObjectName(QLatin1String(nom));
    setWindowTitle(QStringLiteral("Rappels"));
    setModal(false);
    setSizeGripEnabled(true);

    auto *icone = new QLabel(this);
    icone->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32, 32));
    icone->setAlignment(Qt::AlignTop);
    txtDescription1 = nomme(new QLabel(this), "txtDescription1");
    QFont gras = txtDescription1->font();
    gras.setBold(true);
    txtDescription1->setFont(gras);
    txtDescription1->setTextInteractionFlags(Qt::TextSelectableByMouse);
    txtDescription2 = nomme(new QLabel(this), "txtDescription2");

    ctrlReminders = nomme(new QTreeWidget(this), "ctrlReminders");
    ctrlReminders->setColumnCount(2);
    ctrlReminders->setHeaderLabels({QStringLiteral("Sujet"), QStringLiteral("RDV dans : ")});
    ctrlReminders->setRootIsDecorated(false);
    ctrlReminders->setUniformRowHeights(true);
    ctrlReminders->setAllColumnsShowFocus(true);
    ctrlReminders->setSelectionMode(QAbstractItemView::SingleSelection);
    ctrlReminders->header()->setStretchLastSection(false);
    ctrlReminders->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    ctrlReminders->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    ctrlReminders->setMinimumSize(580, 150);

    btnDismissAll = nomme(new QPushButton(QStringLiteral("Rejeter &Tous les rappels"), this), "btnDismissAll");
    btnOpenItem = nomme(new QPushButton(QStringLiteral("&Ouvrir un item"), this), "btnOpenItem");
    btnDismiss = nomme(new QPushButton(QStringLiteral("&Rejeter"), this), "btnDismiss");
    cmbSnooze = nomme(new QComboBox(this), "cmbSnooze");
    cmbSnooze->setEditable(true);
    RemplirCombosDuree(cmbSnooze, true, false);
    btnSnooze = nomme(new QPushButton(QStringLiteral("&Snooze"), this), "btnSnooze");
    btnCancel = nomme(new QPushButton(QStringLiteral("&Fermer"), this), "btnCancel");

    auto *colonne = new QVBoxLayout(this);
    auto *entete = new QGridLayout;
    entete->addWidget(icone, 0, 0, 2, 1);
    entete->addWidget(txtDescription1, 0, 1);
    entete->addWidget(txtDescription2, 1, 1);
    entete->setColumnStretch(1, 1);
    colonne->addLayout(entete);
    colonne->addWidget(ctrlReminders, 1);
    auto *actions = new QHBoxLayout;
    actions->addWidget(btnDismissAll);
    actions->addStretch(1);
    actions->addWidget(btnOpenItem);
    actions->addWidget(btnDismiss);
    colonne->addLayout(actions);
    m_supplement = new QVBoxLayout;
    colonne->addLayout(m_supplement);
    auto *repos = new QHBoxLayout;
    repos->addWidget(cmbSnooze, 1);
    repos->addWidget(btnSnooze);
    colonne->addLayout(repos);
    auto *fermeture = new QHBoxLayout;
    fermeture->addStretch(1);
    fermeture->addWidget(btnCancel);
    colonne->addLayout(fermeture);

    connect(ctrlReminders, &QTreeWidget::itemSelectionChanged, this, &FenetreRappels::majFenetre);
    connect(ctrlReminders, &QTreeWidget::itemDoubleClicked, this, &FenetreRappels::ouvrir);
    connect(btnOpenItem, &QPushButton::clicked, this, &FenetreRappels::ouvrir);
    connect(btnDismiss, &QPushButton::clicked, this, &FenetreRappels::rejeter);
    connect(btnDismissAll, &QPushButton::clicked, this, [this] { rejeterTous(); });
    connect(btnSnooze, &QPushButton::clicked, this, [this] { repousser(); });
    // Closing dismisses nothing.
    connect(btnCancel, &QPushButton::clicked, this, &QWidget::close);
}

void FenetreRappels::OnReminders(int action, const Reminder &rappel)
{
    Q_UNUSED(rappel);
    if (!listeLibre())
        return;
    switch (action) {
    case ReminderEngine::Fire:
    case ReminderEngine::Snoozed:
    case ReminderEngine::Dismissed:
    case ReminderEngine::AllDismissed:
        reconstruire();
        majFenetre();
        break;
    case ReminderEngine::WatchStopped:
        ctrlReminders->clear();
        majFenetre();
        break;
    default:
        break;
    }
}

void FenetreRappels::reconstruire()
{
    const QSignalBlocker bloque(ctrlReminders);
    ctrlReminders->clear();
    const QDateTime maintenant = Horloge::maintenant();
    for (const Reminder &r : m_moteur.ActiveReminders()) {
        const QDateTime debut = r.Event ? r.Event->StartDateTime() : r.StartTime;
        auto *ligne = new QTreeWidgetItem(ctrlReminders);
        ligne->setText(0, r.Event ? r.Event->Subject() : QString());
        ligne->setText(1, TexteEcheance(MinutesAvantDebut(maintenant, debut)));
    }
    // As a list control does, the first row is the current one once the list
    // is filled, so that the window opens on the first reminder.
    if (ctrlReminders->topLevelItemCount() > 0)
        ctrlReminders->setCurrentItem(ctrlReminders->topLevelItem(0));
}

int FenetreRappels::ligneChoisie() const
{
    const QList<QTreeWidgetItem *> choisies = ctrlReminders->selectedItems();
    if (choisies.isEmpty())
        return -1;
    const int ligne = ctrlReminders->indexOfTopLevelItem(choisies.first());
    return ligne < m_moteur.Count() ? ligne : -1;
}

void FenetreRappels::majFenetre()
{
    const int lignes = ctrlReminders->topLevelItemCount();
    const int ligne = ligneChoisie();
    const bool choisi = ligne >= 0;
    for (QWidget *w : std::initializer_list<QWidget *>{btnDismissAll, btnDismiss, btnOpenItem, btnSnooze, cmbSnooze})
        w->setEnabled(choisi && listeLibre());
    if (!choisi) {
        txtDescription1->clear();
        txtDescription2->setText(lignes > 0 ? QStringLiteral("Pas de Rappel sélectionné") : QStringLiteral("Pas de Rappel à afficher."));
    } else {
        const Reminder &r = m_moteur.ActiveReminders().at(ligne);
        txtDescription1->setText(r.Event ? r.Event->Subject() : QString());
        txtDescription2->setText(TexteDebutRappel(r.Event ? r.Event->StartDateTime() : r.StartTime));
        cmbSnooze->setCurrentText(TexteRepos(r.MinutesBeforeStart));
    }
    setWindowTitle(TitreRappels(lignes));
}

void FenetreRappels::rejeter()
{
    const int ligne = ligneChoisie();
    if (ligne >= 0)
        m_moteur.Dismiss(ligne);
}

void FenetreRappels::ouvrir()
{
    const int ligne = ligneChoisie();
    if (ligne < 0 || !listeLibre() || !ouvrirRendezVous)
        return;
    const CalendarEventPtr evenement = m_moteur.ActiveReminders().at(ligne).Event;
    if (evenement)
        ouvrirRendezVous(this, evenement);
}

void FenetreRappels::placerACote(const QWidget *principale)
{
    adjustSize();
    const QScreen *ecran = principale ? principale->screen() : screen();
    if (!principale || !ecran)
        return;
    const QRect zone = ecran->availableGeometry();
    const QRect cadre = principale->frameGeometry();
    // The frame of a window not shown yet is not known: count a margin.
    const QSize taille = size() + QSize(16, 40);
    int x = cadre.right() + 1;
    if (x + taille.width() > zone.right() + 1)
        x = cadre.left() - taille.width() >= zone.left() ? cadre.left() - taille.width() : zone.right() + 1 - taille.width();
    const int y = std::clamp(cadre.top(), zone.top(), std::max(zone.top(), zone.bottom() + 1 - taille.height()));
    move(std::max(x, zone.left()), y);
}

// --- The plain window ------------------------------------------------------

frmReminders::frmReminders(ReminderEngine &moteur, QWidget *parent)
    : FenetreRappels(moteur, "frmReminders", parent)
{
    Label1 = nomme(new QLabel(QStringLiteral("Cliquer sur Snooze pour être rapellé à nouveau"), this), "Label1");
    m_supplement->addWidget(Label1);
    majFenetre();
    setWindowTitle(QStringLiteral("Rappels"));
}

void frmReminders::repousser()
{
    const int ligne = ligneChoisie();
    if (ligne >= 0)
        m_moteur.Snooze(ligne, MinutesRepos(cmbSnooze->currentText()));
}

void frmReminders::rejeterTous()
{
    m_moteur.DismissAll();
}

// --- The window that sends -------------------------------------------------

frmReminderSMS::frmReminderSMS(ReminderEngine &moteur, QWidget *parent)
    : FenetreRappels(moteur, "frmReminderSMS", parent)
{
    m_envoi = new EnvoiRappels(moteur, this);
    Btn_Ok = nomme(new QPushButton(QStringLiteral("&Envoyer les rappels (Mails et SMS)"), this), "Btn_Ok");
    ProgressBar1 = nomme(new QProgressBar(this), "ProgressBar1");
    ProgressBar1->setVisible(false);
    lblStatus = nomme(new QLabel(this), "lblStatus");
    lblStatus->setWordWrap(true);
    lblStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *envoi = new QHBoxLayout;
    envoi->addWidget(Btn_Ok);
    envoi->addWidget(ProgressBar1, 1);
    m_supplement->addLayout(envoi);
    m_supplement->addWidget(lblStatus);

    connect(Btn_Ok, &QPushButton::clicked, this, [this] {
        lblStatus->setToolTip(QString());
        m_envoi->demarrer(ctrlReminders->topLevelItemCount());
        if (BatchRunning()) {
            Btn_Ok->setEnabled(false);
            majFenetre();
        }
    });
    connect(m_envoi, &EnvoiRappels::statut, lblStatus, &QLabel::setText);
    connect(m_envoi, &EnvoiRappels::progression, this, [this](int valeur, int maximum) {
        ProgressBar1->setMaximum(maximum);
        ProgressBar1->setValue(valeur);
        ProgressBar1->setVisible(true);
    });
    connect(m_envoi, &EnvoiRappels::termine, this, &frmReminderSMS::finEnvoi);
    majFenetre();
    setWindowTitle(QStringLiteral("Rappels"));
}

frmReminderSMS::~frmReminderSMS() = default;

bool frmReminderSMS::BatchRunning() const
{
    return m_envoi->BatchRunning();
}

bool frmReminderSMS::listeLibre() const
{
    return !BatchRunning();
}

void frmReminderSMS::finEnvoi()
{
    Btn_Ok->setEnabled(true);
    // The list follows the engine again, whatever the dismissals reported.
    OnReminders(ReminderEngine::Fire, Reminder{});
    lblStatus->setToolTip(m_envoi->raisons().join(u'\n'));
}

void frmReminderSMS::repousser()
{
    if (!Prompt::confirmer(QStringLiteral("Snooze..."),
                           QStringLiteral("Êtes-vous sur de vouloir repousser tous les rappels de ") + cmbSnooze->currentText()
                               + QStringLiteral("? "),
                           Prompt::Reponse::Oui))
        return;
    const int minutes = MinutesRepos(cmbSnooze->currentText());
    for (int n = m_moteur.Count(); n > 0 && m_moteur.Count() > 0; --n)
        m_moteur.Snooze(0, minutes);
    close();
}

void frmReminderSMS::rejeterTous()
{
    if (Prompt::confirmer(QStringLiteral("rejeter les rappels"),
                          QStringLiteral("Êtes-vous sur de vouloir rejeter tous les rappels affichés ? "), Prompt::Reponse::Oui))
        m_moteur.DismissAll();
}
