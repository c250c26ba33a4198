#include "appointments/frmeditevent.h"

#include "appointments/frmcustomeventproperties.h"
#include "appointments/frmeditrecurrence.h"
#include "appointments/impressionticket.h"
#include "appointments/prochaincreneau.h"
#include "calendar/calendardataprovider.h"
#include "calendar/view/colorationregles.h"
#include "messaging/gsmmodem.h"
#include "messaging/mailreminder.h"
#include "messaging/smstext.h"
#include "patients/bouclesrecherche.h"
#include "patients/dialoguesouverts.h"
#include "patients/gestiontype.h"
#include "rules/frmpraticiens.h"
#include "rules/praticiens.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/joursferies.h"
#include "shell/base/nombres.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"
#include "shell/base/supportui.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

const char *const nomsLibelles[ChampRdv::Nombre] = {
    "Nom :", "Prénom :", "Date Naissance :", "Téléphone :", "Portable :", "Adresse :", "Adresse cplt. :",
    "Code Postal :", "Ville :", "Commentaire :", nullptr, nullptr, nullptr, "Adresse Mail :",
};

// Focus moves that leave a field for another control of the dialog (not a
// switch to another window or a menu).
bool sortieVersControle(const QFocusEvent *e)
{
    const Qt::FocusReason r = e->reason();
    return r == Qt::TabFocusReason || r == Qt::BacktabFocusReason || r == Qt::MouseFocusReason || r == Qt::ShortcutFocusReason
           || r == Qt::OtherFocusReason;
}

QComboBox *comboSaisie(QWidget *parent, const QString &nom, int largeurCaracteres)
{
    auto *c = new QComboBox(parent);
    c->setObjectName(nom);
    c->setEditable(true);
    c->setInsertPolicy(QComboBox::NoInsert);
    c->setMaxVisibleItems(12);
    c->setMinimumContentsLength(largeurCaracteres);
    c->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return c;
}

// A reminder sent by SMS or mail goes out a week ahead; one on screen a
// quarter of an hour ahead.
QString dureeRappelProposee()
{
    const AppState &etat = appState();
    return (etat.RappelsSMS || etat.RappelsMails) ? QStringLiteral("1 semaine") : QStringLiteral("15 minutes");
}

QLabel *libelle(const QString &texte, QWidget *parent, QWidget *copain = nullptr)
{
    auto *l = new QLabel(texte, parent);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    if (copain)
        l->setBuddy(copain);
    return l;
}

} // namespace

frmEditEvent::frmEditEvent(CalendarDataProvider *provider, QWidget *parent)
    : QDialog(parent)
    , m_provider(provider)
{
    setObjectName(QStringLiteral("frmEditEvent"));
    setModal(true);
    construire();
    remplirListes();

    // Where reminders go out by SMS or mail, the reminder starts off and a
    // valid number or address turns it on.
    const AppState &etat = appState();
    chkReminder->setEnabled(!(etat.RappelsSMS || etat.RappelsMails));
    frmMarkup->setVisible(false);
    CompterDialogueOuvert(this);

    // While the dialog is open its reservations are confirmed, so that the
    // other stations can tell them from those of a station that stopped.
    auto *veille = new QTimer(this);
    veille->setInterval(SecondesVeilleReservation * 1000);
    connect(veille, &QTimer::timeout, this, [] { EntretenirReservations(); });
    veille->start();
}

frmEditEvent::~frmEditEvent()
{
    libererReservations();
}

