#include "shell/window/frmadvancedoptions.h"

#include "appointments/impressionticket.h"
#include "calendar/view/calendarview.h"
#include "patients/dialoguesouverts.h"
#include "shell/appstate.h"
#include "shell/base/modal.h"
#include "shell/base/profilini.h"
#include "shell/base/prompt.h"
#include "shell/optionsavancees.h"
#include "shell/window/frmmain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

template <typename T>
T *nomme(T *w, const char *nom)
{
    w->setObjectName(QLatin1String(nom));
    return w;
}

QCheckBox *case_(QWidget *parent, const char *nom, const QString &texte)
{
    return nomme(new QCheckBox(texte, parent), nom);
}

QLabel *etiquette(QWidget *parent, const QString &texte, QWidget *pour = nullptr)
{
    auto *l = new QLabel(texte, parent);
    if (pour)
        l->setBuddy(pour);
    return l;
}

} // namespace

std::function<QStringList()> frmAdvancedOptions::imprimantes = [] { return QPrinterInfo::availablePrinterNames(); };

frmAdvancedOptions::frmAdvancedOptions(frmMain &principal) : QDialog(&principal), m_principal(principal)
{
    setObjectName(QStringLiteral("frmAdvancedOptions"));
    setWindowTitle(QStringLiteral("Options Avancées"));
    CompterDialogueOuvert(this);
    construire();
    charger();
    // After the load, so that the loaded values do not run the click rules.
    connect(chkEnableReminders, &QCheckBox::toggled, this, &frmAdvancedOptions::majCanaux);
    for (QRadioButton *o : {optTimeMarkNone, optTimeMarkForToday, optTimeMarkAlways})
        connect(o, &QRadioButton::toggled, this, &frmAdvancedOptions::majImpressionMarque);
    connect(cmdOK, &QPushButton::clicked, this, &frmAdvancedOptions::valider);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmAdvancedOptions::construire()
{
    auto *edition = new QGroupBox(QStringLiteral("Edition dans l'agenda"), this);
    auto *colEdition = new QVBoxLayout(edition);
    chkEditSubject_ByMouseClick =
        case_(edition, "chkEditSubject_ByMouseClick", QStringLiteral("Enable in-place edit event subject - by Mouse Click"));
    chkEditSubject_AfterResize =
        case_(edition, "chkEditSubject_AfterResize", QStringLiteral("Enable in-place edit event subject - After Event Resize"));
    chkEditSubject_ByF2 = case_(edition, "chkEditSubject_ByF2", QStringLiteral("Enable in-place edit event subject - by F2"));
    chkEditSubject_ByTab = case_(edition, "chkEditSubject_ByTab", QStringLiteral("Enable in-place edit event subject - by TAB"));
    chkInplaceCreateEvent = case_(edition, "chkInplaceCreateEvent", QStringLiteral("Enable in-place Create Event"));
    chkDisableDragging_ForRecurrenceEvents = case_(edition, "chkDisableDragging_ForRecurrenceEvents",
                                                   QStringLiteral("Disable Dragging operations for Recurrence events "));
    chkDisableInPlaceCreateEvents_ForSaSu = case_(edition, "chkDisableInPlaceCreateEvents_ForSaSu",
                                                  QStringLiteral("Disable in-place event creation for Sundays and Saturdays"));
    chkUseBuiltInDialogs = case_(edition, "chkUseBuiltInDialogs", QStringLiteral("Use built-in calendar dialogs"));
    for (QCheckBox *c : {chkEditSubject_ByMouseClick, chkEditSubject_AfterResize, chkEditSubject_ByF2, chkEditSubject_ByTab,
                         chkInplaceCreateEvent, chkDisableDragging_ForRecurrenceEvents, chkDisableInPlaceCreateEvents_ForSaSu,
                         chkUseBuiltInDialogs})
        colEdition->addWidget(c);

    auto *defilement = new QGroupBox(QStringLiteral("Défilement"), this);
    auto *grille = new QGridLayout(defilement);
    const QString vertical = QStringLiteral("Activer le scrolling vertical");
    chkScrollingV_DayView = case_(defilement, "chkScrollingV_DayView", vertical);
    chkScrollingH_DayView = case_(defilement, "chkScrollingH_DayView", QStringLiteral("Activer le scrolling horizontal"));
    chkScrollingV_WeekView = case_(defilement, "chkScrollingV_WeekView", vertical);
    chkScrollingV_MonthView = case_(defilement, "chkScrollingV_MonthView", vertical);
    grille->addWidget(etiquette(defilement, QStringLiteral("Vue journalière :")), 0, 0);
    grille->addWidget(chkScrollingV_DayView, 0, 1);
    grille->addWidget(chkScrollingH_DayView, 1, 1);
    grille->addWidget(etiquette(defilement, QStringLiteral("Vue hebdomadaire :")), 2, 0);
    grille->addWidget(chkScrollingV_WeekView, 2, 1);
    grille->addWidget(etiquette(defilement, QStringLiteral("Vue mensuelle :")), 3, 0);
    grille->addWidget(chkScrollingV_MonthView, 3, 1);
    grille->setColumnStretch(1, 1);

    auto *affichage = new QGroupBox(QStringLiteral("Affichage"), this);
    auto *colAffichage = new QVBoxLayout(affichage);
    chkShowMinutes =
        case_(affichage, "chkShowMinutes", QStringLiteral("Afficher les minutes sur l'échelle de temps (vue journalière)"));
    chkUseOutlookFontGlyphs = case_(affichage, "chkUseOutlookFontGlyphs", QStringLiteral("Utliliser les polices type \"MS Outlook\" "));
    chkEnablePrevNextEventButtons =
        case_(affichage, "chkEnablePrevNextEventButtons", QStringLiteral("Enable Prev/Next Appointment buttons"));
    for (QCheckBox *c : {chkShowMinutes, chkUseOutlookFontGlyphs, chkEnablePrevNextEventButtons})
        colAffichage->addWidget(c);

    auto *marque = new QGroupBox(QStringLiteral("Affichage de l'heure courante (vue journalière et hebdomadaire)"), this);
    auto *ligneMarque = new QHBoxLayout(marque);
    optTimeMarkNone = nomme(new QRadioButton(QStringLiteral("Jamais"), marque), "optTimeMarkNone");
    optTimeMarkForToday = nomme(new QRadioButton(QStringLiteral("Pour aujourd'hui"), marque), "optTimeMarkForToday");
    optTimeMarkAlways = nomme(new QRadioButton(QStringLiteral("Toujours"), marque), "optTimeMarkAlways");
    chkTimeMarkPrint = case_(marque, "chkTimeMarkPrint", QStringLiteral("A l'impression"));
    for (QWidget *w : std::initializer_list<QWidget *>{optTimeMarkNone, optTimeMarkForToday, optTimeMarkAlways, chkTimeMarkPrint})
        ligneMarque->addWidget(w);
    ligneMarque->addStretch(1);

    auto *rappels = new QGroupBox(QStringLiteral("Rappels"), this);
    auto *ligneRappels = new QHBoxLayout(rappels);
    chkEnableReminders = case_(rappels, "chkEnableReminders", QStringLiteral("Autoriser les rappels"));
    Check1 = case_(rappels, "Check1", QStringLiteral("Rappels Mails"));
    Check2 = case_(rappels, "Check2", QStringLiteral("Rappels SMS"));
    for (QCheckBox *c : {chkEnableReminders, Check1, Check2})
        ligneRappels->addWidget(c);
    ligneRappels->addStretch(1);

    auto *ticket = new QGroupBox(QStringLiteral("Imprimante des tickets"), this);
    auto *grilleTicket = new QGridLayout(ticket);
    Nom_Imprimante = nomme(new QComboBox(ticket), "Nom_Imprimante");
    Nom_Imprimante->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    Nom_Imprimante->setMinimumContentsLength(24);
    Command6 = nomme(new QPushButton(QStringLiteral("Propri&étés..."), ticket), "Command6");
    Command6->setAutoDefault(false);
    Fmt_Imp = nomme(new QComboBox(ticket), "Fmt_Imp");
    Fmt_Imp->addItems({FormatA4, FormatRouleau80, FormatRouleau58});
    txtMarginL = nomme(new QLineEdit(ticket), "txtMarginL");
    txtMarginR = nomme(new QLineEdit(ticket), "txtMarginR");
    for (QLineEdit *t : {txtMarginL, txtMarginR})
        t->setMaximumWidth(60);
    Text1 = nomme(new QLineEdit(ticket), "Text1");
    grilleTicket->addWidget(etiquette(ticket, QStringLiteral("Nom :"), Nom_Imprimante), 0, 0);
    grilleTicket->addWidget(Nom_Imprimante, 0, 1, 1, 3);
    grilleTicket->addWidget(Command6, 0, 4);
    grilleTicket->addWidget(etiquette(ticket, QStringLiteral("Format Papier :"), Fmt_Imp), 1, 0);
    grilleTicket->addWidget(Fmt_Imp, 1, 1, 1, 2);
    auto *marges = new QHBoxLayout;
    marges->addWidget(etiquette(ticket, QStringLiteral("Marge :    Gauche"), txtMarginL));
    marges->addWidget(txtMarginL);
    marges->addSpacing(12);
    marges->addWidget(etiquette(ticket, QStringLiteral("Droite"), txtMarginR));
    marges->addWidget(txtMarginR);
    marges->addStretch(1);
    grilleTicket->addLayout(marges, 2, 0, 1, 5);
    grilleTicket->addWidget(etiquette(ticket, QStringLiteral("Entête :"), Text1), 3, 0);
    grilleTicket->addWidget(Text1, 3, 1, 1, 4);
    grilleTicket->setColumnStretch(3, 1);

    cmdOK = nomme(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = nomme(new QPushButton(QStringLiteral("Annuler"), this), "cmdCancel");
    cmdCancel->setAutoDefault(false);

    auto *gauche = new QVBoxLayout;
    gauche->addWidget(edition);
    gauche->addWidget(defilement);
    gauche->addStretch(1);
    auto *droite = new QVBoxLayout;
    droite->addWidget(affichage);
    droite->addWidget(marque);
    droite->addWidget(rappels);
    droite->addWidget(ticket);
    droite->addStretch(1);
    auto *colonnes = new QHBoxLayout;
    colonnes->addLayout(gauche);
    colonnes->addLayout(droite, 1);
    auto *boutons = new QHBoxLayout;
    boutons->addStretch(1);
    boutons->addWidget(cmdOK);
    boutons->addWidget(cmdCancel);
    auto *tout = new QVBoxLayout(this);
    tout->addLayout(colonnes);
    tout->addLayout(boutons);
}

void frmAdvancedOptions::charger()
{
    const CalendarOptions &o = m_principal.CalendarControl->options();
    chkEditSubject_ByMouseClick->setChecked(o.editSubjectByMouseClick);
    chkEditSubject_AfterResize->setChecked(o.editSubjectAfterResize);
    chkEditSubject_ByF2->setChecked(o.editSubjectByF2);
    chkEditSubject_ByTab->setChecked(o.editSubjectByTab);
    chkInplaceCreateEvent->setChecked(o.inPlaceCreateEvent);
    chkDisableDragging_ForRecurrenceEvents->setChecked(m_principal.disableDraggingRecurrenceEvents());
    chkDisableInPlaceCreateEvents_ForSaSu->setChecked(m_principal.disableInPlaceCreateSaSu());
    chkUseBuiltInDialogs->setChecked(m_principal.useBuiltInDialogs());
    chkScrollingV_DayView->setChecked(m_principal.scrollingVDayView());
    chkScrollingH_DayView->setChecked(m_principal.scrollingHDayView());
    chkScrollingV_WeekView->setChecked(m_principal.scrollingVWeekView());
    chkScrollingV_MonthView->setChecked(m_principal.scrollingVMonthView());
    chkShowMinutes->setChecked(o.showMinutes);
    chkUseOutlookFontGlyphs->setChecked(o.useOutlookFontGlyphs);
    chkEnablePrevNextEventButtons->setChecked(o.enablePrevNextEventButtons);
    switch (ChoixMarqueHeure(o.timeMarkMode)) {
    case MarqueHeure::PourAujourdhui:
        optTimeMarkForToday->setChecked(true);
        break;
    case MarqueHeure::Toujours:
        optTimeMarkAlways->setChecked(true);
        break;
    default:
        optTimeMarkNone->setChecked(true);
        break;
    }
    chkTimeMarkPrint->setChecked(o.timeMarkMode & MarqueHeureImprimee);
    majImpressionMarque();

    // A printer that has left the system leaves no selection.
    const ReglagesTicket ticket = LireReglagesTicket();
    Nom_Imprimante->addItems(imprimantes());
    Nom_Imprimante->setCurrentIndex(Nom_Imprimante->findText(ticket.imprimante, Qt::MatchFixedString | Qt::MatchCaseSensitive));
    Fmt_Imp->setCurrentIndex(Fmt_Imp->findText(ticket.format, Qt::MatchFixedString | Qt::MatchCaseSensitive));
    Text1->setText(ticket.entete);
    txtMarginL->setText(ticket.margeGauche);
    txtMarginR->setText(ticket.margeDroite);

    chkEnableReminders->setChecked(m_principal.rappelsActifs());
    if (chkEnableReminders->isChecked()) {
        const QString agenda = appState().AgendaName;
        Check1->setChecked(LireAgendaIni(agenda, QStringLiteral("MAILS"), QStringLiteral("Non")) == QStringLiteral("Oui"));
        Check2->setChecked(LireAgendaIni(agenda, QStringLiteral("SMS"), QStringLiteral("Non")) == QStringLiteral("Oui"));
    }
    majCanaux();
}

void frmAdvancedOptions::majCanaux()
{
    const bool autorises = chkEnableReminders->isChecked();
    for (QCheckBox *c : {Check1, Check2}) {
        if (!autorises)
            c->setChecked(false);
        c->setEnabled(autorises);
    }
}

void frmAdvancedOptions::majImpressionMarque()
{
    chkTimeMarkPrint->setEnabled(!optTimeMarkNone->isChecked());
}

void frmAdvancedOptions::valider()
{
    // The keys first: when Agenda.ini refuses them, nothing changes and the
    // dialog stays open with what the user chose.
    ClesOptionsAvancees cles;
    cles.rappels = chkEnableReminders->isChecked();
    cles.mails = Check1->isChecked();
    cles.sms = Check2->isChecked();
    cles.imprimante = Nom_Imprimante->currentText();
    cles.format = Fmt_Imp->currentText();
    cles.entete = Text1->text();
    cles.margeGauche = txtMarginL->text();
    cles.margeDroite = txtMarginR->text();
    QString erreur;
    if (!EcrireOptionsAvancees(CheminAgendaIni(), appState().AgendaName, cles, &erreur)) {
        Prompt::informer(windowTitle(), erreur + QStringLiteral("\nVos choix sont conservés dans la fenêtre."),
                         Prompt::Icone::Exclamation);
        return;
    }

    CalendarView &calendrier = *m_principal.CalendarControl;
    CalendarOptions o = calendrier.options();
    // In-place editing is by F2 only, whatever the boxes say.
    o.editSubjectByF2 = true;
    o.editSubjectByMouseClick = false;
    o.editSubjectByTab = false;
    o.editSubjectAfterResize = false;
    o.inPlaceCreateEvent = false;
    o.useOutlookFontGlyphs = chkUseOutlookFontGlyphs->isChecked();
    o.showMinutes = chkShowMinutes->isChecked();
    o.enablePrevNextEventButtons = chkEnablePrevNextEventButtons->isChecked();
    const MarqueHeure choix = optTimeMarkAlways->isChecked()     ? MarqueHeure::Toujours
                              : optTimeMarkForToday->isChecked() ? MarqueHeure::PourAujourdhui
                                                                 : MarqueHeure::Jamais;
    o.timeMarkMode = NumeroMarqueHeure(choix, chkTimeMarkPrint->isChecked());
    calendrier.setOptions(o);

    // The scrolling setters hand the switches to the views.
    m_principal.setDisableDraggingRecurrenceEvents(chkDisableDragging_ForRecurrenceEvents->isChecked());
    m_principal.setDisableInPlaceCreateSaSu(chkDisableInPlaceCreateEvents_ForSaSu->isChecked());
    m_principal.setScrollingVDayView(chkScrollingV_DayView->isChecked());
    m_principal.setScrollingHDayView(chkScrollingH_DayView->isChecked());
    m_principal.setScrollingVWeekView(chkScrollingV_WeekView->isChecked());
    m_principal.setScrollingVMonthView(chkScrollingV_MonthView->isChecked());

    AppState &etat = appState();
    if (etat.MoteurRappels)
        etat.MoteurRappels->setEnabled(chkEnableReminders->isChecked());
    // Our calendar has no dialogs of its own: the program's windows serve
    // either way, and the switch is only kept.
    if (chkUseBuiltInDialogs->isChecked() != m_principal.useBuiltInDialogs())
        m_principal.setUseBuiltInDialogs(chkUseBuiltInDialogs->isChecked());
    etat.RappelsMails = cles.mails;
    etat.RappelsSMS = cles.sms;
    InitHighEdit(HighEdit());
    accept();
}

void frmMain::OptionsAvancees()
{
    frmAdvancedOptions dialogue(*this);
    ExecuterDialogue(dialogue);
}
