#pragma once

#include <QDate>

// The current-time line of the day and work-week views: never, on today's
// column only, on every column; MarqueHeureImprimee added when it is printed
// too (never with Jamais).
enum class MarqueHeure { Jamais = 0, PourAujourdhui = 1, Toujours = 2 };
inline constexpr int MarqueHeureImprimee = 4;

[[nodiscard]] int NumeroMarqueHeure(MarqueHeure choix, bool imprimee);
[[nodiscard]] MarqueHeure ChoixMarqueHeure(int numero);
// Whether the line crosses the column of jour, on screen or on paper.
[[nodiscard]] bool MarqueHeureSurJour(int numero, const QDate &jour, const QDate &aujourdhui, bool impression);
