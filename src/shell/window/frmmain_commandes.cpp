// The main window's commands on appointments and its reminder routing.

#include "shell/window/frmmain.h"

#include "appointments/frmeditevent.h"
#include "appointments/frmeditrecurrence.h"
#include "calendar/calendardataprovider.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/datepicker.h"
#include "messaging/frmreminders.h"
#include "shell/appstate.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/base/prompt.h"
#include "shell/regleslignedate.h"

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QTimer>

// --- Clicks on the calendar ----------------------------------------------

void frmMain::doubleClic(const CalendarHit &hit)
{
    if (!hit.event) {
        appState().RegleCourante = RegleMatch{};
        ouvrirEditeurNouveau();
        return;
    }
    ouvrirEvenement(hit.event);
}

void frmMain::clicDroit(const CalendarHit &hit)
{
    if (hit.event) {
        m_evenementCible = hit.event;
        afficherMenuContextuel(mnuContexEditEvent);
    } else if (hit.area == HitTimeScale) {
        afficherMenuContextuel(mnuContextTimeScale);
    } else {
        afficherMenuContextuel(mnuContextNewEvent);
    }
}

void frmMain::afficherMenuContextuel(QMenu *menu)
{
    m_menuDemande = menu;
    if (afficherMenu)
        afficherMenu(menu, QCursor::pos());
}

// --- Opening and the editor ----------------------------------------------

CalendarEventPtr frmMain::maitreDe(const CalendarEventPtr &evenement) const
{
    const CalendarRecurrencePatternPtr serie = evenement->RecurrencePattern();
    if (!serie)
        return evenement->RecurrenceState() == CalendarEvent::Master ? evenement : CalendarEventPtr();
    if (CalendarEventPtr maitre = serie->MasterEvent())
        return maitre;
    // The master read with the week may have gone since: ask the store.
    if (CalendarDataProvider *fournisseur = CalendarControl->dataProvider())
        return fournisseur->GetEvent(serie->MasterEventID());
    return {};
}

void frmMain::ouvrirEvenement(CalendarEventPtr evenement)
{
    if (!evenement)
        return;
    if (evenement->RecurrenceState() != CalendarEvent::NotRecurring) {
        const ChoixOccurrence choix = choisirOccurrenceOuSerie(false, evenement->Subject());
        if (choix == ChoixOccurrence::Annule)
            return;
        if (choix == ChoixOccurrence::Occurrence) {
            if (evenement->RecurrenceState() == CalendarEvent::Occurrence) {
                // The occurrence is edited as an exception of its own.
                evenement = evenement->CloneEvent();
                evenement->MarkAsRecurrenceException();
            }
        } else {
            evenement = maitreDe(evenement);
            if (!evenement)
                return;
        }
    }
    ouvrirEditeur(evenement);
}

void frmMain::ouvrirEditeurNouveau()
{
    m_dernierOuvert.reset();
    CalendarSelection selection = CalendarControl->selection();
    if (!selection.isValid()) {
        // Nothing selected yet: the first step of the working day on show.
        const QDate jour = CalendarControl->shownDaysCount() > 0 ? CalendarControl->shownDay(0) : Horloge::maintenant().date();
        selection.begin = QDateTime(jour, CalendarControl->workDayBegin());
        selection.end = selection.begin.addSecs(60 * CalendarControl->timeScale());
        selection.allDay = false;
    }
    frmEditEvent editeur(appState().Calendrier.get(), this);
    editeur.setDebutSelection(selection.begin.date());
    m_ressources.suivre(appState().Calendrier.get());
    const int planning = appState().Calendrier
                             ? m_ressources.indexPlanningDeLaSelection(appState().Calendrier->Schedules())
                             : -1;
    editeur.NewEvent(selection.begin, selection.end, selection.allDay, planning);
    connect(&editeur, &frmEditEvent::Populate, CalendarControl, &CalendarView::Populate);
    ExecuterDialogue(editeur);
}

void frmMain::ouvrirEditeur(const CalendarEventPtr &evenement, QWidget *proprietaire)
{
    m_dernierOuvert = evenement;
    frmEditEvent editeur(appState().Calendrier.get(), proprietaire ? proprietaire : this);
    editeur.setDebutSelection(CalendarControl->selection().begin.date());
    editeur.ModifyEvent(evenement);
    connect(&editeur, &frmEditEvent::Populate, CalendarControl, &CalendarView::Populate);
    ExecuterDialogue(editeur);
}

// --- Delete and presence -------------------------------------------------

void frmMain::periodiciteEvenementCible()
{
    const CalendarEventPtr cible = m_evenementCible;
    if (!cible || !appState().Calendrier)
        return;
    // The dialog works on a copy (for an occurrence, a copy of its master);
    // the store changes only when it is confirmed.
    CalendarEventPtr copie = cible->CloneEvent();
    const int reponse = frmEditRecurrence::Editer(this, copie, CalendarControl->selection().begin.date());
    if (reponse == frmEditRecurrence::Annule || !copie)
        return;
    ecrire(appState().Calendrier->ChangeEvent(copie));
    CalendarControl->Populate();
    wndDatePicker->RedrawControl();
}

