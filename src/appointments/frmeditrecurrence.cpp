#include "appointments/frmeditrecurrence.h"

#include "calendar/calendarrecurrenceoptions.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/base/prompt.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

template<typename T>
T *nomme(T *controle, const char *nom)
{
    controle->setObjectName(QString::fromLatin1(nom));
    return controle;
}

QComboBox *liste(const char *nom, const QStringList &textes, QWidget *parent)
{
    auto *c = nomme(new QComboBox(parent), nom);
    c->addItems(textes);
    c->setCurrentIndex(-1);
    c->setMaxVisibleItems(12);
    return c;
}

QLineEdit *champNombre(const char *nom, QWidget *parent)
{
    auto *e = nomme(new QLineEdit(parent), nom);
    e->setMaximumWidth(48);
    e->setAlignment(Qt::AlignRight);
    return e;
}

QDateEdit *champDate(const char *nom, QWidget *parent)
{
    auto *d = nomme(new QDateEdit(parent), nom);
    d->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    d->setCalendarPopup(true);
    return d;
}

// One line of a page: its controls side by side, pushed to the left.
QHBoxLayout *ligne(std::initializer_list<QWidget *> controles)
{
    auto *l = new QHBoxLayout;
    for (QWidget *w : controles)
        l->addWidget(w);
    l->addStretch(1);
    return l;
}

QLabel *texte(const QString &t, QWidget *parent)
{
    return new QLabel(t, parent);
}

} // namespace

int frmEditRecurrence::Editer(QWidget *parent, CalendarEventPtr &event, QDate debutSelection)
{
    frmEditRecurrence dialogue(event, debutSelection, parent);
    if (!dialogue.Event()) {
        Prompt::informer(QStringLiteral("Erreur"), QStringLiteral("La série de ce rendez-vous est introuvable."),
                         Prompt::Icone::Exclamation);
        return Annule;
    }
    const int resultat = ExecuterDialogue(dialogue);
    // Whatever the way out, the caller goes on with the dialog's record.
    event = dialogue.Event();
    return resultat;
}

frmEditRecurrence::frmEditRecurrence(const CalendarEventPtr &event, QDate debutSelection, QWidget *parent)
    : QDialog(parent)
    , m_chargement(ChargerRecurrence(event))
{
    setObjectName(QStringLiteral("frmEditRecurrence"));
    setWindowTitle(QStringLiteral("Configurer la Recurrence"));
    construire();

    if (!debutSelection.isValid() && event)
        debutSelection = event->StartDateTime().date();
    if (!debutSelection.isValid())
        debutSelection = Horloge::aujourdhui();

    // The page of a new dialog is the daily one with no end; the pattern's
    // own values then take over.
    ValeursRecurrence v = ValeursParDefautRecurrence(debutSelection, Horloge::aujourdhui());
    if (m_chargement.pattern)
        PatternVersValeurs(*m_chargement.pattern, v);
    afficher(v);
    btnRemoveRecurrence->setEnabled(!m_chargement.nouvelleRecurrence);

    connect(cmbEventStartTime, &QComboBox::editTextChanged, this, &frmEditRecurrence::calculerFin);
    connect(cmbEventDuration, &QComboBox::editTextChanged, this, &frmEditRecurrence::calculerFin);
    cmbEventStartTime->lineEdit()->installEventFilter(this);
}

