#include "appointments/prochaincreneau.h"
#include "support/configtest.h"

#include <QtTest>

namespace {

Regle regle(qint32 compteur, int jour, const char *debut, const char *fin, int praticien, int type)
{
    Regle r = RegleDe2026(jour, QTime::fromString(QString::fromLatin1(debut), QStringLiteral("HH:mm")),
                          QTime::fromString(QString::fromLatin1(fin), QStringLiteral("HH:mm")), praticien, type);
    r.Compteur = compteur;
    return r;
}

QDateTime moment(const QString &texte)
{
    return QDateTime::fromString(texte, QStringLiteral("yyyy-MM-dd HH:mm"));
}

} // namespace

// The week of 2 March 2026: practitioner 1, type 0, Monday to Friday 08:00 to
// 19:00, except Tuesday 08:00-10:00 (practitioner 2), Wednesday 08:00-09:00
// (type 1) and the whole Thursday ("Absent"), by later rules.
class tst_prochaincreneau : public QObject
{
    Q_OBJECT

private slots:
    void chercher_data()
    {
        QTest::addColumn<QString>("depuis");
        QTest::addColumn<int>("praticien");
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("duree");
        QTest::addColumn<QStringList>("occupees"); // "yyyy-MM-dd HH:mm|HH:mm"
        QTest::addColumn<QStringList>("reservees");
        QTest::addColumn<QString>("attendu"); // a start, or the beginning of the message
        auto ligne = [](const char *nom, const char *depuis, int p, int t, int duree, const QStringList &occ,
                        const QStringList &res, const char *attendu) {
            QTest::newRow(nom) << QString::fromLatin1(depuis) << p << t << duree << occ << res << QString::fromUtf8(attendu);
        };
        ligne("libre", "2026-03-02 08:00", 1, 0, 15, {}, {}, "2026-03-02 08:00");
        ligne("sur la grille de 5 minutes", "2026-03-02 08:02", 1, 0, 15, {}, {}, "2026-03-02 08:05");
        ligne("pris", "2026-03-02 08:00", 1, 0, 15, {"2026-03-02 08:00|08:20"}, {}, "2026-03-02 08:20");
        ligne("trou trop court", "2026-03-02 08:00", 1, 0, 30, {"2026-03-02 08:00|08:30", "2026-03-02 08:45|09:00"}, {},
              "2026-03-02 09:00");
        ligne("tenu par un autre poste", "2026-03-02 08:00", 1, 0, 15, {}, {"2026-03-02 08:00"}, "2026-03-02 08:05");
        ligne("pause", "2026-03-02 11:50", 1, 0, 15, {}, {}, "2026-03-02 14:00");
        ligne("autre praticien", "2026-03-03 08:00", 1, 0, 15, {}, {}, "2026-03-03 10:00");
        ligne("praticien 2 le lendemain", "2026-03-02 08:00", 2, 0, 15, {}, {}, "2026-03-03 08:00");
        ligne("autre type", "2026-03-04 08:00", 1, 0, 15, {}, {}, "2026-03-04 09:00");
        ligne("type 1", "2026-03-02 08:00", 1, 1, 30, {}, {}, "2026-03-04 08:00");
        ligne("absent le jeudi", "2026-03-05 08:00", 1, 0, 15, {}, {}, "2026-03-06 08:00");
        ligne("fin de regle incluse", "2026-03-06 18:45", 1, 0, 15, {}, {}, "2026-03-06 18:45");
        ligne("semaine suivante", "2026-03-06 18:50", 1, 0, 15, {}, {}, "2026-03-09 08:00");
        ligne("journee entiere prise", "2026-03-02 08:00", 1, 0, 15, {"2026-03-02 00:00|2026-03-03 00:00"}, {},
              "2026-03-03 10:00");
        ligne("jour ferie", "2026-04-06 08:00", 1, 0, 15, {}, {}, "2026-04-07 10:00");
        ligne("aucun dans l'horizon", "2026-03-02 08:00", 2, 1, 15, {}, {}, "Aucun créneau libre de 15 minutes");
        ligne("apres la fin des regles", "2026-12-31 19:00", 1, 0, 15, {}, {}, "Aucun créneau libre");
        ligne("absent choisi", "2026-03-02 08:00", 1, 7, 15, {}, {}, "Choisissez d'abord");
    }

    void chercher()
    {
        QFETCH(QString, depuis);
        QFETCH(int, praticien);
        QFETCH(int, type);
        QFETCH(int, duree);
        QFETCH(QStringList, occupees);
        QFETCH(QStringList, reservees);
        QFETCH(QString, attendu);

        SourcesCreneau sources;
        for (int jour = 2; jour <= 6; ++jour)
            sources.regles << regle(jour - 1, jour, "08:00", "19:00", 1, 0);
        sources.regles << regle(10, 3, "08:00", "10:00", 2, 0) << regle(11, 4, "08:00", "09:00", 1, 1)
                       << regle(12, 5, "00:00", "23:59", 1, 7);
        QList<Occupation> occ;
        for (const QString &o : occupees) {
            const QString debut = o.section(u'|', 0, 0);
            const QString fin = o.section(u'|', 1, 1);
            occ.append({moment(debut), moment(fin.size() > 5 ? fin : debut.left(11) + fin)});
        }
        QList<QDate> lectures;
        sources.occupations = [&](const QDate &premier, const QDate &dernier) -> std::optional<QList<Occupation>> {
            lectures << premier << dernier;
            return occ;
        };
        for (const QString &r : reservees)
            sources.reservees.insert(moment(r));

        DemandeCreneau d;
        d.praticien = static_cast<qint16>(praticien);
        d.typeRV = static_cast<qint16>(type);
        d.depuis = moment(depuis);
        d.dureeMinutes = duree;
        d.pauseDebut = QTime(12, 0);
        d.pauseFin = QTime(14, 0);
        const ResultatCreneau r = ChercherCreneauLibre(d, sources);
        if (moment(attendu).isValid()) {
            QCOMPARE(r.debut, moment(attendu));
            QCOMPARE(r.fin, r.debut.addSecs(60 * duree));
            QVERIFY(r.message.isEmpty());
            // The book is read a week at a time from the first day that may
            // hold a slot.
            QVERIFY(lectures.first() >= d.depuis.date() && lectures.first() <= r.debut.date());
            QVERIFY(lectures.last() >= r.debut.date() && lectures.size() <= 4);
        } else {
            QVERIFY(!r.trouve());
            QVERIFY2(r.message.startsWith(attendu), qPrintable(r.message));
        }
    }
};

QTEST_GUILESS_MAIN(tst_prochaincreneau)
#include "tst_prochaincreneau.moc"
