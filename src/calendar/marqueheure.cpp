#include "calendar/marqueheure.h"

int NumeroMarqueHeure(MarqueHeure choix, bool imprimee)
{
    const int numero = static_cast<int>(choix);
    return choix != MarqueHeure::Jamais && imprimee ? numero + MarqueHeureImprimee : numero;
}

MarqueHeure ChoixMarqueHeure(int numero)
{
    switch (numero & 3) {
    case 1:
        return MarqueHeure::PourAujourdhui;
    case 2:
        return MarqueHeure::Toujours;
    default:
        return MarqueHeure::Jamais;
    }
}

bool MarqueHeureSurJour(int numero, const QDate &jour, const QDate &aujourdhui, bool impression)
{
    if (impression && !(numero & MarqueHeureImprimee))
        return false;
    switch (ChoixMarqueHeure(numero)) {
    case MarqueHeure::PourAujourdhui:
        return jour == aujourdhui;
    case MarqueHeure::Toujours:
        return true;
    default:
        return false;
    }
}