void frmEditRecurrence::construire()
{
    auto *principal = new QVBoxLayout(this);

    // Times of every occurrence.
    frameApointmentTime = nomme(new QGroupBox(QStringLiteral("Rendez-vous : "), this), "frameApointmentTime");
    cmbEventStartTime = liste("cmbEventStartTime", HeuresDebutRecurrence(), frameApointmentTime);
    cmbEventStartTime->setEditable(true);
    cmbEventStartTime->setInsertPolicy(QComboBox::NoInsert);
    txtEventEndTime = nomme(new QLineEdit(frameApointmentTime), "txtEventEndTime");
    txtEventEndTime->setReadOnly(true);
    txtEventEndTime->setMaximumWidth(64);
    cmbEventDuration = liste("cmbEventDuration", DureesRecurrence(), frameApointmentTime);
    cmbEventDuration->setEditable(true);
    cmbEventDuration->setInsertPolicy(QComboBox::NoInsert);
    cmbEventDuration->setMinimumContentsLength(20);
    {
        auto *l = new QHBoxLayout(frameApointmentTime);
        l->addWidget(texte(QStringLiteral("Début :"), frameApointmentTime));
        l->addWidget(cmbEventStartTime);
        l->addSpacing(12);
        l->addWidget(texte(QStringLiteral("Fin : "), frameApointmentTime));
        l->addWidget(txtEventEndTime);
        l->addSpacing(12);
        l->addWidget(texte(QStringLiteral("Durée : "), frameApointmentTime));
        l->addWidget(cmbEventDuration, 1);
    }
    principal->addWidget(frameApointmentTime);

    // Kind of the series, one page each.
    frameRecurrencePatterm = nomme(new QGroupBox(QStringLiteral("Recurrence : "), this), "frameRecurrencePatterm");
    optRecDaily = nomme(new QRadioButton(QStringLiteral("Journalière"), frameRecurrencePatterm), "optRecDaily");
    optRecWeekly = nomme(new QRadioButton(QStringLiteral("Hebdomadaire"), frameRecurrencePatterm), "optRecWeekly");
    optRecMonthly = nomme(new QRadioButton(QStringLiteral("Mensuelle"), frameRecurrencePatterm), "optRecMonthly");
    optRecYearly = nomme(new QRadioButton(QStringLiteral("Annuelle"), frameRecurrencePatterm), "optRecYearly");
    m_groupeRecurrence = new QButtonGroup(this);
    m_groupeRecurrence->addButton(optRecDaily, ValeursRecurrence::Journaliere);
    m_groupeRecurrence->addButton(optRecWeekly, ValeursRecurrence::Hebdomadaire);
    m_groupeRecurrence->addButton(optRecMonthly, ValeursRecurrence::Mensuelle);
    m_groupeRecurrence->addButton(optRecYearly, ValeursRecurrence::Annuelle);
    pages = nomme(new QStackedWidget(frameRecurrencePatterm), "pages");

    pageDaily = nomme(new QWidget(pages), "pageDaily");
    optDailyEveryNdays = nomme(new QRadioButton(QStringLiteral("Tous les"), pageDaily), "optDailyEveryNdays");
    txtDailyEveryNdays = champNombre("txtDailyEveryNdays", pageDaily);
    optDailyEveryWorkDay = nomme(new QRadioButton(QStringLiteral("Tous les jours de travail"), pageDaily), "optDailyEveryWorkDay");
    {
        auto *l = new QVBoxLayout(pageDaily);
        l->addLayout(ligne({optDailyEveryNdays, txtDailyEveryNdays, texte(QStringLiteral("Jour(s)"), pageDaily)}));
        l->addLayout(ligne({optDailyEveryWorkDay}));
        l->addStretch(1);
    }

    pageWeekly = nomme(new QWidget(pages), "pageWeekly");
    txtWeeklyNWeeks = champNombre("txtWeeklyNWeeks", pageWeekly);
    chkWeeklyMonday = nomme(new QCheckBox(QStringLiteral("Lundi"), pageWeekly), "chkWeeklyMonday");
    chkWeeklyTusday = nomme(new QCheckBox(QStringLiteral("Mardi"), pageWeekly), "chkWeeklyTusday");
    chkWeeklyWednesday = nomme(new QCheckBox(QStringLiteral("Mercredi"), pageWeekly), "chkWeeklyWednesday");
    chkWeeklyThursday = nomme(new QCheckBox(QStringLiteral("Jeudi"), pageWeekly), "chkWeeklyThursday");
    chkWeeklyFriday = nomme(new QCheckBox(QStringLiteral("Vendredi"), pageWeekly), "chkWeeklyFriday");
    chkWeeklySaturday = nomme(new QCheckBox(QStringLiteral("Samedi"), pageWeekly), "chkWeeklySaturday");
    chkWeeklySunday = nomme(new QCheckBox(QStringLiteral("Dimanche"), pageWeekly), "chkWeeklySunday");
    {
        auto *l = new QVBoxLayout(pageWeekly);
        l->addLayout(ligne({texte(QStringLiteral("Toutes les "), pageWeekly), txtWeeklyNWeeks,
                            texte(QStringLiteral("Semaine(s) le :"), pageWeekly)}));
        auto *jours = new QGridLayout;
        const std::array<QCheckBox *, 7> boites{chkWeeklyMonday, chkWeeklyTusday,  chkWeeklyWednesday, chkWeeklyThursday,
                                                chkWeeklyFriday, chkWeeklySaturday, chkWeeklySunday};
        for (int i = 0; i < 7; ++i)
            jours->addWidget(boites[size_t(i)], i / 4, i % 4);
        jours->setColumnStretch(4, 1);
        l->addLayout(jours);
        l->addStretch(1);
    }

    const QStringList rangs = RangsJourRecurrence();
    const QStringList joursMasque = JoursMasqueRecurrence();
    const QStringList mois = MoisRecurrence();
    const QStringList joursDuMois = JoursDuMoisRecurrence();

    pageMonthly = nomme(new QWidget(pages), "pageMonthly");
    optMonthlyDay = nomme(new QRadioButton(QStringLiteral("Le"), pageMonthly), "optMonthlyDay");
    cmbMonthlyDayOfMonth = liste("cmbMonthlyDayOfMonth", joursDuMois, pageMonthly);
    txtMonthlyEveryMonth = champNombre("txtMonthlyEveryMonth", pageMonthly);
    optMonthlyThe = nomme(new QRadioButton(QStringLiteral("Le"), pageMonthly), "optMonthlyThe");
    cmbMonthlyDay = liste("cmbMonthlyDay", rangs, pageMonthly);
    cmbMonthlyDayOfWeek = liste("cmbMonthlyDayOfWeek", joursMasque, pageMonthly);
    txtMonthlyOfEveryTheMonths = champNombre("txtMonthlyOfEveryTheMonths", pageMonthly);
    {
        auto *l = new QVBoxLayout(pageMonthly);
        l->addLayout(ligne({optMonthlyDay, cmbMonthlyDayOfMonth, texte(QStringLiteral("de chaque"), pageMonthly),
                            txtMonthlyEveryMonth, texte(QStringLiteral("Mois"), pageMonthly)}));
        l->addLayout(ligne({optMonthlyThe, cmbMonthlyDay, cmbMonthlyDayOfWeek, texte(QStringLiteral("de chaque"), pageMonthly),
                            txtMonthlyOfEveryTheMonths, texte(QStringLiteral("Mois"), pageMonthly)}));
        l->addStretch(1);
    }

    pageYearly = nomme(new QWidget(pages), "pageYearly");
    optYearlyDay = nomme(new QRadioButton(QStringLiteral("Tous les"), pageYearly), "optYearlyDay");
    cmbYearlyEveryDate = liste("cmbYearlyEveryDate", mois, pageYearly);
    cmbYearlyDate = liste("cmbYearlyDate", joursDuMois, pageYearly);
    optYearlyThe = nomme(new QRadioButton(QStringLiteral("Le"), pageYearly), "optYearlyThe");
    cmdYearlyThePartOfWeek = liste("cmdYearlyThePartOfWeek", rangs, pageYearly);
    cmbYearlyTheDay = liste("cmbYearlyTheDay", joursMasque, pageYearly);
    cmbYearlyTheMonth = liste("cmbYearlyTheMonth", mois, pageYearly);
    {
        auto *l = new QVBoxLayout(pageYearly);
        l->addLayout(ligne({optYearlyDay, cmbYearlyDate, cmbYearlyEveryDate}));
        l->addLayout(ligne({optYearlyThe, cmdYearlyThePartOfWeek, cmbYearlyTheDay, texte(QStringLiteral("de"), pageYearly),
                            cmbYearlyTheMonth}));
        l->addStretch(1);
    }

    pages->addWidget(pageDaily);
    pages->addWidget(pageWeekly);
    pages->addWidget(pageMonthly);
    pages->addWidget(pageYearly);
    {
        auto *l = new QHBoxLayout(frameRecurrencePatterm);
        auto *options = new QVBoxLayout;
        for (QRadioButton *b : {optRecDaily, optRecWeekly, optRecMonthly, optRecYearly})
            options->addWidget(b);
        options->addStretch(1);
        l->addLayout(options);
        auto *trait = new QFrame(frameRecurrencePatterm);
        trait->setFrameShape(QFrame::VLine);
        trait->setFrameShadow(QFrame::Sunken);
        l->addWidget(trait);
        l->addWidget(pages, 1);
    }
    principal->addWidget(frameRecurrencePatterm);

    // Range of the series.
    frameRangeOfRecurrence =
        nomme(new QGroupBox(QStringLiteral("Etendue de la recurrence : "), this), "frameRangeOfRecurrence");
    ddPatternStartDate = champDate("ddPatternStartDate", frameRangeOfRecurrence);
    optPatternNoEnd = nomme(new QRadioButton(QStringLiteral("Pas de date de fin"), frameRangeOfRecurrence), "optPatternNoEnd");
    optPatternEndAfter = nomme(new QRadioButton(QStringLiteral("Fin après :"), frameRangeOfRecurrence), "optPatternEndAfter");
    txtPatternEndAfter = champNombre("txtPatternEndAfter", frameRangeOfRecurrence);
    optPatternEndByDate = nomme(new QRadioButton(QStringLiteral("Fin le :"), frameRangeOfRecurrence), "optPatternEndByDate");
    ddPatternEndDate = champDate("ddPatternEndDate", frameRangeOfRecurrence);
    {
        auto *l = new QGridLayout(frameRangeOfRecurrence);
        l->addWidget(texte(QStringLiteral("Début : "), frameRangeOfRecurrence), 0, 0);
        l->addWidget(ddPatternStartDate, 0, 1);
        l->setColumnMinimumWidth(2, 24);
        l->addWidget(optPatternNoEnd, 0, 3, 1, 3);
        l->addWidget(optPatternEndAfter, 1, 3);
        l->addWidget(txtPatternEndAfter, 1, 4);
        l->addWidget(texte(QStringLiteral("ocurrences"), frameRangeOfRecurrence), 1, 5);
        l->addWidget(optPatternEndByDate, 2, 3);
        l->addWidget(ddPatternEndDate, 2, 4, 1, 2);
        l->setColumnStretch(6, 1);
    }
    principal->addWidget(frameRangeOfRecurrence);

    btnOK = nomme(new QPushButton(QStringLiteral("OK"), this), "btnOK");
    btnCancel = nomme(new QPushButton(QStringLiteral("Annuler"), this), "btnCancel");
    btnRemoveRecurrence = nomme(new QPushButton(QStringLiteral("Annuler la récurrence"), this), "btnRemoveRecurrence");
    btnOK->setDefault(true);
    {
        auto *l = new QHBoxLayout;
        l->addStretch(1);
        l->addWidget(btnOK);
        l->addWidget(btnCancel);
        l->addWidget(btnRemoveRecurrence);
        principal->addLayout(l);
    }

    connect(m_groupeRecurrence, &QButtonGroup::idToggled, this, [this](int, bool coche) {
        if (coche)
            afficherPage();
    });
    connect(btnOK, &QPushButton::clicked, this, &frmEditRecurrence::valider);
    connect(btnCancel, &QPushButton::clicked, this, &frmEditRecurrence::reject);
    connect(btnRemoveRecurrence, &QPushButton::clicked, this, &frmEditRecurrence::retirerRecurrence);
}

