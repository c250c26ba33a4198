#include "patients/dialoguesouverts.h"
#include "rules/frmpraticiens.h"
#include "rules/praticiens.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/modal.h"
#include "support/configtest.h"
#include "support/repondeurscripte.h"

#include <QPushButton>
#include <QSqlQuery>
#include <QtTest>

class tst_praticiens : public QObject
{
    Q_OBJECT

private:
    ConfigTest m_config;

    static void viderConfig()
    {
        QSqlQuery q(ConfigOuverte()->base().db());
        QVERIFY(q.exec(QStringLiteral("DELETE FROM Regles")));
        QVERIFY(q.exec(QStringLiteral("DELETE FROM Ini")));
    }

    // A rule of every week on Monday 2 March 2026, between two hours.
    static void ajouterRegle(const QTime &debut, const QTime &fin, int numero, const QString &praticien, int type)
    {
        QVERIFY(AjouterRegle(*ConfigOuverte(), RegleDe2026(2, debut, fin, numero, type, praticien)) > 0);
    }

private slots:
    void initTestCase() { QVERIFY(m_config.estOuverte()); }
    void init() { viderConfig(); }

    void chooser_data()
    {
        QTest::addColumn<bool>("reglages");
        QTest::addColumn<int>("bouton");
        QTest::addColumn<QString>("nom");
        QTest::addColumn<QString>("couleur");
        QTest::newRow("sans réglage, premier") << false << 0 << "Praticien 1" << "&HFFFFFF";
        QTest::newRow("sans réglage, second") << false << 1 << "Praticien 2" << "&HFFFFFF";
        QTest::newRow("noms et couleurs") << true << 1 << "Dr Bernard" << "&HC0FFC0";
    }
    void chooser()
    {
        QFETCH(bool, reglages);
        QFETCH(int, bouton);
        QFETCH(QString, nom);
        QFETCH(QString, couleur);
        if (reglages) {
            EcrireConfig(QStringLiteral("Praticien1"), QStringLiteral("Nom"), QStringLiteral("Dr Aubert"));
            EcrireConfig(QStringLiteral("Praticien2"), QStringLiteral("Nom"), QStringLiteral("Dr Bernard"));
            EcrireConfig(QStringLiteral("RDVType1"), QStringLiteral("Couleur2"), QStringLiteral("&HC0FFC0"));
        }
        static int ouverts = 0;
        FixerCompteurDialogues(&ouverts);
        frmPraticiens d;
        QCOMPARE(d.windowTitle(), QStringLiteral("Choisir un Praticien"));
        QCOMPARE(d.findChild<QPushButton *>(QStringLiteral("btn_Prat(%1)").arg(bouton)), d.btn_Prat[bouton]);
        QCOMPARE(d.btn_Prat[0]->text(), reglages ? QStringLiteral("Dr Aubert") : QStringLiteral("Praticien 1"));
        d.show();
        QCOMPARE(ouverts, 0); // the chooser is not an editing dialog
        QTest::mouseClick(d.btn_Prat[bouton], Qt::LeftButton);
        QCOMPARE(d.result(), int(QDialog::Accepted));
        QCOMPARE(ChosenPraticien, nom);
        QCOMPARE(int(ChosenNumero), bouton + 1);
        QCOMPARE(ChosenColor, couleur);
    }

    // The proposal of a new appointment: the rule of start + 1 s, else the
    // chooser, whose colour goes into RegleCourante.
    void proposition_data()
    {
        QTest::addColumn<QTime>("heure");
        QTest::addColumn<QString>("choix"); // "" no chooser expected, "0"/"1" a button, "x" closed, "!" no Regles
        QTest::addColumn<QString>("praticien");
        QTest::addColumn<int>("numero");
        QTest::addColumn<int>("index");
        QTest::addColumn<qint32>("couleur");
        QTest::newRow("règle du matin") << QTime(9, 0) << "" << "Dr Matin" << 1 << 3 << 0;
        // 12:00 is the end of the morning rule and the start of the
        // afternoon one: start + 1 s only matches the second.
        QTest::newRow("midi pile") << QTime(12, 0) << "" << "Dr Soir" << 2 << 10 << 0;
        QTest::newRow("sans règle, second choisi") << QTime(19, 0) << "1" << "Dr Bernard" << 2 << 8 << 0xC0FFC0;
        QTest::newRow("sans règle, choix fermé") << QTime(19, 0) << "x" << "" << 0 << 0 << 0;
        QTest::newRow("règles illisibles") << QTime(9, 0) << "!" << "" << 0 << 0 << 0;
    }
    void proposition()
    {
        QFETCH(QTime, heure);
        QFETCH(QString, choix);
        QFETCH(QString, praticien);
        QFETCH(int, numero);
        QFETCH(int, index);
        QFETCH(qint32, couleur);
        ajouterRegle(QTime(8, 0), QTime(12, 0), 1, QStringLiteral("Dr Matin"), 3);
        ajouterRegle(QTime(12, 0), QTime(18, 0), 2, QStringLiteral("Dr Soir"), 2);
        EcrireConfig(QStringLiteral("Praticien2"), QStringLiteral("Nom"), QStringLiteral("Dr Bernard"));
        EcrireConfig(QStringLiteral("RDVType1"), QStringLiteral("Couleur2"), QStringLiteral("&HC0FFC0"));
        ChosenPraticien = QStringLiteral("ancien choix");
        int ouvertures = 0;
        ExecuteurInstalle executeur([&](QDialog &dlg) {
            ++ouvertures;
            auto *d = qobject_cast<frmPraticiens *>(&dlg);
            if (!d || choix == QLatin1String("x"))
                return int(QDialog::Rejected);
            d->show();
            d->btn_Prat[choix.toInt()]->click();
            return d->result();
        });
        RepondeurScripte repondeur;
        QSqlQuery cacher(ConfigOuverte()->base().db());
        const bool illisible = choix == QLatin1String("!");
        QVERIFY(!illisible || cacher.exec(QStringLiteral("ALTER TABLE Regles RENAME TO Cachee")));
        const RegleMatch &r =
            ProposerPraticien(QDateTime(QDate(2026, 3, 2), heure), [] { return frmPraticiens::Choisir(); });
        QVERIFY(!illisible || cacher.exec(QStringLiteral("ALTER TABLE Cachee RENAME TO Regles")));
        QCOMPARE(&r, &appState().RegleCourante);
        QCOMPARE(ouvertures, choix.isEmpty() || illisible ? 0 : 1);
        QCOMPARE(repondeur.textes().size(), illisible ? 1 : 0);
        QCOMPARE(r.Praticien, praticien);
        QCOMPARE(int(r.PraticienNumero), numero);
        QCOMPARE(IndexLibelle(r), index);
        QCOMPARE(r.TypeColor, couleur);
        QCOMPARE(r.Heure, heure.addSecs(1));
        // A closed chooser leaves the chosen values as they were.
        if (choix == QLatin1String("x"))
            QCOMPARE(ChosenPraticien, QStringLiteral("ancien choix"));
    }
};

QTEST_MAIN(tst_praticiens)
#include "tst_praticiens.moc"
