#include "shell/appstate.h"

#include "shell/base/config.h"

AppState &appState()
{
    static AppState etat;
    return etat;
}

void InitTables(AppState &etat)
{
    etat.TypesRDV = {QStringLiteral("Consultation"), QStringLiteral("Visite"), QStringLiteral("Pédiatrie"),
                     QStringLiteral("HAD"),          QStringLiteral("Réservé"), QStringLiteral("Urgence"),
                     QStringLiteral("Pause")};
    etat.JoursSemaine = {QString(),             QStringLiteral("Dimanche"), QStringLiteral("Lundi"),
                         QStringLiteral("Mardi"), QStringLiteral("Mercredi"), QStringLiteral("Jeudi"),
                         QStringLiteral("Vendredi"), QStringLiteral("Samedi")};
    // Each row is one tint in six hues; the last row is the grey of absences.
    static constexpr quint32 teintes[6] = {0xFFFF00, 0xFF0000, 0xFF00FF, 0x00FF00, 0x0000FF, 0x00FFFF};
    static constexpr quint32 intensites[6] = {0xE0, 0xC0, 0xA0, 0x90, 0x70, 0x50};
    for (int ligne = 0; ligne < 6; ++ligne) {
        const quint32 i = intensites[ligne];
        const quint32 fond = i | (i << 8) | (i << 16);
        for (int col = 0; col < 6; ++col)
            etat.Nuancier[ligne * 6 + col] = teintes[col] | fond;
    }
    for (int col = 0; col < 6; ++col)
        etat.Nuancier[36 + col] = 0xA0A0A0;
}
