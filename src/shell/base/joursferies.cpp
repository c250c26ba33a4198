#include "shell/base/joursferies.h"

#include <QStringList>

#include <algorithm>
#include <atomic>

namespace {

std::atomic_bool alsaceMosellePratique{false};

} // namespace

QDate DatePaques(int annee)
{
    if (annee < 1583)
        return {};
    // The anonymous Gregorian computus (Meeus, Jones, Butcher).
    const int a = annee % 19;
    const int b = annee / 100;
    const int c = annee % 100;
    const int d = b / 4;
    const int e = b % 4;
    const int f = (b + 8) / 25;
    const int g = (b - f + 1) / 3;
    const int h = (19 * a + b - d - g + 15) % 30;
    const int i = c / 4;
    const int k = c % 4;
    const int l = (32 + 2 * e + 2 * i - h - k) % 7;
    const int m = (a + 11 * h + 22 * l) / 451;
    const int mois = (h + l - 7 * m + 114) / 31;
    const int jour = (h + l - 7 * m + 114) % 31 + 1;
    return QDate(annee, mois, jour);
}

QList<JourFerie> JoursFeries(int annee, bool alsaceMoselle)
{
    const QDate paques = DatePaques(annee);
    if (!paques.isValid())
        return {};
    QList<JourFerie> jours{
        {QDate(annee, 1, 1), QStringLiteral("Jour de l'an")},
        {paques.addDays(1), QStringLiteral("Lundi de Pâques")},
        {QDate(annee, 5, 1), QStringLiteral("Fête du Travail")},
        {QDate(annee, 5, 8), QStringLiteral("Victoire 1945")},
        {paques.addDays(39), QStringLiteral("Ascension")},
        {paques.addDays(50), QStringLiteral("Lundi de Pentecôte")},
        {QDate(annee, 7, 14), QStringLiteral("Fête nationale")},
        {QDate(annee, 8, 15), QStringLiteral("Assomption")},
        {QDate(annee, 11, 1), QStringLiteral("Toussaint")},
        {QDate(annee, 11, 11), QStringLiteral("Armistice 1918")},
        {QDate(annee, 12, 25), QStringLiteral("Noël")},
    };
    if (alsaceMoselle) {
        jours.append({paques.addDays(-2), QStringLiteral("Vendredi saint")});
        jours.append({QDate(annee, 12, 26), QStringLiteral("Saint-Étienne")});
    }
    // Ascension can fall on 1 or 8 May: both names are kept, the order by
    // date is what the callers rely on.
    std::stable_sort(jours.begin(), jours.end(), [](const JourFerie &x, const JourFerie &y) { return x.date < y.date; });
    return jours;
}

QString NomJourFerie(const QDate &date, bool alsaceMoselle)
{
    if (!date.isValid())
        return {};
    QStringList noms;
    for (const JourFerie &j : JoursFeries(date.year(), alsaceMoselle)) {
        if (j.date == date)
            noms << j.nom;
    }
    return noms.join(QStringLiteral(", "));
}

QString NomJourFerie(const QDate &date)
{
    return NomJourFerie(date, FeriesAlsaceMoselle());
}

void FixerFeriesAlsaceMoselle(bool actif)
{
    alsaceMosellePratique = actif;
}

bool FeriesAlsaceMoselle()
{
    return alsaceMosellePratique;
}

QString AvertissementJourFerie(const QDate &date)
{
    const QString nom = NomJourFerie(date);
    if (nom.isEmpty())
        return {};
    return QStringLiteral("Le %1 est un jour férié (%2).").arg(date.toString(QStringLiteral("dd/MM/yyyy")), nom);
}
