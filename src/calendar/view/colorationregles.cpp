#include "calendar/view/colorationregles.h"

#include "rules/regles.h"
#include "shell/appstate.h"

QColor CouleurDepuisBGR(quint32 bgr)
{
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

quint32 BGRDepuisCouleur(const QColor &couleur)
{
    const QColor c = couleur.toRgb();
    return quint32(c.red()) | (quint32(c.green()) << 8) | (quint32(c.blue()) << 16);
}

void ColorerCelluleSelonRegles(DayViewCell &cell)
{
    if (cell.selected)
        return;
    const AppState &etat = appState();
    const RegleMatch regle = GetRegleAffichee(cell.begin);
    const CouleurCellule c =
        CouleurCelluleJour(cell.begin, false, BGRDepuisCouleur(cell.background), regle, etat.PauseDebut, etat.PauseFin);
    if (c.modifiee)
        cell.background = CouleurDepuisBGR(c.couleur);
}