void frmEditEvent::construire()
{
    auto *principal = new QVBoxLayout(this);
    principal->setSpacing(8);

    // Practitioner and the record's history.
    auto *entete = new QHBoxLayout;
    lblPraticien = new QLabel(this);
    lblPraticien->setObjectName(QStringLiteral("lblPraticien"));
    QFont grand = lblPraticien->font();
    grand.setBold(true);
    grand.setPointSizeF(grand.pointSizeF() * 1.25);
    lblPraticien->setFont(grand);
    lblModif = new QLabel(this);
    lblModif->setObjectName(QStringLiteral("lblModif"));
    lblModif->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QPalette gris = lblModif->palette();
    gris.setColor(QPalette::WindowText, QColor(0x60, 0x60, 0x60));
    lblModif->setPalette(gris);
    entete->addWidget(lblPraticien, 1);
    entete->addWidget(lblModif);
    principal->addLayout(entete);

    // The patient.
    auto *groupePatient = new QGroupBox(QStringLiteral("Patient"), this);
    auto *colPatient = new QVBoxLayout(groupePatient);
    auto *lignePatient = new QHBoxLayout;
    Command1 = new QPushButton(QStringLiteral("Choisir le p&atient..."), groupePatient);
    Command1->setObjectName(QStringLiteral("Command1"));
    Command1->setToolTip(QStringLiteral("Rechercher le patient dans les bases"));
    btnView = new QPushButton(QStringLiteral("&Fiche patient"), groupePatient);
    btnView->setObjectName(QStringLiteral("btnView"));
    btnView->setEnabled(false);
    SSCheck1 = new QCheckBox(QStringLiteral("Le rendez vous ne concerne pas un patient"), groupePatient);
    SSCheck1->setObjectName(QStringLiteral("SSCheck1"));
    lignePatient->addWidget(Command1);
    lignePatient->addWidget(btnView);
    lignePatient->addStretch(1);
    lignePatient->addWidget(SSCheck1);
    colPatient->addLayout(lignePatient);

    for (int i = 0; i < ChampRdv::Nombre; ++i) {
        txtBody[i] = new QLineEdit(groupePatient);
        txtBody[i]->setObjectName(QStringLiteral("txtBody(%1)").arg(i));
        if (nomsLibelles[i]) {
            lblBody[i] = libelle(QString::fromUtf8(nomsLibelles[i]), groupePatient, txtBody[i]);
            lblBody[i]->setObjectName(QStringLiteral("lblBody(%1)").arg(i));
        } else {
            txtBody[i]->setVisible(false);
        }
    }
    lblAge = new QLabel(groupePatient);
    lblAge->setObjectName(QStringLiteral("lblAge"));
    lblAge->setMinimumWidth(80);
    txtBody[ChampRdv::DateNaissance]->setMaximumWidth(110);
    txtBody[ChampRdv::CodePostal]->setMaximumWidth(80);
    txtBody[ChampRdv::Telephone]->setMaxLength(20);
    txtBody[ChampRdv::Portable]->setMaxLength(20);

    auto *grille = new QGridLayout;
    grille->setHorizontalSpacing(6);
    grille->setColumnStretch(1, 1);
    grille->setColumnStretch(3, 1);
    auto placer = [&](int champ, int ligne, int colonne, int etendue = 1) {
        grille->addWidget(lblBody[champ], ligne, colonne);
        grille->addWidget(txtBody[champ], ligne, colonne + 1, 1, etendue);
    };
    placer(ChampRdv::Nom, 0, 0);
    placer(ChampRdv::Prenom, 0, 2);
    {
        auto *naissance = new QHBoxLayout;
        naissance->addWidget(txtBody[ChampRdv::DateNaissance]);
        naissance->addWidget(lblAge, 1);
        grille->addWidget(lblBody[ChampRdv::DateNaissance], 1, 0);
        grille->addLayout(naissance, 1, 1);
    }
    placer(ChampRdv::Mel, 1, 2);
    placer(ChampRdv::Telephone, 2, 0);
    placer(ChampRdv::Portable, 2, 2);
    placer(ChampRdv::Adresse1, 3, 0, 3);
    placer(ChampRdv::Adresse2, 4, 0, 3);
    placer(ChampRdv::CodePostal, 5, 0);
    placer(ChampRdv::Ville, 5, 2);
    placer(ChampRdv::Commentaire, 6, 0, 3);
    colPatient->addLayout(grille);
    principal->addWidget(groupePatient);

    // The appointment.
    auto *groupeRdv = new QGroupBox(QStringLiteral("Rendez-vous"), this);
    auto *grilleRdv = new QGridLayout(groupeRdv);
    grilleRdv->setHorizontalSpacing(6);
    grilleRdv->setColumnStretch(1, 1);
    grilleRdv->setColumnStretch(3, 1);
    const char *const textesLocation[2] = {"&Motif :", "Adréssé par :"};
    for (int i = 0; i < 2; ++i) {
        txtLocation[i] = new QLineEdit(groupeRdv);
        txtLocation[i]->setObjectName(QStringLiteral("txtLocation(%1)").arg(i));
        lblLocation[i] = libelle(QString::fromUtf8(textesLocation[i]), groupeRdv, txtLocation[i]);
        lblLocation[i]->setObjectName(QStringLiteral("lblLocation(%1)").arg(i));
        grilleRdv->addWidget(lblLocation[i], 0, i * 2);
        grilleRdv->addWidget(txtLocation[i], 0, i * 2 + 1);
    }

    cmbStartDate = comboSaisie(groupeRdv, QStringLiteral("cmbStartDate"), 10);
    cmbStartTime = comboSaisie(groupeRdv, QStringLiteral("cmbStartTime"), 5);
    cmbEndDate = comboSaisie(groupeRdv, QStringLiteral("cmbEndDate"), 10);
    cmbEndTime = comboSaisie(groupeRdv, QStringLiteral("cmbEndTime"), 5);
    lblStartDate = libelle(QStringLiteral("Rendez vous le : "), groupeRdv, cmbStartDate);
    lblStartDate->setObjectName(QStringLiteral("lblStartDate"));
    lblEndDate = libelle(QStringLiteral("jusqu'au : "), groupeRdv, cmbEndDate);
    lblEndDate->setObjectName(QStringLiteral("lblEndDate"));
    chkAllDayEvent = new QCheckBox(QStringLiteral("&Jour entier réservé"), groupeRdv);
    chkAllDayEvent->setObjectName(QStringLiteral("chkAllDayEvent"));
    auto *debut = new QHBoxLayout;
    debut->addWidget(cmbStartDate);
    debut->addWidget(cmbStartTime);
    debut->addStretch(1);
    auto *fin = new QHBoxLayout;
    fin->addWidget(cmbEndDate);
    fin->addWidget(cmbEndTime);
    fin->addStretch(1);
    grilleRdv->addWidget(lblStartDate, 1, 0);
    grilleRdv->addLayout(debut, 1, 1);
    grilleRdv->addWidget(chkAllDayEvent, 1, 2, 1, 2);
    grilleRdv->addWidget(lblEndDate, 2, 0);
    grilleRdv->addLayout(fin, 2, 1);
    btnProchainCreneau = new QPushButton(QStringLiteral("Prochain &créneau libre"), groupeRdv);
    btnProchainCreneau->setObjectName(QStringLiteral("btnProchainCreneau"));
    btnProchainCreneau->setAutoDefault(false);
    btnProchainCreneau->setToolTip(QStringLiteral(
        "Place le rendez-vous au premier créneau libre du praticien et du type choisis (libellé), à partir du jour "
        "affiché, d'après le planning, avec la durée par défaut. Ce qui est saisi est gardé ; Annuler revient en arrière."));
    grilleRdv->addWidget(btnProchainCreneau, 2, 2, 1, 2, Qt::AlignLeft);
    lblFerie = new QLabel(groupeRdv);
    lblFerie->setObjectName(QStringLiteral("lblFerie"));
    QPalette orange = lblFerie->palette();
    orange.setColor(QPalette::WindowText, QColor(0xB0, 0x40, 0x00));
    lblFerie->setPalette(orange);
    lblFerie->setVisible(false);
    grilleRdv->addWidget(lblFerie, 8, 1, 1, 3);

    cmbLabel = new QComboBox(groupeRdv);
    cmbLabel->setObjectName(QStringLiteral("cmbLabel"));
    ctrlColor = new QLabel(groupeRdv);
    ctrlColor->setObjectName(QStringLiteral("ctrlColor"));
    ctrlColor->setFixedSize(22, 22);
    ctrlColor->setFrameShape(QFrame::Box);
    ctrlColor->setAutoFillBackground(true);
    auto *libelleRdv = new QHBoxLayout;
    libelleRdv->addWidget(cmbLabel, 1);
    libelleRdv->addWidget(ctrlColor);
    grilleRdv->addWidget(libelle(QStringLiteral("La&bel:"), groupeRdv, cmbLabel), 3, 0);
    grilleRdv->addLayout(libelleRdv, 3, 1);
    cmbShowTimeAs = new QComboBox(groupeRdv);
    cmbShowTimeAs->setObjectName(QStringLiteral("cmbShowTimeAs"));
    grilleRdv->addWidget(libelle(QStringLiteral("Présence :"), groupeRdv, cmbShowTimeAs), 3, 2);
    grilleRdv->addWidget(cmbShowTimeAs, 3, 3);

    cmbSchedule = new QComboBox(groupeRdv);
    cmbSchedule->setObjectName(QStringLiteral("cmbSchedule"));
    lblSchedule = libelle(QStringLiteral("Schedule:"), groupeRdv, cmbSchedule);
    lblSchedule->setObjectName(QStringLiteral("lblSchedule"));
    grilleRdv->addWidget(lblSchedule, 4, 0);
    grilleRdv->addWidget(cmbSchedule, 4, 1);

    chkMeeting = new QCheckBox(QStringLiteral("Patient déjà vu en consultation"), groupeRdv);
    chkMeeting->setObjectName(QStringLiteral("chkMeeting"));
    chkPrivate = new QCheckBox(QStringLiteral("Rendez-vous &Privé"), groupeRdv);
    chkPrivate->setObjectName(QStringLiteral("chkPrivate"));
    grilleRdv->addWidget(chkMeeting, 5, 1);
    grilleRdv->addWidget(chkPrivate, 5, 3);

    chkReminder = new QCheckBox(QStringLiteral("Rappel"), groupeRdv);
    chkReminder->setObjectName(QStringLiteral("chkReminder"));
    cmbReminder = new QComboBox(groupeRdv);
    cmbReminder->setObjectName(QStringLiteral("cmbReminder"));
    cmbReminder->setEditable(true);
    cmbReminder->setInsertPolicy(QComboBox::NoInsert);
    cmbReminder->setMinimumContentsLength(10);
    lblReminder = new QLabel(QStringLiteral("avant le  début du rendez vous"), groupeRdv);
    lblReminder->setObjectName(QStringLiteral("lblReminder"));
    auto *rappel = new QHBoxLayout;
    rappel->addWidget(cmbReminder);
    rappel->addWidget(lblReminder);
    rappel->addStretch(1);
    grilleRdv->addWidget(chkReminder, 6, 0, Qt::AlignRight);
    grilleRdv->addLayout(rappel, 6, 1, 1, 3);

    txtSubject = new QLineEdit(groupeRdv);
    txtSubject->setObjectName(QStringLiteral("txtSubject"));
    lblSubject = libelle(QStringLiteral("Sub&ject:"), groupeRdv, txtSubject);
    lblSubject->setObjectName(QStringLiteral("lblSubject"));
    grilleRdv->addWidget(lblSubject, 7, 0);
    grilleRdv->addWidget(txtSubject, 7, 1, 1, 3);
    principal->addWidget(groupeRdv);

    // Notes kept with the appointment, shown on demand.
    frmMarkup = new QFrame(this);
    frmMarkup->setObjectName(QStringLiteral("frmMarkup"));
    auto *colMarkup = new QVBoxLayout(frmMarkup);
    colMarkup->setContentsMargins(0, 0, 0, 0);
    txtMarkupText = new QPlainTextEdit(frmMarkup);
    txtMarkupText->setObjectName(QStringLiteral("txtMarkupText"));
    txtMarkupText->setTabChangesFocus(true);
    txtMarkupText->setFixedHeight(90);
    colMarkup->addWidget(txtMarkupText);
    principal->addWidget(frmMarkup);

    // Commands.
    auto *boutons = new QHBoxLayout;
    btnRecurrence = new QPushButton(QStringLiteral("Pé&riodicité..."), this);
    btnRecurrence->setObjectName(QStringLiteral("btnRecurrence"));
    btnCustomProperties = new QPushButton(QStringLiteral("Custom Properties ..."), this);
    btnCustomProperties->setObjectName(QStringLiteral("btnCustomProperties"));
    btnMore = new QPushButton(QStringLiteral("Plus >>"), this);
    btnMore->setObjectName(QStringLiteral("btnMore"));
    btnSMS = new QPushButton(QStringLiteral("&SMS"), this);
    btnSMS->setObjectName(QStringLiteral("btnSMS"));
    btnSMS->setToolTip(QStringLiteral("Envoyer tout de suite un rappel par SMS"));
    btnMail = new QPushButton(QStringLiteral("&E-mail"), this);
    btnMail->setObjectName(QStringLiteral("btnMail"));
    btnMail->setToolTip(QStringLiteral("Envoyer tout de suite un rappel par mail"));
    btnSMS->setEnabled(false);
    btnMail->setEnabled(false);
    cmdOk[0] = new QPushButton(QStringLiteral("&Valider"), this);
    cmdOk[1] = new QPushButton(QStringLiteral("Valider et &Imprimer"), this);
    for (int i = 0; i < 2; ++i)
        cmdOk[i]->setObjectName(QStringLiteral("cmdOk(%1)").arg(i));
    cmdOk[0]->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Annuler"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    for (QPushButton *b : {btnRecurrence, btnCustomProperties, btnMore, btnSMS, btnMail, cmdOk[1], cmdCancel, Command1, btnView})
        b->setAutoDefault(false);
    boutons->addWidget(btnRecurrence);
    boutons->addWidget(btnCustomProperties);
    boutons->addWidget(btnMore);
    boutons->addSpacing(12);
    boutons->addWidget(btnSMS);
    boutons->addWidget(btnMail);
    boutons->addStretch(1);
    boutons->addWidget(cmdOk[0]);
    boutons->addWidget(cmdOk[1]);
    boutons->addWidget(cmdCancel);
    principal->addLayout(boutons);

    lblStatus = new QLabel(this);
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    lblStatus->setFrameShape(QFrame::StyledPanel);
    lblStatus->setFrameShadow(QFrame::Sunken);
    lblStatus->setMinimumHeight(lblStatus->fontMetrics().height() + 6);
    principal->addWidget(lblStatus);

    // Every text of the dialog goes through the keyboard filter. An editable
    // combo box hands some events straight to its line edit, and others
    // arrive there first: both are watched.
    const QList<QWidget *> saisies = findChildren<QWidget *>();
    for (QWidget *w : saisies) {
        if (qobject_cast<QLineEdit *>(w) || qobject_cast<QComboBox *>(w) || qobject_cast<QPlainTextEdit *>(w))
            w->installEventFilter(this);
    }

    setTabOrder(txtBody[ChampRdv::Nom], txtBody[ChampRdv::Prenom]);
    setTabOrder(txtBody[ChampRdv::Prenom], txtBody[ChampRdv::DateNaissance]);
    setTabOrder(txtBody[ChampRdv::DateNaissance], txtBody[ChampRdv::Mel]);
    setTabOrder(txtBody[ChampRdv::Mel], txtBody[ChampRdv::Telephone]);

    connect(Command1, &QPushButton::clicked, this, &frmEditEvent::choisirPatient);
    connect(btnView, &QPushButton::clicked, this, &frmEditEvent::voirPatient);
    connect(SSCheck1, &QCheckBox::toggled, this, &frmEditEvent::sansPatient);
    connect(btnMore, &QPushButton::clicked, this, &frmEditEvent::basculerMarkup);
    connect(btnRecurrence, &QPushButton::clicked, this, &frmEditEvent::recurrence);
    connect(btnCustomProperties, &QPushButton::clicked, this, &frmEditEvent::proprietes);
    connect(btnSMS, &QPushButton::clicked, this, &frmEditEvent::envoyerSMS);
    connect(btnMail, &QPushButton::clicked, this, &frmEditEvent::envoyerMail);
    connect(cmdOk[0], &QPushButton::clicked, this, [this] { Valider(0); });
    connect(cmdOk[1], &QPushButton::clicked, this, [this] { Valider(1); });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(chkAllDayEvent, &QCheckBox::toggled, this, &frmEditEvent::appliquerJourEntier);
    connect(chkReminder, &QCheckBox::toggled, cmbReminder, &QWidget::setEnabled);
    connect(cmbLabel, &QComboBox::currentIndexChanged, this, &frmEditEvent::majCouleurLibelle);
    connect(btnProchainCreneau, &QPushButton::clicked, this, &frmEditEvent::prochainCreneau);
    connect(cmbStartDate, &QComboBox::editTextChanged, this, &frmEditEvent::majFerie);
    connect(cmbEndTime, &QComboBox::activated, this,
            [this](int index) { cmbEndTime->setEditText(HeureDeLibelleFin(cmbEndTime->itemText(index))); });
    connect(txtBody[ChampRdv::DateNaissance], &QLineEdit::textChanged, this, &frmEditEvent::majAge);
    connect(txtBody[ChampRdv::NumeroPatient], &QLineEdit::textChanged, this,
            [this](const QString &t) { btnView->setEnabled(!t.isEmpty()); });
    connect(txtBody[ChampRdv::Portable], &QLineEdit::textChanged, this, [this](const QString &t) {
        if (t.isEmpty())
            btnSMS->setEnabled(false);
    });
    connect(txtSubject, &QLineEdit::textChanged, this, [this](const QString &t) {
        txtSubject->setVisible(!t.isEmpty());
        lblSubject->setVisible(!t.isEmpty());
    });
    txtSubject->setVisible(false);
    lblSubject->setVisible(false);
    cmbReminder->setEnabled(false);
}

