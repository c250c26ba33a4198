#include "appointments/prochaincreneau.h"

#include "appointments/editionrdv.h"
#include "calendar/calendardataprovider.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/joursferies.h"
#include "shell/base/support.h"

#include <QHash>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr int minutesJour = 24 * 60;
constexpr int pasGrille = 5;
// The book is read a week at a time: most searches end in the first.
constexpr int joursParLecture = 7;

bool regleDuJour(const Regle &r, const QDate &jour, int jourNumero, int parite)
{
    return r.JourNumero == jourNumero && (r.Semaine == 3 || r.Semaine == parite) && r.DateDebut.isValid()
           && r.DateFin.isValid() && r.DateDebut <= jour && jour <= r.DateFin && r.HeureDebut.isValid()
           && r.HeureFin.isValid();
}

// For each minute of a day, whether it may be booked for the request: the
// rule that wins at its first second (as a new appointment is looked up,
// start plus one second) is of that practitioner and type, and the minute
// is not in the pause. Kept as running sums, so that a whole length is
// checked at once.
std::array<int, minutesJour + 1> minutesPermises(const QList<Regle> &regles, const QDate &jour, const DemandeCreneau &d)
{
    const int jourNumero = JourSemaineDimanche1(jour);
    const int parite = GetWeekParity(jour);
    std::array<int, minutesJour> gagnant;
    gagnant.fill(-1);
    // regles is sorted by Compteur descending: the first rule to claim a
    // minute is the one the lookup would answer.
    for (int i = 0; i < regles.size(); ++i) {
        const Regle &r = regles.at(i);
        if (!regleDuJour(r, jour, jourNumero, parite))
            continue;
        const int debut = r.HeureDebut.msecsSinceStartOfDay() / 1000;
        const int fin = r.HeureFin.msecsSinceStartOfDay() / 1000;
        // The minutes whose first second lies within the rule's hours.
        for (int m = std::max(0, (debut + 58) / 60); m < minutesJour && m * 60 + 1 <= fin; ++m) {
            if (gagnant[m] < 0)
                gagnant[m] = i;
        }
    }
    const bool pause = d.pauseDebut.isValid() && d.pauseFin.isValid() && jourNumero != 1;
    const int pauseDebut = pause ? d.pauseDebut.msecsSinceStartOfDay() / 1000 : 0;
    const int pauseFin = pause ? d.pauseFin.msecsSinceStartOfDay() / 1000 : 0;
    std::array<int, minutesJour + 1> sommes{};
    for (int m = 0; m < minutesJour; ++m) {
        const int g = gagnant[m];
        bool permise = g >= 0 && regles.at(g).PraticienNumero == d.praticien && regles.at(g).TypeRV == d.typeRV;
        if (pause && m * 60 >= pauseDebut && m * 60 < pauseFin)
            permise = false;
        sommes[m + 1] = sommes[m] + (permise ? 1 : 0);
    }
    return sommes;
}

QString texteJour(const QDate &d)
{
    return d.toString(QStringLiteral("dd/MM/yyyy"));
}

} // namespace

