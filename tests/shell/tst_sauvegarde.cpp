#include "shell/base/basesqlite.h"
#include "shell/sauvegarde.h"
#include "support/admintest.h"
#include "support/dossiertest.h"

#include <QDir>
#include <QProcess>
#include <QSqlQuery>
#include <QtTest>

namespace {

int rendezVous(BaseSqlite &base)
{
    QSqlQuery q(base.db());
    return q.exec(QStringLiteral("SELECT count(*) FROM CalendarEvents")) && q.next() ? q.value(0).toInt() : -1;
}

int rendezVous(const QString &fichier)
{
    const auto base = BaseSqlite::ouvrir(fichier, BaseSqlite::Mode::Lecture);
    return base ? rendezVous(*base) : -1;
}

} // namespace

class tst_sauvegarde : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Backups taken while a station books, the oldest dropped beyond those
    // kept, one of them put back while a station holds the file open, and a
    // damaged one refused.
    void sauvegardeEtRestauration()
    {
        DossierProgrammeTest dossier;
        const QString d = dossier.chemin();
        const QString racine = d + QStringLiteral("sauvegardes/Agenda/");
        dossier.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Sauvegarge]\nCheminSauve=%1sauvegardes\n").arg(d));
        QProcess poste;
        poste.start(qEnvironmentVariable("TAVONEL_ADMIN_EXE"), {QStringLiteral("book-test"), d, QStringLiteral("600"),
                                                                QStringLiteral("1"), QStringLiteral("15")});
        QTRY_VERIFY_WITH_TIMEOUT(rendezVous(d + QStringLiteral("Events.mdb")) > 0, 30000);
        QList<int> comptes;
        for (int i = 0; i < 3; ++i) {
            const SortieAdmin s = lancerAdmin({QStringLiteral("sauvegarde"), d});
            QVERIFY2(s.code == 0, qPrintable(s.erreurs));
            comptes << rendezVous(s.texte.section(QStringLiteral(" : "), 1).trimmed() + QStringLiteral("/Events.mdb"));
            QTest::qWait(1100);
        }
        QVERIFY2(poste.state() == QProcess::Running, "the station stopped booking before the backups were done");
        QTRY_VERIFY_WITH_TIMEOUT(poste.state() == QProcess::NotRunning, 120000);
        QCOMPARE(poste.exitCode(), 0);
        QVERIFY2(comptes.first() > 0 && comptes.last() < 600 && std::is_sorted(comptes.begin(), comptes.end()),
                 qPrintable(QStringLiteral("%1 %2 %3").arg(comptes.at(0)).arg(comptes.at(1)).arg(comptes.at(2))));
        const QStringList faites = QDir(racine).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        QCOMPARE(faites.size(), 3);
        for (const QString &f : faites)
            QCOMPARE(VerifierSauvegarde(racine + f, StoresAgenda(d, d)), QStringList());

        // Put back while a station has the book open: it reads the old state.
        const auto ouverte = BaseSqlite::ouvrir(d + QStringLiteral("Events.mdb"), BaseSqlite::Mode::Existante);
        QCOMPARE(rendezVous(*ouverte), 600);
        const SortieAdmin remise = lancerAdmin({QStringLiteral("restaurer"), d, racine + faites.first()});
        QVERIFY2(remise.code == 0, qPrintable(remise.erreurs));
        QCOMPARE(rendezVous(*ouverte), comptes.first());
        QCOMPARE(QDir(racine).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 4);

        // A backup with a damaged page is refused and nothing changes.
        QFile abime(racine + faites.last() + QStringLiteral("/Events.mdb"));
        QVERIFY(abime.open(QIODevice::ReadWrite) && abime.seek(4096 + 8) && abime.write(QByteArray(3000, 'x')) == 3000);
        abime.close();
        const SortieAdmin refus = lancerAdmin({QStringLiteral("restaurer"), d, racine + faites.last()});
        QCOMPARE(refus.code, 1);
        QVERIFY2(refus.erreurs.contains(QStringLiteral("Problème : Events.mdb est endommagé")), qPrintable(refus.erreurs));
        QCOMPARE(rendezVous(*ouverte), comptes.first());

        // Only the last ones are kept.
        const QList<StoreAgenda> stores = StoresAgenda(d, d);
        for (int h = 10; h < 13; ++h)
            QVERIFY(!Sauvegarder(stores, racine, QDateTime(QDate(9999, 1, 1), QTime(h, 0)), 2).erreur);
        QCOMPARE(QDir(racine).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                 (QStringList{"99990101-110000", "99990101-120000"}));
    }
};

QTEST_GUILESS_MAIN(tst_sauvegarde)
#include "tst_sauvegarde.moc"
