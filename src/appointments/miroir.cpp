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

#include <exception>

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

std::unique_ptr<BaseSqlite> ouvrirBase(const QString &cheminBaseAgenda, QString &raison)
{
    return BaseSqlite::ouvrir(CheminPatientsMdb(cheminBaseAgenda), BaseSqlite::Mode::Existante, &raison);
}

void signaler(const QString &raison)
{
    Prompt::informer(TitreEchecMiroir(), TexteEchecMiroir(raison), Prompt::Icone::Exclamation);
}

// Added and changed differ only by the journal's action.
void ecrireEtJournaliser(const CalendarEventPtr &event, qint16 action)
{
    if (!event)
        return;
    try {
        AppState &etat = appState();
        etat.RegleCourante = GetRegleForDate(event->StartDateTime());
        if (const auto raison = EcrireMiroir(etat.CheminBaseAgenda, *event, etat.RegleCourante.Praticien))
            signaler(*raison);
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
    if (!db.transaction())
        return db.lastError().text();

    auto echec = [&](const QSqlQuery &q) -> std::optional<QString> {
        const QString texte = texteErreur(q);
        db.rollback();
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
    if (!db.commit())
        return db.lastError().text();
    return std::nullopt;
}

std::optional<QString> EffacerMiroir(const QString &cheminBaseAgenda, int eventId)
{
    QString raison;
    const auto base = ouvrirBase(cheminBaseAgenda, raison);
    if (!base)
        return raison;
    QSqlQuery q(base->db());
    q.prepare(QStringLiteral("DELETE FROM Events WHERE ID = ?"));
    q.addBindValue(eventId);
    if (!q.exec())
        return texteErreur(q);
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
        if (const auto raison = EffacerMiroir(appState().CheminBaseAgenda, event->EventID()))
            signaler(*raison);
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
}
