#include "appointments/miroir.h"

#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "patients/schemapatients.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/horloge.h"
#include "shell/journal.h"
#include "shell/base/prompt.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <exception>
#include <utility>

namespace {

// Length of the columns Praticien and Motif: a longer text would be refused by
// the base, and the whole of it stays in the calendar.
constexpr int LongueurTexte = 64;

QString texteErreur(const QSqlQuery &q)
{
    const QSqlError e = q.lastError();
    return e.databaseText().isEmpty() ? e.text() : e.databaseText();
}

QVariant dateHeure(const QDateTime &moment)
{
    return moment.isValid() ? QVariant(moment.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))) : QVariant();
}

// The busy wait of the next opening: the replay at each refresh waits
// briefly, so that a file held elsewhere never holds the window.
int g_delai = -1;

std::unique_ptr<BaseSqlite> ouvrirBase(const QString &cheminBaseAgenda, QString &raison)
{
    return BaseSqlite::ouvrir(CheminPatientsMdb(cheminBaseAgenda), BaseSqlite::Mode::Existante, &raison, nullptr, g_delai);
}

constexpr int DelaiRejeu = 250;

void signaler(const QString &raison, bool refaite = false)
{
    QString texte = TexteEchecMiroir(raison);
    if (refaite)
        texte += QStringLiteral("\nLa copie sera refaite automatiquement dès que le fichier sera libre.");
    Prompt::informer(TitreEchecMiroir(), texte, Prompt::Icone::Exclamation);
}

// One copy to write again: the row of the event (a copy of it, as it was
// when the change was made), or its deletion when there is no event.
struct CopieEnAttente
{
    QString chemin;
    int eventId = 0;
    CalendarEventPtr evenement;
    QString praticien;
};

QList<CopieEnAttente> &enAttente()
{
    static QList<CopieEnAttente> liste;
    return liste;
}

std::optional<QString> appliquer(const CopieEnAttente &c)
{
    if (c.evenement)
        return EcrireMiroir(c.chemin, *c.evenement, c.praticien);
    return EffacerMiroir(c.chemin, c.eventId);
}

// Writes the copy now, after what waits for the same key; on a failure it
// waits in turn, and the reason is told. A row whose event gives no patient
// number is refused for good: it is told and not kept.
void copier(CopieEnAttente copie)
{
    QList<CopieEnAttente> &liste = enAttente();
    liste.removeIf([&](const CopieEnAttente &c) { return c.chemin == copie.chemin && c.eventId == copie.eventId; });
    RejouerMiroir(copie.chemin);
    const auto raison = appliquer(copie);
    if (!raison)
        return;
    const bool refaite = !copie.evenement || NumeroPatientBody(copie.evenement->Body());
    if (refaite)
        liste.append(std::move(copie));
    signaler(*raison, refaite);
}

// Added and changed differ only by the journal's action.
void ecrireEtJournaliser(const CalendarEventPtr &event, qint16 action)
{
    if (!event)
        return;
    try {
        AppState &etat = appState();
        etat.RegleCourante = GetRegleForDate(event->StartDateTime());
        copier({etat.CheminBaseAgenda, event->EventID(), event->CloneEvent(), etat.RegleCourante.Praticien});
        EcrireJournal(event, action);
    } catch (const std::exception &e) {
        signaler(QString::fromLocal8Bit(e.what()));
    } catch (...) {
        signaler(QStringLiteral("erreur inattendue."));
    }
}

} // namespace

QString TitreEchecMiroir()
{
    return QStringLiteral("Erreur");
}

QString TexteEchecMiroir(const QString &raison)
{
    return QStringLiteral("Le rendez-vous est bien enregistré dans l'agenda, mais sa copie dans le fichier des "
                          "patients a échoué :\n")
           + raison;
}

