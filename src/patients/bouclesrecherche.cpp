#include "patients/bouclesrecherche.h"

#include "patients/gestiontype.h"
#include "patients/recherchepatient.h"
#include "shell/appstate.h"
#include "shell/modal.h"
#include "shell/prompt.h"

namespace {

void noticeFiche(FichePatient, QWidget *)
{
    Prompt::informer(QStringLiteral("Tavonel"), QStringLiteral("La fiche patient n'est pas encore disponible."),
                     Prompt::Icone::Information);
}

OuvreurFiche &ouvreur()
{
    static OuvreurFiche o = noticeFiche;
    return o;
}

void ouvrirFiche(FichePatient fiche, QWidget *parent)
{
    ouvreur()(fiche, parent);
}

} // namespace

OuvreurFiche FixerOuvreurFiche(OuvreurFiche o)
{
    OuvreurFiche precedent = ouvreur();
    ouvreur() = o ? std::move(o) : OuvreurFiche(noticeFiche);
    return precedent;
}

void BoucleRecherchePatientPrincipale(QWidget *parent)
{
    const PatientCourantRecord &p = appState().PatientCourant;
    for (;;) {
        RetourRecherche = 0;
        {
            Recherche_patient_Agenda dialogue(parent);
            ExecuterDialogue(dialogue);
        }
        if (RetourRecherche < 1 || RetourRecherche > 4)
            break;
        // A row of a linked base is only looked at here, not opened.
        if (RetourRecherche == 1)
            break;
        ouvrirFiche(FichePatient::Agenda, parent);
        if (p.Numero != 0)
            break;
    }
    RetourRecherche = 0;
}

bool BoucleRecherchePatientEditeur(QWidget *parent)
{
    const PatientCourantRecord &p = appState().PatientCourant;
    for (;;) {
        RetourRecherche = 0;
        {
            Recherche_patient_AG dialogue(parent);
            ExecuterDialogue(dialogue);
        }
        if (RetourRecherche < 1 || RetourRecherche > 4)
            return false;
        if (RetourRecherche == 1)
            ouvrirFiche(FichePatient::Liee, parent);
        else if (RetourRecherche == 2 || RetourRecherche == 3)
            ouvrirFiche(FichePatient::Agenda, parent);
        // Cancelling a card brings the user back to the search.
        if (p.Numero != 0)
            return true;
    }
}