void frmEditEvent::remplirListes()
{
    if (m_provider) {
        for (const CalendarLabel &l : m_provider->LabelList())
            cmbLabel->addItem(l.name, l.id);
        for (const CalendarSchedule &s : m_provider->Schedules())
            cmbSchedule->addItem(s.Name, s.ScheduleID);
    }
    // With one schedule or none there is nothing to choose; the one there is
    // still goes into the record.
    cmbSchedule->setVisible(cmbSchedule->count() > 1);
    lblSchedule->setVisible(cmbSchedule->count() > 1);
    cmbShowTimeAs->addItem(QStringLiteral("En salle d'attente"));
    cmbShowTimeAs->addItem(QStringLiteral("Non Arrivé"));
    const AppState &etat = appState();
    RemplirCombosDuree(cmbReminder, false, etat.RappelsSMS || etat.RappelsMails);
    // The lead a reminder gets when the box is checked on a record that had
    // none: the one a new appointment proposes.
    cmbReminder->setEditText(dureeRappelProposee());
    cmbEndTime->view()->setMinimumWidth(200);
    majCouleurLibelle();
}

void frmEditEvent::NewEvent(const QDateTime &start, const QDateTime &end, bool allDay, int scheduleIndex)
{
    const AppState &etat = appState();
    m_bAddEvent = true;
    QDateTime debut = start;
    QDateTime fin = end.isValid() ? end : start;
    if (etat.DureeDefaut > 0)
        fin = debut.addSecs(qint64(etat.DureeDefaut) * 60);
    m_pEditedEvent = m_provider ? m_provider->CreateNewEvent(debut, fin) : CalendarEvent::create();
    m_pEditedEvent->setStartDateTime(debut);
    m_pEditedEvent->setEndDateTime(fin);
    m_pEditedEvent->setIsAllDayEvent(allDay);

    const RegleMatch &regle = ProposerPraticien(debut, [this] { return frmPraticiens::Choisir(this); });
    lblPraticien->setText(regle.Praticien);
    const int index = IndexLibelle(regle);
    if (index >= 0 && index < cmbLabel->count())
        cmbLabel->setCurrentIndex(index);

    SetStartEnd(debut, fin, allDay);

    chkAllDayEvent->setChecked(allDay);
    txtSubject->clear();
    cmbShowTimeAs->setCurrentIndex(allDay ? 0 : 1);
    // A selection that names no schedule books into the first one.
    if (cmbSchedule->count() > 0)
        cmbSchedule->setCurrentIndex(scheduleIndex >= 0 && scheduleIndex < cmbSchedule->count() ? scheduleIndex : 0);
    cmbReminder->setEnabled(chkReminder->isChecked());
    cmbReminder->setEditText(dureeRappelProposee());
    txtBody[ChampRdv::DatePrise]->setText(HorodatageRdv(Horloge::maintenant()));
    setWindowTitle(QStringLiteral("Nouveau Rendez-vous..."));
}