std::optional<QString> EcrireMiroir(const QString &cheminBaseAgenda, const CalendarEvent &event, const QString &praticien)
{
    const std::optional<qint64> numero = NumeroPatientBody(event.Body());
    if (!numero)
        return QStringLiteral("le texte du rendez-vous ne contient pas le numéro du patient.");

    QString raison;
    const auto base = ouvrirBase(cheminBaseAgenda, raison);
    if (!base)
        return raison;
    QSqlDatabase db = base->db();
    // The write lock is taken first, so that a station writing at the same
    // moment is waited for (a read that turns into a write is refused at
    // once instead).
    if (QString detail; !base->executer(QStringLiteral("BEGIN IMMEDIATE"), &detail))
        return detail;

    auto echec = [&](const QSqlQuery &q) -> std::optional<QString> {
        const QString texte = texteErreur(q);
        base->executer(QStringLiteral("ROLLBACK"));
        return texte;
    };

    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT count(*) FROM Events WHERE ID = ?"));
    q.addBindValue(event.EventID());
    if (!q.exec() || !q.next())
        return echec(q);
    const bool existe = q.value(0).toLongLong() == 1;
    q.finish();

    const QDateTime debut = event.StartDateTime();
    QSqlQuery ecriture(db);
    ecriture.prepare(existe ? QStringLiteral("UPDATE Events SET Numero = ?, DateRv = ?, HeureRV = ?, DateModif = ?, "
                                             "Praticien = ?, Motif = ?, DatePrise = ? WHERE ID = ?")
                            : QStringLiteral("INSERT INTO Events (Numero, DateRv, HeureRV, DateModif, Praticien, Motif, "
                                             "DatePrise, ID) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    ecriture.addBindValue(*numero);
    ecriture.addBindValue(debut.isValid() ? QVariant(debut.date().toString(QStringLiteral("yyyy-MM-dd"))) : QVariant());
    ecriture.addBindValue(debut.isValid() ? QVariant(debut.time().toString(QStringLiteral("HH:mm:ss"))) : QVariant());
    ecriture.addBindValue(dateHeure(Horloge::maintenant()));
    ecriture.addBindValue(praticien.left(LongueurTexte));
    ecriture.addBindValue(event.Location().left(LongueurTexte));
    ecriture.addBindValue(dateHeure(event.CreationTime()));
    ecriture.addBindValue(event.EventID());
    if (!ecriture.exec())
        return echec(ecriture);
    if (QString detail; !base->executer(QStringLiteral("COMMIT"), &detail)) {
        base->executer(QStringLiteral("ROLLBACK"));
        return detail;
    }
    return std::nullopt;
}

std::optional<QString> EffacerMiroir(const QString &cheminBaseAgenda, int eventId)
{
    QString raison;
    const auto base = ouvrirBase(cheminBaseAgenda, raison);
    if (!base)
        return raison;
    return EffacerMiroir(*base, {eventId});
}

std::optional<QString> EffacerMiroir(BaseSqlite &base, const QList<int> &eventIds)
{
    QString detail;
    if (!base.executer(QStringLiteral("BEGIN IMMEDIATE"), &detail))
        return detail;
    QSqlQuery q(base.db());
    q.prepare(QStringLiteral("DELETE FROM Events WHERE ID = ?"));
    for (const int id : eventIds) {
        q.addBindValue(id);
        if (!q.exec()) {
            detail = texteErreur(q);
            q.finish();
            base.executer(QStringLiteral("ROLLBACK"));
            return detail;
        }
    }
    if (!base.executer(QStringLiteral("COMMIT"), &detail)) {
        base.executer(QStringLiteral("ROLLBACK"));
        return detail;
    }
    return std::nullopt;
}

void MiroirEvenementAjoute(const CalendarEventPtr &event)
{
    ecrireEtJournaliser(event, JournalNouveau);
}

void MiroirEvenementModifie(const CalendarEventPtr &event)
{
    ecrireEtJournaliser(event, JournalModification);
}

void MiroirEvenementSupprime(const CalendarEventPtr &event)
{
    if (!event)
        return;
    try {
        copier({appState().CheminBaseAgenda, event->EventID(), {}, {}});
        EcrireJournal(event, JournalEffacement);
    } catch (const std::exception &e) {
        signaler(QString::fromLocal8Bit(e.what()));
    } catch (...) {
        signaler(QStringLiteral("erreur inattendue."));
    }
}

void BrancherMiroir(CalendarDataProvider &provider)
{
    QObject::connect(&provider, &CalendarDataProvider::eventAdded, &provider, &MiroirEvenementAjoute);
    QObject::connect(&provider, &CalendarDataProvider::eventChanged, &provider, &MiroirEvenementModifie);
    QObject::connect(&provider, &CalendarDataProvider::eventDeleted, &provider, &MiroirEvenementSupprime);
    // The exceptions of a series that go with it (or leave it) take their
    // copies along.
    QObject::connect(&provider, &CalendarDataProvider::rowsRemoved, &provider, [](const QList<int> &ids) {
        for (const int id : ids)
            copier({appState().CheminBaseAgenda, id, {}, {}});
    });
}

int RejouerMiroir(const QString &cheminBaseAgenda)
{
    QList<CopieEnAttente> &liste = enAttente();
    const int delai = std::exchange(g_delai, DelaiRejeu);
    for (qsizetype i = 0; i < liste.size();) {
        if (liste.at(i).chemin != cheminBaseAgenda) {
            ++i;
            continue;
        }
        if (appliquer(liste.at(i)))
            break;
        liste.removeAt(i);
    }
    g_delai = delai;
    return int(std::count_if(liste.cbegin(), liste.cend(),
                             [&](const CopieEnAttente &c) { return c.chemin == cheminBaseAgenda; }));
}