std::array<std::pair<QCheckBox *, int>, 7> frmEditRecurrence::boitesJours() const
{
    return {{{chkWeeklyMonday, CalendarRecurrenceOptions::Monday},
             {chkWeeklyTusday, CalendarRecurrenceOptions::Tuesday},
             {chkWeeklyWednesday, CalendarRecurrenceOptions::Wednesday},
             {chkWeeklyThursday, CalendarRecurrenceOptions::Thursday},
             {chkWeeklyFriday, CalendarRecurrenceOptions::Friday},
             {chkWeeklySaturday, CalendarRecurrenceOptions::Saturday},
             {chkWeeklySunday, CalendarRecurrenceOptions::Sunday}}};
}

void frmEditRecurrence::afficherPage()
{
    switch (m_groupeRecurrence->checkedId()) {
    case ValeursRecurrence::Hebdomadaire:
        pages->setCurrentWidget(pageWeekly);
        break;
    case ValeursRecurrence::Mensuelle:
        pages->setCurrentWidget(pageMonthly);
        break;
    case ValeursRecurrence::Annuelle:
        pages->setCurrentWidget(pageYearly);
        break;
    default:
        pages->setCurrentWidget(pageDaily);
        break;
    }
}

ValeursRecurrence frmEditRecurrence::valeurs() const
{
    ValeursRecurrence v;
    v.cmbEventStartTime = cmbEventStartTime->currentText();
    v.cmbEventDuration = cmbEventDuration->currentText();
    v.txtEventEndTime = txtEventEndTime->text();
    const int page = m_groupeRecurrence->checkedId();
    v.page = page >= ValeursRecurrence::Journaliere && page <= ValeursRecurrence::Annuelle ? ValeursRecurrence::Page(page)
                                                                                            : ValeursRecurrence::Journaliere;

    v.optDailyEveryWorkDay = optDailyEveryWorkDay->isChecked();
    v.txtDailyEveryNdays = txtDailyEveryNdays->text();

    v.txtWeeklyNWeeks = txtWeeklyNWeeks->text();
    v.joursCoches = 0;
    for (const auto &[boite, bit] : boitesJours()) {
        if (boite->isChecked())
            v.joursCoches |= bit;
    }

    v.optMonthlyDay = optMonthlyDay->isChecked();
    v.cmbMonthlyDayOfMonth = cmbMonthlyDayOfMonth->currentIndex();
    v.txtMonthlyEveryMonth = txtMonthlyEveryMonth->text();
    v.cmbMonthlyDay = cmbMonthlyDay->currentIndex();
    v.cmbMonthlyDayOfWeek = cmbMonthlyDayOfWeek->currentIndex();
    v.txtMonthlyOfEveryTheMonths = txtMonthlyOfEveryTheMonths->text();

    v.optYearlyDay = optYearlyDay->isChecked();
    v.cmbYearlyEveryDate = cmbYearlyEveryDate->currentIndex();
    v.cmbYearlyDate = cmbYearlyDate->currentIndex();
    v.cmdYearlyThePartOfWeek = cmdYearlyThePartOfWeek->currentIndex();
    v.cmbYearlyTheDay = cmbYearlyTheDay->currentIndex();
    v.cmbYearlyTheMonth = cmbYearlyTheMonth->currentIndex();

    v.ddPatternStartDate = ddPatternStartDate->date();
    if (optPatternEndAfter->isChecked())
        v.finSerie = CalendarRecurrencePattern::EndAfterOccurrencesCount;
    else if (optPatternEndByDate->isChecked())
        v.finSerie = CalendarRecurrencePattern::EndByDate;
    else
        v.finSerie = CalendarRecurrencePattern::NoEnd;
    v.txtPatternEndAfter = txtPatternEndAfter->text();
    v.ddPatternEndDate = ddPatternEndDate->date();
    return v;
}