void frmEditEvent::ModifyEvent(const CalendarEventPtr &event)
{
    if (!event)
        return;
    m_bAddEvent = false;
    // The dialog works on a copy: the shared record changes only through the
    // store, on OK.
    m_pEditedEvent = event->CloneEvent();
    appState().RegleCourante = GetRegleForDate(m_pEditedEvent->StartDateTime());
    // Any change of an occurrence makes it an exception of its series.
    if (m_pEditedEvent->RecurrenceState() == CalendarEvent::Occurrence)
        m_pEditedEvent->MarkAsRecurrenceException();
    UpdateControlsFromEvent();
}

void frmEditEvent::SetStartEnd(const QDateTime &start, const QDateTime &end, bool allDay)
{
    if (const auto tenue = ReserverPlage(start)) {
        Prompt::informer(QStringLiteral("Plage horaire réservée"), TextePlageReservee(*tenue), Prompt::Icone::Exclamation);
        m_bSlotReserved = true;
        return;
    }
    m_bSlotReserved = false;
    m_debutReserve = start;
    remplirDates(start, end, allDay);
}

void frmEditEvent::remplirDates(const QDateTime &start, const QDateTime &end, bool allDay)
{
    const DatesAffichees dates = AfficherDates(start, end, allDay);
    cmbStartTime->clear();
    cmbStartTime->addItems(ListeHeuresDebut());
    const QStringList jours = ListeDatesDebut(start.date());
    cmbStartDate->clear();
    cmbStartDate->addItems(jours);
    cmbEndDate->clear();
    cmbEndDate->addItems(jours);
    cmbStartDate->setEditText(dates.dateDebut);
    cmbStartTime->setEditText(dates.heureDebut);
    remplirHeuresFin();
    cmbEndDate->setEditText(dates.dateFin);
    cmbEndTime->setEditText(dates.heureFin);
    cmbStartTime->setVisible(!allDay);
    cmbEndTime->setVisible(!allDay);
}

