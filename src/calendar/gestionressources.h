#pragma once

#include "calendar/calendarstore.h"

#include <QList>
#include <QSet>
#include <QString>

class CalendarDataProvider;

// A store that resources are built on: its connection string and the open
// provider.
struct FournisseurRessources
{
    QString connexion;
    CalendarDataProvider *provider = nullptr;
};

// One column of a calendar that shows several schedules side by side: its
// name, the store it reads, and the schedules it shows (all of them, or the
// set).
struct RessourceCalendrier
{
    QString Name;
    int fournisseur = 0; // index in DataProviders()
    bool NameAuto = true;
    bool ShowAll = true;
    QSet<int> Schedules;
    bool Enabled = true;
};

// The resources of the session. Our book works on one store at a time: the
// list of providers is the active store, and the session starts with one
// resource over it, showing all its schedules.
class GestionRessources final
{
public:
    // Follows the active store. Another store than before drops the
    // resources built on the former one and starts again with one resource.
    void suivre(CalendarDataProvider *provider);

    [[nodiscard]] const QList<FournisseurRessources> &DataProviders() const { return m_fournisseurs; }
    [[nodiscard]] QList<RessourceCalendrier> &Resources() { return m_ressources; }
    [[nodiscard]] CalendarDataProvider *providerDe(const RessourceCalendrier &r) const;

    // Adds a resource named "new resource" over the first store; its index.
    int ajouterRessource();
    void retirerRessource(int index);
    // A schedule that is gone is shown by no resource any more.
    void oublierPlanning(int scheduleId);

    // The schedule of a selection in the calendar: our calendar draws one
    // column, that of the first enabled resource, so a selection falls in
    // the schedule that resource shows when it shows just one; 0 (none)
    // when it shows all of them or several.
    [[nodiscard]] int planningDeLaSelection() const;
    // The same as a place in the store's list of schedules (the order in
    // which the editor lists them); -1 for none.
    [[nodiscard]] int indexPlanningDeLaSelection(const QList<CalendarSchedule> &plannings) const;

private:
    QList<FournisseurRessources> m_fournisseurs;
    QList<RessourceCalendrier> m_ressources;
};

// The automatic name of a resource: the store's file name, then the names of
// the schedules it shows when it does not show them all, with ": " between
// the parts ("Events.mdb: Dr Martin").
[[nodiscard]] QString CalcAutoRCName(const FournisseurRessources &fournisseur, const RessourceCalendrier &ressource,
                                     const QList<CalendarSchedule> &plannings);

// Schedule changes of a store. Each answers an empty text when done, or the
// French message to show the user when the name is refused or the store did
// not take the change (the caller keeps what was typed).
QString AjouterPlanning(CalendarDataProvider &provider, const QString &nom, int *cle = nullptr);
QString RenommerPlanning(CalendarDataProvider &provider, int cle, const QString &nom);
QString SupprimerPlanning(CalendarDataProvider &provider, int cle);

// The question asked before a schedule is removed while appointments still
// name it (count as CountScheduleEvents gives it, -1 when unknown); empty
// when there is nothing to ask.
[[nodiscard]] QString QuestionSuppressionPlanning(const QString &nom, int rendezVous);