ResultatCreneau ChercherCreneauLibre(const DemandeCreneau &d, const SourcesCreneau &sources)
{
    ResultatCreneau resultat;
    if ((d.praticien != 1 && d.praticien != 2) || d.typeRV < 0 || d.typeRV > 6) {
        resultat.message = QStringLiteral("Choisissez d'abord un libellé qui désigne un praticien et un type de rendez-vous "
                                          "(« Absent » n'a pas de créneau).");
        return resultat;
    }
    if (!d.depuis.isValid() || d.dureeMinutes <= 0 || d.dureeMinutes > minutesJour) {
        resultat.message = QStringLiteral("La date de départ ou la durée du rendez-vous n'est pas valable.");
        return resultat;
    }
    QList<Regle> regles = sources.regles;
    std::sort(regles.begin(), regles.end(), [](const Regle &a, const Regle &b) { return a.Compteur > b.Compteur; });

    // The first start: the moment asked for, up to the next step of the grid.
    const QDate premier = d.depuis.date();
    const QTime t = d.depuis.time();
    const int depuisSecondes = t.hour() * 3600 + t.minute() * 60 + t.second();
    const int premiereMinute = (depuisSecondes + pasGrille * 60 - 1) / (pasGrille * 60) * pasGrille;

    // The bookable minutes of each day ahead, worked out once: a day that
    // cannot hold the length is never read from the book.
    std::vector<std::array<int, minutesJour + 1>> sommesJours(static_cast<std::size_t>(std::max(0, d.horizonJours)));
    std::vector<bool> candidats(sommesJours.size());
    for (std::size_t n = 0; n < sommesJours.size(); ++n) {
        const QDate jour = premier.addDays(qint64(n));
        if (d.sauterFeries && !NomJourFerie(jour).isEmpty())
            continue;
        sommesJours[n] = minutesPermises(regles, jour, d);
        candidats[n] = sommesJours[n][minutesJour] >= d.dureeMinutes;
    }

    QList<Occupation> occupees;
    int luJusquA = -1;
    for (int n = 0; n < d.horizonJours; ++n) {
        if (!candidats[std::size_t(n)])
            continue;
        const QDate jour = premier.addDays(n);
        if (n > luJusquA) {
            // One read up to the last day of the week ahead that may hold a
            // slot (a read costs by the days it spans): a practitioner who
            // works one afternoon a week costs one day's read a week.
            luJusquA = n;
            for (int k = n + 1; k < std::min(n + joursParLecture, d.horizonJours); ++k) {
                if (candidats[std::size_t(k)])
                    luJusquA = k;
            }
            const auto lues = sources.occupations ? sources.occupations(jour, premier.addDays(luJusquA))
                                                  : std::optional<QList<Occupation>>(QList<Occupation>());
            if (!lues) {
                resultat.message = QStringLiteral("Le carnet de rendez-vous n'a pas pu être lu (un autre poste l'occupe "
                                                  "peut-être) : réessayez dans un instant.");
                return resultat;
            }
            occupees = *lues;
        }
        const auto &sommes = sommesJours[std::size_t(n)];
        for (int m = n == 0 ? premiereMinute : 0; m + d.dureeMinutes <= minutesJour; m += pasGrille) {
            if (sommes[m + d.dureeMinutes] - sommes[m] != d.dureeMinutes)
                continue;
            const QDateTime debut(jour, QTime(m / 60, m % 60));
            const QDateTime fin = debut.addSecs(qint64(d.dureeMinutes) * 60);
            if (sources.reservees.contains(debut))
                continue;
            const bool libre = std::none_of(occupees.cbegin(), occupees.cend(),
                                            [&](const Occupation &o) { return o.debut < fin && debut < o.fin; });
            if (libre) {
                resultat.debut = debut;
                resultat.fin = fin;
                return resultat;
            }
        }
    }
    resultat.message = QStringLiteral("Aucun créneau libre de %1 minutes pour ce praticien et ce type de rendez-vous "
                                      "du %2 au %3.")
                           .arg(d.dureeMinutes)
                           .arg(texteJour(premier), texteJour(premier.addDays(d.horizonJours - 1)));
    return resultat;
}

namespace {

// The starts held by other stations, from the reservation rows of table Ini
// and their watch rows.
QSet<QDateTime> reservationsAutres(ConfigIni &config)
{
    QSet<QDateTime> tenues;
    QSqlQuery q(config.base().db());
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT Section, Item, Valeur FROM Ini WHERE Item = ? OR Item = ?"));
    q.addBindValue(QStringLiteral("Réservation"));
    q.addBindValue(ItemVeilleReservation);
    if (!q.exec())
        return tenues;
    QHash<QString, QString> valeurs;
    QHash<QString, QString> veilles;
    while (q.next()) {
        const QString section = q.value(0).toString();
        (q.value(1).toString() == ItemVeilleReservation ? veilles : valeurs).insert(section, q.value(2).toString());
    }
    q.finish();
    const QString moi = ValeurReservation();
    const QDateTime maintenant = Horloge::maintenant();
    const QString poste = NomOrdinateur();
    for (auto it = valeurs.cbegin(); it != valeurs.cend(); ++it) {
        if (it.value().isEmpty() || it.value() == moi || ReservationAbandonnee(veilles.value(it.key()), maintenant, poste))
            continue;
        QDateTime debut = QDateTime::fromString(it.key(), QStringLiteral("dd/MM/yyyy HH:mm:ss"));
        if (!debut.isValid())
            debut = QDateTime(QDate::fromString(it.key(), QStringLiteral("dd/MM/yyyy")), QTime(0, 0));
        if (debut.isValid())
            tenues.insert(debut);
    }
    return tenues;
}

} // namespace

ResultatCreneau ProchainCreneauLibre(ConfigIni &config, CalendarDataProvider &provider, const DemandeCreneau &demande,
                                     const CalendarEvent *deplace)
{
    SourcesCreneau sources;
    for (int jour = 1; jour <= 7; ++jour)
        sources.regles += ListerRegles(config, jour, demande.depuis.date());
    sources.reservees = reservationsAutres(config);
    const int idDeplace = deplace ? deplace->EventID() : 0;
    const QDateTime debutDeplace = deplace ? deplace->StartDateTime() : QDateTime();
    sources.occupations = [&](const QDate &premier, const QDate &dernier) -> std::optional<QList<Occupation>> {
        const QList<CalendarEventPtr> lus = provider.RetrieveEvents(premier, dernier);
        if (provider.LastReadFailed())
            return std::nullopt;
        QList<Occupation> occupees;
        occupees.reserve(lus.size());
        for (const CalendarEventPtr &e : lus) {
            // An occurrence shares its series' key: the start tells it apart.
            if (deplace && e->EventID() == idDeplace && e->StartDateTime() == debutDeplace)
                continue;
            occupees.append({e->StartDateTime(), e->EndDateTime()});
        }
        return occupees;
    };
    return ChercherCreneauLibre(demande, sources);
}