void frmEditEvent::remplirHeuresFin()
{
    const QString texte = cmbEndTime->currentText();
    cmbEndTime->clear();
    cmbEndTime->addItems(ListeHeuresFin(cmbStartTime->currentText()));
    cmbEndTime->setEditText(texte);
}

void frmEditEvent::afficherChamps(const ChampsRdv &champs)
{
    for (int i = 0; i < ChampRdv::Nombre; ++i)
        txtBody[i]->setText(champs[i]);
}

void frmEditEvent::UpdateControlsFromEvent()
{
    if (!m_pEditedEvent)
        return;
    const CalendarEvent &e = *m_pEditedEvent;
    lblModif->setText(TexteModification(e));

    SaisieRdv saisie = lireControles();
    const LectureSaisie lecture = LireEvenementDansSaisie(e, saisie);
    afficherChamps(saisie.champs);
    txtSubject->setText(saisie.sujet);
    txtLocation[0]->setText(saisie.motif);
    txtLocation[1]->setText(saisie.adressePar);
    if (lecture.sansPatient)
        SSCheck1->setChecked(true);

    chkAllDayEvent->setChecked(saisie.jourEntier);
    selectionnerDonnee(cmbLabel, saisie.labelId);
    if (saisie.scheduleId)
        selectionnerDonnee(cmbSchedule, *saisie.scheduleId);
    if (saisie.presence >= 0 && saisie.presence < cmbShowTimeAs->count())
        cmbShowTimeAs->setCurrentIndex(saisie.presence);
    chkPrivate->setChecked(saisie.prive);
    chkMeeting->setChecked(saisie.dejaVu);

    SetStartEnd(e.StartDateTime(), e.EndDateTime(), e.IsAllDayEvent());
    if (!e.Subject().isEmpty())
        setWindowTitle(QStringLiteral("Rendez-vous : ") + e.Subject());
    appliquerVisibiliteDates();

    if (e.IsReminder()) {
        chkReminder->setChecked(true);
        cmbReminder->setEditText(saisie.dureeRappel);
    }
    txtMarkupText->setPlainText(saisie.markup);
    lblPraticien->setText(PraticienDuLibelle(cmbLabel->currentText()));

    qint32 numero = static_cast<qint32>(LireEntier(txtBody[ChampRdv::NumeroPatient]->text()));
    if (numero > 0)
        ChargerParNumero(numero);
    else
        ViderPatientCourant();

    const bool sms = appState().RappelsSMS;
    for (int champ : {int(ChampRdv::Telephone), int(ChampRdv::Portable), int(ChampRdv::Mel)})
        afficherValidite(champ, sms);
}

void frmEditEvent::selectionnerDonnee(QComboBox *liste, int valeur)
{
    const int i = liste->findData(valeur);
    if (i >= 0)
        liste->setCurrentIndex(i);
}

void frmEditEvent::appliquerVisibiliteDates()
{
    // A master's dates are those of its series.
    const bool visibles = !m_pEditedEvent || m_pEditedEvent->RecurrenceState() != CalendarEvent::Master;
    for (QWidget *w : std::initializer_list<QWidget *>{lblStartDate, lblEndDate, cmbStartDate, cmbStartTime, cmbEndDate,
                                                        cmbEndTime, chkAllDayEvent, btnProchainCreneau})
        w->setVisible(visibles);
    if (visibles)
        appliquerJourEntier();
}

