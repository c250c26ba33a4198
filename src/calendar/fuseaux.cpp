#include "calendar/fuseaux.h"

#include "shell/base/horloge.h"

#include <QTimeZone>

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace {

DateTransition dateTransition(const QDateTime &horloge)
{
    const QDate jour = horloge.date();
    DateTransition d;
    d.mois = jour.month();
    d.jourSemaine = jour.dayOfWeek() % 7;
    d.semaine = jour.day() + 7 > jour.daysInMonth() ? 5 : (jour.day() - 1) / 7 + 1;
    d.heure = horloge.time().hour();
    d.minute = horloge.time().minute();
    return d;
}

QString nomFuseau(const QByteArray &id, int biais)
{
    const int absolu = std::abs(biais);
    return QStringLiteral("(UTC%1%2:%3) %4")
        .arg(biais < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        .arg(absolu / 60, 2, 10, QLatin1Char('0'))
        .arg(absolu % 60, 2, 10, QLatin1Char('0'))
        .arg(QString::fromLatin1(id));
}

} // namespace

FuseauHoraire FuseauDepuis(const QByteArray &id, int annee)
{
    const QTimeZone zone(id);
    if (!zone.isValid())
        return {};
    FuseauHoraire f;
    f.id = id;
    const QDateTime debut(QDate(annee, 1, 1), QTime(0, 0), QTimeZone::utc());
    const QDateTime fin(QDate(annee + 1, 1, 1), QTime(0, 0), QTimeZone::utc());

    // The daylight period is the one of the higher offset, whatever the zone
    // database calls it (Dublin counts its winter as the exception).
    std::optional<QTimeZone::OffsetData> montee;
    std::optional<QTimeZone::OffsetData> descente;
    int avantMontee = 0;
    int avantDescente = 0;
    for (const QTimeZone::OffsetData &t : zone.transitions(debut, fin)) {
        const int avant = zone.offsetFromUtc(t.atUtc.addSecs(-1));
        if (t.offsetFromUtc > avant && !montee) {
            montee = t;
            avantMontee = avant;
        } else if (t.offsetFromUtc < avant && !descente) {
            descente = t;
            avantDescente = avant;
        }
    }
    if (montee && descente) {
        f.biais = descente->offsetFromUtc / 60;
        f.biaisEte = (montee->offsetFromUtc - descente->offsetFromUtc) / 60;
        f.dateEte = dateTransition(montee->atUtc.addSecs(avantMontee));
        f.dateStandard = dateTransition(descente->atUtc.addSecs(avantDescente));
    } else {
        // No change, or a lasting one within the year: the offset it ends with.
        f.biais = zone.offsetFromUtc(fin.addSecs(-1)) / 60;
    }
    f.nom = nomFuseau(id, f.biais);
    return f;
}

FuseauHoraire FuseauCourant()
{
    return FuseauDepuis(QTimeZone::systemTimeZoneId(), Horloge::aujourdhui().year());
}

QList<FuseauHoraire> TableFuseaux(int annee)
{
    QList<FuseauHoraire> table;
    for (const QByteArray &id : QTimeZone::availableTimeZoneIds()) {
        FuseauHoraire f = FuseauDepuis(id, annee);
        if (!f.estVide())
            table.append(std::move(f));
    }
    std::stable_sort(table.begin(), table.end(), [](const FuseauHoraire &a, const FuseauHoraire &b) {
        return a.biais != b.biais ? a.biais < b.biais : a.id < b.id;
    });
    return table;
}

bool AHeureEte(const FuseauHoraire &f)
{
    return f.dateStandard.mois > 0 && f.dateEte.mois > 0;
}

bool AjustementActif(const FuseauHoraire &f)
{
    return f.biaisEte > 0 || f.biaisStandard != 0;
}

int DecalageUtc(const FuseauHoraire &f, const QDateTime &moment)
{
    if (AjustementActif(f)) {
        const QTimeZone zone(f.id);
        if (zone.isValid())
            return zone.offsetFromUtc(moment) / 60;
    }
    return f.biais;
}

int DecalageEntre(const FuseauHoraire &principal, const FuseauHoraire &autre, const QDateTime &moment)
{
    return DecalageUtc(autre, moment) - DecalageUtc(principal, moment);
}