void frmEditRecurrence::afficher(const ValeursRecurrence &v)
{
    cmbEventStartTime->setEditText(v.cmbEventStartTime);
    cmbEventDuration->setEditText(v.cmbEventDuration);
    txtEventEndTime->setText(v.txtEventEndTime);

    if (QAbstractButton *b = m_groupeRecurrence->button(v.page))
        b->setChecked(true);
    afficherPage();

    (v.optDailyEveryWorkDay ? optDailyEveryWorkDay : optDailyEveryNdays)->setChecked(true);
    txtDailyEveryNdays->setText(v.txtDailyEveryNdays);

    txtWeeklyNWeeks->setText(v.txtWeeklyNWeeks);
    for (const auto &[boite, bit] : boitesJours())
        boite->setChecked((v.joursCoches & bit) != 0);

    (v.optMonthlyDay ? optMonthlyDay : optMonthlyThe)->setChecked(true);
    cmbMonthlyDayOfMonth->setCurrentIndex(v.cmbMonthlyDayOfMonth);
    txtMonthlyEveryMonth->setText(v.txtMonthlyEveryMonth);
    cmbMonthlyDay->setCurrentIndex(v.cmbMonthlyDay);
    cmbMonthlyDayOfWeek->setCurrentIndex(v.cmbMonthlyDayOfWeek);
    txtMonthlyOfEveryTheMonths->setText(v.txtMonthlyOfEveryTheMonths);

    (v.optYearlyDay ? optYearlyDay : optYearlyThe)->setChecked(true);
    cmbYearlyEveryDate->setCurrentIndex(v.cmbYearlyEveryDate);
    cmbYearlyDate->setCurrentIndex(v.cmbYearlyDate);
    cmdYearlyThePartOfWeek->setCurrentIndex(v.cmdYearlyThePartOfWeek);
    cmbYearlyTheDay->setCurrentIndex(v.cmbYearlyTheDay);
    cmbYearlyTheMonth->setCurrentIndex(v.cmbYearlyTheMonth);

    ddPatternStartDate->setDate(v.ddPatternStartDate);
    switch (v.finSerie) {
    case CalendarRecurrencePattern::EndAfterOccurrencesCount:
        optPatternEndAfter->setChecked(true);
        break;
    case CalendarRecurrencePattern::EndByDate:
        optPatternEndByDate->setChecked(true);
        break;
    default:
        optPatternNoEnd->setChecked(true);
        break;
    }
    txtPatternEndAfter->setText(v.txtPatternEndAfter);
    ddPatternEndDate->setDate(v.ddPatternEndDate);
}