void frmEditEvent::appliquerJourEntier()
{
    const bool jourEntier = chkAllDayEvent->isChecked();
    cmbStartTime->setVisible(!jourEntier);
    cmbEndTime->setVisible(!jourEntier);
    btnProchainCreneau->setEnabled(!jourEntier);
}

DatesAffichees frmEditEvent::datesAffichees() const
{
    return {cmbStartDate->currentText(), cmbStartTime->currentText(), cmbEndDate->currentText(), cmbEndTime->currentText()};
}

SaisieRdv frmEditEvent::lireControles() const
{
    SaisieRdv s;
    for (int i = 0; i < ChampRdv::Nombre; ++i)
        s.champs[i] = txtBody[i]->text();
    s.motif = txtLocation[0]->text();
    s.adressePar = txtLocation[1]->text();
    s.sujet = txtSubject->text();
    s.dates = datesAffichees();
    s.jourEntier = chkAllDayEvent->isChecked();
    s.labelId = cmbLabel->currentData().toInt();
    s.presence = cmbShowTimeAs->currentIndex();
    if (cmbSchedule->currentIndex() >= 0)
        s.scheduleId = cmbSchedule->currentData().toInt();
    s.prive = chkPrivate->isChecked();
    s.dejaVu = chkMeeting->isChecked();
    s.rappel = chkReminder->isChecked();
    s.dureeRappel = cmbReminder->currentText();
    s.markup = txtMarkupText->toPlainText();
    return s;
}

bool frmEditEvent::ValidateDates()
{
    switch (::ValidateDates(datesAffichees())) {
    case ControleDate::Aucun:
        return true;
    case ControleDate::DateDebut:
        cmbStartDate->setFocus();
        break;
    case ControleDate::HeureDebut:
        cmbStartTime->setFocus();
        break;
    case ControleDate::DateFin:
        cmbEndDate->setFocus();
        break;
    case ControleDate::HeureFin:
        cmbEndTime->setFocus();
        break;
    }
    return false;
}

void frmEditEvent::Valider(int index)
{
    if (!m_pEditedEvent)
        return;
    if (!ValidateDates()) {
        Prompt::bip();
        return;
    }
    const SaisieRdv s = lireControles();
    if (const int champ = ChampManquant(s.champs); champ >= 0) {
        txtBody[champ]->setFocus();
        Prompt::bip();
        return;
    }
    // The record as it was, should the store refuse it: keys given by a
    // write that was rolled back must not stay on it for the next try.
    const CalendarEventPtr avant = m_pEditedEvent->CloneEvent();
    LireSaisieDansEvenement(s, *m_pEditedEvent);
    if (m_provider) {
        const bool ok = m_bAddEvent ? m_provider->AddEvent(m_pEditedEvent) : m_provider->ChangeEvent(m_pEditedEvent);
        if (!ok) {
            // Nothing typed is lost: the dialog stays open as it was.
            m_pEditedEvent = avant;
            Prompt::informer(TitreEchecEnregistrement(),
                             TexteEchecEnregistrement(m_provider->store() ? m_provider->store()->LastErrorText() : QString()),
                             Prompt::Icone::Critique);
            return;
        }
    }
    emit Populate();
    if (index == 1) {
        // The appointment is stored already: a failed ticket loses nothing.
        QString erreur;
        if (!ImprimerTicket(m_pEditedEvent, lblPraticien->text(), &erreur) && !erreur.isEmpty())
            Prompt::informer(QStringLiteral("Erreur..."), erreur, Prompt::Icone::Exclamation);
    }
    accept();
}

void frmEditEvent::setStatus(const QString &texte)
{
    lblStatus->setText(texte);
    QCoreApplication::processEvents();
}

void frmEditEvent::choisirPatient()
{
    if (BoucleRecherchePatientEditeur(this))
        prendrePatientCourant();
}

void frmEditEvent::prendrePatientCourant()
{
    const AppState &etat = appState();
    const PatientCourantRecord &p = etat.PatientCourant;
    SaisieRdv s = lireControles();
    ChampsDuPatient(p, s.champs);
    // A patient is chosen: the appointment concerns one.
    SSCheck1->setChecked(false);
    afficherChamps(s.champs);
    for (int champ : {int(ChampRdv::Telephone), int(ChampRdv::Portable), int(ChampRdv::Mel)})
        couleurNormale(champ);
    afficherValidite(ChampRdv::Telephone, etat.RappelsSMS);
    afficherValidite(ChampRdv::Portable, etat.RappelsSMS);
    afficherValidite(ChampRdv::Mel, etat.RappelsMails);
    chkMeeting->setChecked(PatientDejaVu(p.Base));
    txtLocation[0]->setFocus();
}

void frmEditEvent::sansPatient(bool coche)
{
    lblBody[ChampRdv::Nom]->setText(coche ? QStringLiteral("Libellé :") : QStringLiteral("Nom :"));
    lblBody[ChampRdv::Prenom]->setText(coche ? QStringLiteral("Complément :") : QStringLiteral("Prénom :"));
    txtBody[ChampRdv::DateNaissance]->setVisible(!coche);
    lblBody[ChampRdv::DateNaissance]->setVisible(!coche);
    lblAge->setVisible(!coche);
    QLineEdit *naissance = txtBody[ChampRdv::DateNaissance];
    naissance->setText(ChampNaissanceSansPatient(naissance->text(), coche));
}

void frmEditEvent::couleurNormale(int champ)
{
    txtBody[champ]->setPalette(palette());
}

void frmEditEvent::afficherValidite(int champ, bool gardeRappel)
{
    const AppState &etat = appState();
    const bool autre = champ == ChampRdv::Portable ? btnMail->isEnabled() : btnSMS->isEnabled();
    const AffichageValidite a =
        ValiditeChamp(champ, txtBody[champ]->text(), etat.RappelsSMS, etat.RappelsMails, gardeRappel, autre);
    if (a.rouge) {
        QPalette p = palette();
        p.setColor(QPalette::Text, Qt::red);
        txtBody[champ]->setPalette(p);
    } else {
        couleurNormale(champ);
    }
    if (a.bouton)
        (champ == ChampRdv::Mel ? btnMail : btnSMS)->setEnabled(*a.bouton);
    if (a.rappelActif)
        chkReminder->setEnabled(*a.rappelActif);
}

