#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

// The time zones of the calendar's two time scales, as the system's zone
// database describes them for one year.
//
// Offsets are minutes added to UTC to give the zone's wall clock: biais is
// the winter (lower) offset, biaisEte what daylight saving time adds to it
// (60 for Paris), biaisStandard what standard time adds (0 for every zone
// built here; a zone whose adjustment is off has both set to 0).

// When a change of offset happens, as the zone's wall clock reads just before
// it: the n-th (1 to 4, 5 for the last) weekday (0 Sunday to 6 Saturday) of a
// month (1 to 12; 0 when the zone has no such change).
struct DateTransition
{
    int mois = 0;
    int semaine = 0;
    int jourSemaine = 0;
    int heure = 0;
    int minute = 0;

    friend bool operator==(const DateTransition &, const DateTransition &) = default;
};

struct FuseauHoraire
{
    QByteArray id;   // the zone database's name, "Europe/Paris"; empty for none
    QString nom;     // "(UTC+01:00) Europe/Paris"
    int biais = 0;
    DateTransition dateStandard;
    int biaisStandard = 0;
    DateTransition dateEte;
    int biaisEte = 0;

    [[nodiscard]] bool estVide() const { return id.isEmpty(); }
    friend bool operator==(const FuseauHoraire &, const FuseauHoraire &) = default;
};

// The zone as it stands in the given year; an unknown id gives an empty zone.
[[nodiscard]] FuseauHoraire FuseauDepuis(const QByteArray &id, int annee);
// The workstation's own zone, this year.
[[nodiscard]] FuseauHoraire FuseauCourant();
// Every zone the system offers, ordered by winter offset, then by name.
[[nodiscard]] QList<FuseauHoraire> TableFuseaux(int annee);

// A zone has daylight saving when both its change dates name a month.
[[nodiscard]] bool AHeureEte(const FuseauHoraire &f);
// Its clock is adjusted when daylight time adds to it or standard time is
// shifted.
[[nodiscard]] bool AjustementActif(const FuseauHoraire &f);

// Minutes to add to UTC for the zone's wall clock at a moment: the zone
// database's answer while the adjustment is on, the plain winter offset
// otherwise.
[[nodiscard]] int DecalageUtc(const FuseauHoraire &f, const QDateTime &moment);
// Minutes from the main zone's clock to the other zone's at a moment (the
// second time scale reads the main one plus this).
[[nodiscard]] int DecalageEntre(const FuseauHoraire &principal, const FuseauHoraire &autre, const QDateTime &moment);
