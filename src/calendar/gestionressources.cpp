#include "calendar/gestionressources.h"

#include "calendar/calendardataprovider.h"

#include <QStringList>

#include <algorithm>

namespace {

// The file of the store, "Events.mdb", whichever separator the connection
// string was typed with; the whole string when it names no file.
QString nomDuFournisseur(const FournisseurRessources &f)
{
    const QString source = SourceDeConnexion(f.connexion);
    if (source.isEmpty())
        return f.connexion;
    const qsizetype coupure = std::max(source.lastIndexOf(u'/'), source.lastIndexOf(u'\\'));
    return source.mid(coupure + 1);
}

// A name already taken by another schedule of the store (case aside).
bool nomPris(CalendarDataProvider &provider, const QString &nom, int sauf)
{
    for (const CalendarSchedule &p : provider.Schedules()) {
        if (p.ScheduleID != sauf && p.Name.compare(nom, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

QString refusDuNom(CalendarDataProvider &provider, const QString &nom, int sauf)
{
    if (nom.isEmpty())
        return QStringLiteral("Donnez un nom au planning.");
    if (nomPris(provider, nom, sauf))
        return QStringLiteral("Un planning s'appelle déjà « %1 ». Choisissez un autre nom.").arg(nom);
    return {};
}

const QString kReessayer = QStringLiteral("\nRéessayez dans un instant ; si cela se reproduit, vérifiez l'accès au fichier de l'agenda.");

} // namespace

void GestionRessources::suivre(CalendarDataProvider *provider)
{
    const QString connexion = provider ? provider->ConnectionString() : QString();
    if (m_fournisseurs.size() == 1 && m_fournisseurs.first().provider == provider
        && m_fournisseurs.first().connexion == connexion)
        return;
    m_fournisseurs.clear();
    if (provider)
        m_fournisseurs.append({connexion, provider});
    m_ressources = {RessourceCalendrier{}};
}

CalendarDataProvider *GestionRessources::providerDe(const RessourceCalendrier &r) const
{
    return r.fournisseur >= 0 && r.fournisseur < m_fournisseurs.size() ? m_fournisseurs.at(r.fournisseur).provider : nullptr;
}

int GestionRessources::ajouterRessource()
{
    RessourceCalendrier r;
    r.Name = QStringLiteral("new resource");
    r.NameAuto = false;
    m_ressources.append(r);
    return int(m_ressources.size()) - 1;
}

void GestionRessources::retirerRessource(int index)
{
    if (index >= 0 && index < m_ressources.size())
        m_ressources.removeAt(index);
}

int GestionRessources::planningDeLaSelection() const
{
    for (const RessourceCalendrier &r : m_ressources) {
        if (r.Enabled)
            return !r.ShowAll && r.Schedules.size() == 1 ? *r.Schedules.cbegin() : 0;
    }
    return 0;
}

int GestionRessources::indexPlanningDeLaSelection(const QList<CalendarSchedule> &plannings) const
{
    const int planning = planningDeLaSelection();
    for (qsizetype i = 0; planning != 0 && i < plannings.size(); ++i) {
        if (plannings.at(i).ScheduleID == planning)
            return int(i);
    }
    return -1;
}

void GestionRessources::oublierPlanning(int scheduleId)
{
    for (RessourceCalendrier &r : m_ressources)
        r.Schedules.remove(scheduleId);
}

QString CalcAutoRCName(const FournisseurRessources &fournisseur, const RessourceCalendrier &ressource,
                       const QList<CalendarSchedule> &plannings)
{
    QStringList parties{nomDuFournisseur(fournisseur)};
    if (!ressource.ShowAll) {
        for (const CalendarSchedule &p : plannings) {
            if (ressource.Schedules.contains(p.ScheduleID))
                parties.append(p.Name);
        }
    }
    return parties.join(QStringLiteral(": "));
}

QString AjouterPlanning(CalendarDataProvider &provider, const QString &nom, int *cle)
{
    const QString texte = nom.trimmed();
    if (QString refus = refusDuNom(provider, texte, 0); !refus.isEmpty())
        return refus;
    const int id = provider.AddSchedule(texte);
    if (cle)
        *cle = id;
    if (id == 0)
        return QStringLiteral("Le planning « %1 » n'a pas pu être ajouté à l'agenda.").arg(texte) + kReessayer;
    return {};
}

QString RenommerPlanning(CalendarDataProvider &provider, int cle, const QString &nom)
{
    const QString texte = nom.trimmed();
    if (QString refus = refusDuNom(provider, texte, cle); !refus.isEmpty())
        return refus;
    if (!provider.RenameSchedule(cle, texte))
        return QStringLiteral("Le planning n'a pas pu être renommé en « %1 ».").arg(texte) + kReessayer;
    return {};
}

QString SupprimerPlanning(CalendarDataProvider &provider, int cle)
{
    if (!provider.RemoveSchedule(cle))
        return QStringLiteral("Le planning n'a pas pu être supprimé de l'agenda.") + kReessayer;
    return {};
}

QString QuestionSuppressionPlanning(const QString &nom, int rendezVous)
{
    if (rendezVous == 0)
        return {};
    const QString combien = rendezVous < 0 ? QStringLiteral("Des rendez-vous utilisent peut-être encore le planning « %1 ».").arg(nom)
                                           : QStringLiteral("Le planning « %1 » est encore utilisé par %2 rendez-vous.")
                                                 .arg(nom)
                                                 .arg(rendezVous);
    return combien + QStringLiteral("\nLe supprimer quand même ? Ces rendez-vous resteront dans l'agenda, sans planning.");
}