void frmEditEvent::verifierEnSortie(int champ)
{
    afficherValidite(champ, appState().RappelsSMS);
    const bool valide = champ == ChampRdv::Mel ? MelValide(txtBody[champ]->text()) : TelephoneValide(txtBody[champ]->text());
    if (valide)
        return;
    Prompt::bip();
    // The field takes the focus back. While it does, the field that loses
    // it is not checked in turn: two invalid fields would otherwise hand the
    // focus to each other for ever.
    m_champRetour = champ;
    QLineEdit *retour = txtBody[champ];
    QTimer::singleShot(0, retour, [this, retour] {
        if (isVisible())
            retour->setFocus(Qt::OtherFocusReason);
        m_champRetour = -1;
    });
}

bool frmEditEvent::sortieAVerifier(QObject *champ, const QFocusEvent *e) const
{
    if (!isVisible() || !sortieVersControle(e) || m_champRetour >= 0)
        return false;
    // Leaving the dialog by "Annuler" is always possible.
    QWidget *suivant = QApplication::focusWidget();
    return suivant != cmdCancel && champ != suivant;
}

bool frmEditEvent::eventFilter(QObject *objet, QEvent *evenement)
{
    if (evenement->type() == QEvent::KeyPress) {
        auto *touche = static_cast<QKeyEvent *>(evenement);
        const QString texte = touche->text();
        const bool telephone = objet == txtBody[ChampRdv::Telephone] || objet == txtBody[ChampRdv::Portable];
        if (telephone) {
            couleurNormale(objet == txtBody[ChampRdv::Telephone] ? ChampRdv::Telephone : ChampRdv::Portable);
            if (texte.size() == 1 && texte[0].isPrint() && !CaractereTelephone(texte[0])) {
                Prompt::bip();
                return true;
            }
        }
        if (texte.size() == 1 && FiltrerCaractere(texte[0]) != texte[0]) {
            QKeyEvent remplacee(QEvent::KeyPress, Qt::Key_Underscore, touche->modifiers(), QStringLiteral("_"));
            QApplication::sendEvent(objet, &remplacee);
            return true;
        }
    } else if (evenement->type() == QEvent::FocusOut) {
        for (int champ : {int(ChampRdv::Telephone), int(ChampRdv::Portable), int(ChampRdv::Mel)}) {
            if (objet == txtBody[champ] && sortieAVerifier(objet, static_cast<QFocusEvent *>(evenement)))
                verifierEnSortie(champ);
        }
        if (objet == cmbStartTime || objet == cmbStartTime->lineEdit())
            remplirHeuresFin();
    }
    return QDialog::eventFilter(objet, evenement);
}

void frmEditEvent::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    txtBody[ChampRdv::Nom]->setFocus();
    if (m_bSlotReserved)
        QTimer::singleShot(0, this, &QDialog::reject);
}

void frmEditEvent::done(int resultat)
{
    libererReservations();
    QDialog::done(resultat);
}

void frmEditEvent::libererReservations()
{
    // Whatever the way out, this station's slots are free again.
    if (m_reservationsLiberees)
        return;
    m_reservationsLiberees = true;
    LibererReservations();
}

void frmEditEvent::voirPatient()
{
    qint32 numero = static_cast<qint32>(LireEntier(txtBody[ChampRdv::NumeroPatient]->text()));
    if (numero > 0 && appState().PatientCourant.Numero != numero)
        ChargerParNumero(numero);
    // The card shows this patient, whatever the last search ended on (a
    // "new patient" outcome left behind would open an empty card).
    RetourRecherche = 0;
    if (!OuvrirFichePatient(FichePatient::Agenda, this))
        return;
    // The card was saved: the appointment takes the patient as he now is
    // (a telephone changed on the card goes out with the reminders).
    if (appState().PatientCourant.Numero > 0)
        prendrePatientCourant();
}

void frmEditEvent::basculerMarkup()
{
    const bool montrer = !frmMarkup->isVisible();
    frmMarkup->setVisible(montrer);
    btnMore->setText(montrer ? QStringLiteral("<< Moins") : QStringLiteral("Plus >>"));
    if (montrer)
        txtMarkupText->setFocus();
    adjustSize();
}

void frmEditEvent::recurrence()
{
    if (!m_pEditedEvent)
        return;
    const int etatAvant = m_pEditedEvent->RecurrenceState();
    CalendarEventPtr copie = m_pEditedEvent->CloneEvent();
    const int resultat = frmEditRecurrence::Editer(this, copie, m_debutSelection);
    if (copie)
        m_pEditedEvent = copie;
    if (resultat != frmEditRecurrence::Annule || m_pEditedEvent->RecurrenceState() != etatAvant) {
        UpdateControlsFromEvent();
        // The slot check ran again and met this station's own reservation:
        // the dialog closes as it does for a slot held elsewhere.
        if (m_bSlotReserved && isVisible())
            QTimer::singleShot(0, this, &QDialog::reject);
    }
}

void frmEditEvent::proprietes()
{
    if (!m_pEditedEvent)
        return;
    if (EditerProprietesPersonnalisees(m_pEditedEvent, this))
        txtMarkupText->setPlainText(m_pEditedEvent->CustomProperties().GetProperty(EntreeMarkup).toString());
}