bool frmEditRecurrence::eventFilter(QObject *objet, QEvent *evenement)
{
    if (objet == cmbEventStartTime->lineEdit() && evenement->type() == QEvent::FocusOut)
        calculerFin();
    return QDialog::eventFilter(objet, evenement);
}

// The end follows the start and the duration as they are typed or chosen; the
// start goes into the pattern on the way. A start that is no time yet (while
// it is being typed) leaves both as they were.
void frmEditRecurrence::calculerFin()
{
    const std::optional<QTime> debut = HeureDebutRecurrence(cmbEventStartTime->currentText());
    if (!debut)
        return;
    if (m_chargement.pattern)
        m_chargement.pattern->setStartTime(*debut);
    txtEventEndTime->setText(HeureFinRecurrence(cmbEventStartTime->currentText(), cmbEventDuration->currentText()));
}

void frmEditRecurrence::valider()
{
    if (!m_chargement.pattern)
        return;
    if (!ValeursVersPattern(valeurs(), *m_chargement.pattern)) {
        // A start typed without ":" cannot be split into hours and minutes;
        // by our choice it is told and the dialog stays open, instead of
        // failing in silence.
        Prompt::informer(QStringLiteral("Erreur"),
                         QStringLiteral("L'heure de début doit être saisie sous la forme hh:mm."),
                         Prompt::Icone::Exclamation);
        cmbEventStartTime->setFocus();
        return;
    }
    // Declined: the dialog stays open, the pattern already holding the values.
    if (!ConfirmerRecurrence(m_chargement.event, m_chargement.pattern))
        return;
    done(Valide);
}

void frmEditRecurrence::retirerRecurrence()
{
    if (m_chargement.event)
        m_chargement.event->RemoveRecurrence();
    done(RecurrenceRetiree);
}

// The meta-object code of the dialog goes with it, so that linking the dialog
// does not pull in the rest of the library's generated code.
#include "moc_frmeditrecurrence.cpp"
