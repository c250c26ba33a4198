// TEMP placeholder
#include "rules/regles.h"
RegleMatch GetRegleForDate(ConfigIni &, const QDateTime &) { return {}; }
RegleMatch GetRegleForDate(const QDateTime &) { return {}; }
CouleurCellule CouleurCelluleJour(const QDateTime &, bool, quint32 c, const RegleMatch &, const QString &, const QString &) { return {c, false}; }