void frmEditEvent::prochainCreneau()
{
    // The label names the practitioner (its first eight entries are those
    // of practitioner 1, the next eight of practitioner 2) and the type.
    const int libelle = cmbLabel->currentData().toInt();
    const AppState &etat = appState();
    DemandeCreneau demande;
    demande.praticien = static_cast<qint16>(libelle >= 0 && libelle < 8 ? 1 : libelle >= 8 && libelle < 16 ? 2 : 0);
    demande.typeRV = static_cast<qint16>(libelle % 8);
    const QDateTime debut = debutAffiche();
    const QDateTime fin = DateFromString(cmbEndDate->currentText(), cmbEndTime->currentText());
    const qint64 longueur = debut.isValid() && fin.isValid() ? debut.secsTo(fin) / 60 : 0;
    demande.dureeMinutes = etat.DureeDefaut > 0 ? etat.DureeDefaut : longueur > 0 ? int(longueur) : 15;
    demande.pauseDebut = QTime::fromString(etat.PauseDebut, QStringLiteral("HH:mm:ss"));
    demande.pauseFin = QTime::fromString(etat.PauseFin, QStringLiteral("HH:mm:ss"));
    // From the day shown, never in the past.
    const QDate jour = DateFromString(cmbStartDate->currentText(), QStringLiteral("00:00")).date();
    demande.depuis = std::max(QDateTime(jour.isValid() ? jour : Horloge::maintenant().date(), QTime(0, 0)),
                              Horloge::maintenant());

    const auto config = ConfigOuverte();
    if (!config || !m_provider) {
        Prompt::informer(QStringLiteral("Prochain créneau libre"),
                         QStringLiteral("Le planning ou l'agenda n'est pas ouvert : aucun créneau ne peut être cherché."),
                         Prompt::Icone::Exclamation);
        return;
    }
    const CalendarEvent *deplace = m_bAddEvent ? nullptr : m_pEditedEvent.get();
    setStatus(QStringLiteral("Recherche du prochain créneau libre..."));
    ResultatCreneau r = ProchainCreneauLibre(*config, *m_provider, demande, deplace);
    // Pressed again on the slot it gave, it goes on to the next one.
    if (r.trouve() && r.debut == debut) {
        demande.depuis = debut.addSecs(60);
        r = ProchainCreneauLibre(*config, *m_provider, demande, deplace);
    }
    if (!r.trouve()) {
        setStatus(QString());
        Prompt::informer(QStringLiteral("Prochain créneau libre"), r.message, Prompt::Icone::Exclamation);
        return;
    }
    // The new slot is held before the old one is let go (the slot this
    // dialog holds already needs no second row).
    if (const auto tenue = r.debut == m_debutReserve ? std::nullopt : ReserverPlage(r.debut)) {
        setStatus(QString());
        Prompt::informer(QStringLiteral("Plage horaire réservée"), TextePlageReservee(*tenue), Prompt::Icone::Exclamation);
        return;
    }
    if (m_debutReserve.isValid() && m_debutReserve != r.debut)
        LibererPlage(m_debutReserve);
    m_debutReserve = r.debut;
    remplirDates(r.debut, r.fin, false);
    setStatus(QStringLiteral("Rendez-vous placé le %1 (Annuler pour ne rien changer).")
                  .arg(QLocale(QLocale::French).toString(r.debut, QStringLiteral("dddd dd MMMM yyyy à HH:mm"))));
}

void frmEditEvent::majFerie()
{
    const QString avertissement = AvertissementJourFerie(LireDateTexte(cmbStartDate->currentText()));
    lblFerie->setText(avertissement.isEmpty() ? QString() : QStringLiteral("Attention : ") + avertissement);
    lblFerie->setVisible(!avertissement.isEmpty());
}

QDateTime frmEditEvent::debutAffiche() const
{
    const QDateTime debut = DateFromString(cmbStartDate->currentText(), cmbStartTime->currentText());
    if (debut.isValid() || !m_pEditedEvent)
        return debut;
    return m_pEditedEvent->StartDateTime();
}

void frmEditEvent::envoyerSMS()
{
    if (!appState().RappelsSMS) {
        setStatus(QStringLiteral("Envoi de SMS non configuré"));
        Prompt::bip();
        return;
    }
    setStatus(QStringLiteral("Envoi du SMS...."));
    const QString sms = QStringLiteral("SMS");
    const QString texte = BuildSMSText(
        LireConfig(sms, QStringLiteral("First"),
                   QStringLiteral("Le secrétariat du Cabinet médical vous rappelle votre rendez-vous avec le")),
        lblPraticien->text(), TexteDateRendezVous(debutAffiche()), LireConfig(sms, QStringLiteral("Last"), QString()));
    // The port is opened for this one message and closed again.
    GsmModem modem(GsmModem::Copie::Envoi);
    const QString statut = EnvoyerSMSSeul(modem, PortModem(), CleanPhoneNumber(txtBody[ChampRdv::Portable]->text()), texte);
    GsmModem::restaurerPointeur();
    setStatus(statut);
}

void frmEditEvent::envoyerMail()
{
    if (!appState().RappelsMails) {
        setStatus(QStringLiteral("Envoi de mails non configuré"));
        Prompt::bip();
        return;
    }
    const QString mails = QStringLiteral("Mails");
    auto lire = [&mails](const char *item) { return LireConfig(mails, QString::fromLatin1(item), QString()); };
    const QString erreur =
        SendMailReminder(lire("From"), txtBody[ChampRdv::Mel]->text(), lire("SMTP"), lire("Subject"), lire("First"), lire("Last"),
                         TexteDateRendezVous(debutAffiche()), lblPraticien->text());
    setStatus(erreur.isEmpty() ? QStringLiteral("Envoi du mail : OK") : QStringLiteral("Erreur d'envoi du mail ..."));
}

void frmEditEvent::majCouleurLibelle()
{
    quint32 couleur = 0xFFFFFF;
    if (m_provider) {
        const int id = cmbLabel->currentData().toInt();
        for (const CalendarLabel &l : m_provider->LabelList()) {
            if (l.id == id)
                couleur = l.color;
        }
    }
    QPalette p = ctrlColor->palette();
    p.setColor(QPalette::Window, CouleurDepuisBGR(couleur));
    ctrlColor->setPalette(p);
}

void frmEditEvent::majAge()
{
    QString texte = txtBody[ChampRdv::DateNaissance]->text();
    const QString age = TexteAge(texte);
    lblAge->setText(age.isEmpty() ? QString() : QStringLiteral("(") + age + u')');
}
