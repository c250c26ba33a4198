#include "patients/bouclesrecherche.h"

#include "patients/frmsignaletiques.h"
#include "patients/gestiontype.h"
#include "patients/recherchepatient.h"
#include "shell/appstate.h"
#include "shell/base/modal.h"

namespace {

bool executerCarte(FicheSignaletique &carte)
{
    if (carte.charger())
        return ExecuterDialogue(carte) == QDialog::Accepted;
    // A card that could not be read hands over no patient: the search
    // opens again instead of booking half a record.
    ViderPatientCourant();
    return false;
}

bool ouvrirCarte(FichePatient fiche, QWidget *parent)
{
    if (fiche == FichePatient::Liee) {
        frmSignaletiques2_AG carte(parent);
        return executerCarte(carte);
    }
    frmSignaletiques_AG carte(parent);
    return executerCarte(carte);
}

OuvreurFiche &ouvreur()
{
    static OuvreurFiche o = ouvrirCarte;
    return o;
}

void ouvrirFiche(FichePatient fiche, QWidget *parent)
{
    OuvrirFichePatient(fiche, parent);
}

} // namespace

OuvreurFiche FixerOuvreurFiche(OuvreurFiche o)
{
    OuvreurFiche precedent = ouvreur();
    ouvreur() = o ? std::move(o) : OuvreurFiche(ouvrirCarte);
    return precedent;
}

bool OuvrirFichePatient(FichePatient fiche, QWidget *parent)
{
    return ouvreur()(fiche, parent);
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
