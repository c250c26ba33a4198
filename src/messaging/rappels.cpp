#include "messaging/rappels.h"

#include "shell/base/support.h"

#include <algorithm>
#include <limits>

namespace {

qint32 borne(qint64 minutes)
{
    return static_cast<qint32>(std::clamp<qint64>(minutes, 0, std::numeric_limits<qint32>::max()));
}

} // namespace

QString TitreRappels(int lignes)
{
    return QString::number(lignes) + QStringLiteral(" Rappel") + (lignes >= 2 ? QStringLiteral("s") : QString());
}

qint64 MinutesAvantDebut(const QDateTime &maintenant, const QDateTime &debut)
{
    // Wall-clock minutes, as the practice's clocks show them.
    const auto minuteDuJour = [](const QTime &t) { return t.hour() * 60 + t.minute(); };
    return maintenant.date().daysTo(debut.date()) * 1440 + minuteDuJour(debut.time()) - minuteDuJour(maintenant.time());
}

QString TexteEcheance(qint64 minutes)
{
    if (minutes > 0)
        return FormatDuree(borne(minutes), true);
    return FormatDuree(borne(-minutes), true) + QStringLiteral(" de retard");
}

int MinutesRepos(const QString &texte)
{
    const QString t = texte.trimmed();
    static const QString chiffres = QStringLiteral("-+.,0123456789");
    qsizetype i = 0;
    while (i < t.size() && chiffres.contains(t.at(i)))
        ++i;
    if (t.mid(i).trimmed().isEmpty())
        return 0;
    // With a unit the rest is the duration parser's own rule; a text with no
    // number ("h") stays 0.
    qint32 minutes = 0;
    return ParseDuree(t, minutes) ? minutes : 0;
}

QString TexteRepos(int minutesAvant)
{
    return minutesAvant < 5 ? QStringLiteral("5 minutes") : FormatDuree(minutesAvant, false);
}

QString DateGenerale(const QDateTime &moment)
{
    if (!moment.isValid())
        return {};
    if (moment.time() == QTime(0, 0))
        return moment.date().toString(QStringLiteral("dd/MM/yyyy"));
    return moment.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
}

QString TexteDebutRappel(const QDateTime &debut)
{
    return QStringLiteral("RDV à :  ") + DateGenerale(debut);
}