void frmMain::supprimerEvenementCible()
{
    const CalendarEventPtr evenement = m_evenementCible;
    if (!evenement)
        return;
    if (!Prompt::confirmer(QStringLiteral("Supprimer un Rendez-Vous"),
                              QStringLiteral("Êtes-vous sûr de vouloir supprimer ce Rendez-Vous ? "), Prompt::Reponse::Non))
        return;

    CalendarDataProvider *fournisseur = CalendarControl->dataProvider();
    if (!fournisseur)
        return;
    const int etat = evenement->RecurrenceState();
    if (etat == CalendarEvent::Occurrence || etat == CalendarEvent::Exception) {
        const ChoixOccurrence choix = choisirOccurrenceOuSerie(true, evenement->Subject());
        if (choix == ChoixOccurrence::Annule)
            return;
        if (choix == ChoixOccurrence::Serie) {
            if (const CalendarEventPtr maitre = maitreDe(evenement))
                ecrire(fournisseur->DeleteEvent(maitre));
        } else {
            ecrire(fournisseur->DeleteEvent(evenement));
        }
    } else {
        ecrire(fournisseur->DeleteEvent(evenement));
    }
    CalendarControl->Populate();
    wndDatePicker->RedrawControl();
}

void frmMain::changerPresence(int busyStatus)
{
    const CalendarEventPtr evenement = m_evenementCible;
    CalendarDataProvider *fournisseur = CalendarControl->dataProvider();
    if (!evenement || !fournisseur)
        return;
    evenement->setBusyStatus(busyStatus);
    ecrire(fournisseur->ChangeEvent(evenement));
    CalendarControl->Populate();
}

// --- Guards of the calendar's own operations ------------------------------

bool frmMain::refuserOperation(int operation, const QList<CalendarEventPtr> &evenements) const
{
    const int etat = evenements.isEmpty() || !evenements.first() ? -1 : evenements.first()->RecurrenceState();
    if (RefuserGlisserRecurrent(m_sansGlisserRecurrents, operation, etat))
        return true;
    const CalendarSelection selection = CalendarControl->selection();
    return RefuserCreationWeekEnd(m_sansCreationWeekEnd, operation, selection.begin, selection.end, selection.allDay);
}

bool frmMain::confirmerOperation(int operation) const
{
    if (operation != OpDeleteSelected && operation != OpDeleteEvent)
        return true;
    return Prompt::confirmer(QStringLiteral("Suppression..."),
                                QStringLiteral("Êtes vous sûr de vouloir supprimer ce ou ces rendez-vous ? "), Prompt::Reponse::Non);
}

// --- Reminders -------------------------------------------------------------

bool frmMain::rappelsActifs() const
{
    const auto &moteur = appState().MoteurRappels;
    return moteur ? moteur->isEnabled() : m_parametres.rappelsActifs;
}

void frmMain::majMenuRappels()
{
    mnuReminders->setEnabled(rappelsActifs());
}

frmReminders *frmMain::fenetreRappels()
{
    if (!m_frmReminders && appState().MoteurRappels) {
        m_frmReminders = new frmReminders(*appState().MoteurRappels, this);
        m_frmReminders->ouvrirRendezVous = [this](QWidget *w, const CalendarEventPtr &e) { ouvrirEditeur(e, w); };
    }
    return m_frmReminders;
}

frmReminderSMS *frmMain::fenetreRappelsSMS()
{
    if (!m_frmReminderSMS && appState().MoteurRappels) {
        m_frmReminderSMS = new frmReminderSMS(*appState().MoteurRappels, this);
        m_frmReminderSMS->ouvrirRendezVous = [this](QWidget *w, const CalendarEventPtr &e) { ouvrirEditeur(e, w); };
    }
    return m_frmReminderSMS;
}

FenetreRappels *frmMain::fenetreRappelsChoisie()
{
    const AppState &etat = appState();
    if (etat.RappelsSMS || etat.RappelsMails)
        return fenetreRappelsSMS();
    return fenetreRappels();
}

void frmMain::surRappel(int action, const Reminder &rappel)
{
    FenetreRappels *choisie = fenetreRappelsChoisie();
    if (!choisie)
        return;
    choisie->OnReminders(action, rappel);
    // The other window, when it is on screen, follows the engine too: its
    // rows must keep standing for the engine's positions.
    FenetreRappels *autre = choisie == m_frmReminders ? static_cast<FenetreRappels *>(m_frmReminderSMS) : m_frmReminders;
    if (autre && autre->isVisible())
        autre->OnReminders(action, rappel);
    if (action != ReminderEngine::Fire)
        return;
    if (DialoguesOuverts != 0)
        timerRMDForm->start();
    else
        montrerRappel(choisie);
}

void frmMain::verifierRappels()
{
    if (DialoguesOuverts != 0)
        return;
    timerRMDForm->stop();
    // The plain window, whichever window gets the reports; it is filled
    // from the engine first.
    if (frmReminders *f = fenetreRappels()) {
        f->OnReminders(ReminderEngine::Fire, Reminder{});
        montrerRappel(f);
    }
}

void frmMain::montrerRappel(FenetreRappels *fenetre)
{
    if (!fenetre->isVisible())
        fenetre->placerACote(this);
    fenetre->show();
    fenetre->raise();
}

void frmMain::commandeRappels()
{
    if (DialoguesOuverts != 0)
        return;
    FenetreRappels *choisie = fenetreRappelsChoisie();
    if (!choisie)
        return;
    if (!m_frmReminders || !m_frmReminders->isVisible())
        choisie->OnReminders(ReminderEngine::Fire, Reminder{});
    montrerRappel(choisie);
}
