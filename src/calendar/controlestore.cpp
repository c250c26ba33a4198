#include "calendar/controlestore.h"

#include "shell/base/basesqlite.h"
#include "shell/base/support.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

namespace {

int compte(QSqlQuery &q, const QString &sql)
{
    return q.exec(sql) && q.next() ? q.value(0).toInt() : -1;
}

// Each rule is a query listing the rows that break it, with the text that
// says so.
struct Regle
{
    const char *sql;
    const char *texte;
};

const Regle kRegles[] = {
    {"SELECT EventID FROM CalendarEvents WHERE RecurrenceState NOT IN (0, 1, 3)",
     "le rendez-vous %1 a un état de récurrence inconnu (une occurrence n'est jamais enregistrée)"},
    {"SELECT EventID FROM CalendarEvents WHERE RecurrenceState = 0 AND RecurrencePatternID <> 0",
     "le rendez-vous simple %1 désigne une série"},
    {"SELECT EventID FROM CalendarEvents e WHERE RecurrenceState = 1 AND NOT EXISTS "
     "(SELECT 1 FROM CalendarRecurrencePatterns p WHERE p.RecurrencePatternID = e.RecurrencePatternID AND e.RecurrencePatternID <> 0)",
     "la série du rendez-vous maître %1 est introuvable"},
    {"SELECT EventID FROM CalendarEvents e WHERE RecurrenceState = 1 AND EXISTS "
     "(SELECT 1 FROM CalendarRecurrencePatterns p WHERE p.RecurrencePatternID = e.RecurrencePatternID AND p.MasterEventID <> e.EventID)",
     "la série du rendez-vous maître %1 désigne un autre maître"},
    {"SELECT RecurrencePatternID FROM CalendarRecurrencePatterns p WHERE NOT EXISTS "
     "(SELECT 1 FROM CalendarEvents e WHERE e.EventID = p.MasterEventID AND e.RecurrenceState = 1 "
     "AND e.RecurrencePatternID = p.RecurrencePatternID)",
     "la série %1 n'a pas de rendez-vous maître qui la désigne"},
    {"SELECT EventID FROM CalendarEvents e WHERE RecurrenceState = 3 AND NOT EXISTS "
     "(SELECT 1 FROM CalendarRecurrencePatterns p WHERE p.RecurrencePatternID = e.RecurrencePatternID AND e.RecurrencePatternID <> 0)",
     "l'exception %1 désigne une série introuvable"},
    {"SELECT EventID FROM CalendarEvents WHERE EndDateTime < StartDateTime",
     "le rendez-vous %1 finit avant de commencer"},
};

} // namespace

ControleStore ControlerStore(const QString &dossier)
{
    ControleStore r;
    const QString chemin = AjouterSlash(dossier) + QStringLiteral("Events.mdb");
    if (!QFileInfo(chemin).isFile()) {
        r.erreur = QStringLiteral("Le fichier %1 est introuvable.").arg(chemin);
        return r;
    }
    const auto base = BaseSqlite::ouvrir(chemin, BaseSqlite::Mode::Existante, &r.erreur);
    if (!base)
        return r;
    if (!base->tableExiste(QStringLiteral("CalendarEvents")) || !base->tableExiste(QStringLiteral("CalendarRecurrencePatterns"))) {
        r.erreur = QStringLiteral("Le fichier %1 n'a pas les tables du calendrier.").arg(chemin);
        return r;
    }
    r.ouvert = true;
    QSqlQuery q(base->db());
    r.evenements = compte(q, QStringLiteral("SELECT count(*) FROM CalendarEvents"));
    r.simples = compte(q, QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE RecurrenceState = 0"));
    r.maitres = compte(q, QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE RecurrenceState = 1"));
    r.exceptions = compte(q, QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE RecurrenceState = 3"));
    r.supprimees = compte(q, QStringLiteral("SELECT count(*) FROM CalendarEvents WHERE RecurrenceState = 3 AND ISRecurrenceExceptionDeleted <> 0"));
    r.series = compte(q, QStringLiteral("SELECT count(*) FROM CalendarRecurrencePatterns"));
    for (const Regle &regle : kRegles) {
        if (!q.exec(QString::fromLatin1(regle.sql))) {
            r.problemes << QStringLiteral("contrôle impossible : ") + q.lastError().text();
            continue;
        }
        while (q.next())
            r.problemes << QString::fromUtf8(regle.texte).arg(q.value(0).toInt());
    }
    return r;
}
