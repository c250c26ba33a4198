#include "appointments/paquetrdv.h"
#include "patients/patientcourant.h"
#include "shell/base/horloge.h"

#include <QtTest>

#include <optional>

// Declared before the tables use them.
Q_DECLARE_METATYPE(std::optional<qint64>)
Q_DECLARE_METATYPE(std::optional<QString>)

using Champs = QList<QString>; // 14 values, for readable table rows

namespace {

ChampsRdv versChamps(const Champs &liste)
{
    ChampsRdv champs;
    for (qsizetype i = 0; i < liste.size() && i < ChampRdv::Nombre; ++i)
        champs[static_cast<size_t>(i)] = liste.at(i);
    return champs;
}

Champs versListe(const ChampsRdv &champs)
{
    return Champs(champs.begin(), champs.end());
}

const QString nom30 = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ1234");

} // namespace

class tst_paquetrdv : public QObject
{
    Q_OBJECT

private slots:
    void init() { Horloge::fixer(QDateTime(QDate(2026, 3, 15), QTime(10, 0))); }
    void cleanup() { Horloge::liberer(); }

    void subject_data()
    {
        QTest::addColumn<Champs>("champs"); // 0, 1, 2, 3, 4, then field 10
        QTest::addColumn<QString>("attendu");
        auto c = [](QString nom, QString prenom, QString naissance, QString tel, QString portable, QString prise) {
            Champs l{nom, prenom, naissance, tel, portable, {}, {}, {}, {}, {}, prise, {}, {}, {}};
            return l;
        };
        const QString prise = QStringLiteral("02/03/2026 10:15:00");
        QTest::newRow("patient complet") << c("DUPONT", "Marie", "15/03/1980", "01 23 45 67 89", "06 12 34 56 78", prise)
                                         << "DUPONT Marie (46 ans)" + QString(29, u' ') + "01 23 45 67 89 06 12 34 56 78 (Pris le 02/03) ";
        QTest::newRow("nom de 30 coupé à 26, prénom en colonne 28, sans naissance")
            << c(nom30, "Jean", "", "", "0612345678", prise)
            << "ABCDEFGHIJKLMNOPQRSTUVWXYZ Jean" + QString(19, u' ') + "0612345678 (Pris le 02/03) ";
        QTest::newRow("âge coupé au caractère 50") << c(nom30, "Jean-Christophe", "01/01/1920", "", "", prise)
                                                   << "ABCDEFGHIJKLMNOPQRSTUVWXYZ Jean-Christoph (106 ans (Pris le 02/03) ";
        QTest::newRow("fixe seul: un blanc, puis le portable vide")
            << c("A", "", "", "0478000000", "", prise) << "A " + QString(48, u' ') + "0478000000  (Pris le 02/03) ";
        QTest::newRow("sans patient: la marque n'est pas une date")
            << c("Réunion", "", MarqueSansPatient, "", "", prise) << "Réunion " + QString(42, u' ') + " (Pris le 02/03) ";
        QTest::newRow("date de prise courte prise telle quelle")
            << c("B", "C", "01/03/2026", "", "", "1/3") << "B C (14 jours)" + QString(36, u' ') + " (Pris le 1/3) ";
    }

    void subject()
    {
        QFETCH(Champs, champs);
        QFETCH(QString, attendu);
        const QString sujet = ConstruireSubject(versChamps(champs));
        QCOMPARE(sujet, attendu);
        QCOMPARE(sujet.left(50).size(), 50);
    }

    void lireBody_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<Champs>("attendu"); // the controls held "x" everywhere before
        QTest::addColumn<bool>("ancienneForme");
        QTest::addColumn<bool>("sansPatient");
        const QString sep(SeparateurRdv);
        Champs x(14, QStringLiteral("x"));
        Champs complet;
        for (int i = 0; i < 14; ++i)
            complet << QStringLiteral("f%1").arg(i);
        const QString packe = complet.join(sep) + sep;

        QTest::newRow("quatorze champs") << packe << complet << false << false;
        QTest::newRow("séparateur en tête ignoré") << sep + packe << complet << false << false;
        Champs commentaireVide = x;
        commentaireVide[9] = QString();
        QTest::newRow("un séparateur seul: ancienne forme vide") << sep << commentaireVide << true << false;
        Champs ancien = x;
        ancien[9] = QStringLiteral("Rappeler le labo");
        QTest::newRow("ancienne forme") << "Rappeler le labo" << ancien << true << false;
        Champs court = x;
        court[0] = QStringLiteral("A");
        court[1] = QStringLiteral("B");
        QTest::newRow("texte court: le reste garde sa valeur") << "A§B§" << court << false << false;
        Champs sansPatient = complet;
        sansPatient[2] = QStringLiteral("vu£");
        QString avecMarque = packe;
        avecMarque.replace(QStringLiteral("f2"), QStringLiteral("vu£"));
        QTest::newRow("marque sans patient") << avecMarque << sansPatient << false << true;
        // A "§" that came from the patient base shifts the fields; what falls
        // beyond the fourteenth is not kept.
        Champs decale = complet;
        decale[5] = QStringLiteral("3 rue");
        for (int i = 6; i < 14; ++i)
            decale[i] = QStringLiteral("f%1").arg(i - 1);
        QString avecSep = packe;
        avecSep.replace(QStringLiteral("f5"), QStringLiteral("3 rue§f5"));
        QTest::newRow("séparateur dans un champ") << avecSep << decale << false << false;
    }

    void lireBody()
    {
        QFETCH(QString, body);
        QFETCH(Champs, attendu);
        QFETCH(bool, ancienneForme);
        QFETCH(bool, sansPatient);
        ChampsRdv champs;
        champs.fill(QStringLiteral("x"));
        const LectureBody lu = LireBody(body, champs);
        QCOMPARE(versListe(champs), attendu);
        QCOMPARE(lu.ancienneForme, ancienneForme);
        QCOMPARE(lu.sansPatient, sansPatient);
    }

    void allerRetour()
    {
        PatientCourantRecord p;
        p.Nom = QStringLiteral("LEFÈVRE");
        p.Prenom = QStringLiteral("André");
        p.DateNaissance = QStringLiteral("22/08/1936");
        p.Telephone1 = QStringLiteral("04 78 00 00 00");
        p.Telephone2 = QStringLiteral("06 00 00 00 00");
        p.Adresse1 = QStringLiteral("1 rue Paul Bert");
        p.Adresse2 = QStringLiteral("Bât. A");
        p.CodePostal = QStringLiteral("69003");
        p.Ville = QStringLiteral("LYON");
        p.Numero = 42;
        p.Base = QStringLiteral("Agenda");
        p.Mel = QStringLiteral("a.lefevre@example.org");
        ChampsRdv champs;
        champs[ChampRdv::Commentaire] = QStringLiteral("à jeun");
        champs[ChampRdv::DatePrise] = HorodatageRdv(QDateTime(QDate(2026, 3, 1), QTime(8, 5, 9)));
        ChampsDuPatient(p, champs);
        QCOMPARE(champs[ChampRdv::Commentaire], QStringLiteral("à jeun"));

        const QString body = PackerBody(champs);
        QCOMPARE(body.split(SeparateurRdv).size(), 15);
        QVERIFY(body.endsWith(SeparateurRdv));
        QCOMPARE(body,
                 QStringLiteral("LEFÈVRE§André§22/08/1936§04 78 00 00 00§06 00 00 00 00§1 rue Paul Bert§Bât. A§69003§"
                                "LYON§à jeun§01/03/2026 08:05:09§42§Agenda§a.lefevre@example.org§"));
        LectureBody lu;
        QCOMPARE(DepaquerBody(body, &lu), champs);
        QVERIFY(!lu.ancienneForme && !lu.sansPatient);
    }

    void location_data()
    {
        QTest::addColumn<QString>("motif");
        QTest::addColumn<QString>("adressePar");
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QString>("motifLu");
        QTest::addColumn<QString>("adresseLue");
        QTest::newRow("motif seul") << "Vaccin" << QString() << "Vaccin" << "Vaccin" << QString();
        QTest::newRow("motif et adressant") << "Bilan" << "Dr Roux" << "Bilan => Dr Roux" << "Bilan" << "Dr Roux";
        QTest::newRow("adressant sans motif") << QString() << "SAMU" << " => SAMU" << QString() << "SAMU";
        // Typed by hand, not made by the packing:
        QTest::newRow("finit par la flèche") << QString() << QString() << "Bilan => " << "Bilan" << QString();
        QTest::newRow("deux flèches: les deux premiers morceaux") << QString() << QString() << "a => b => c" << "a" << "b";
    }

    void location()
    {
        QFETCH(QString, motif);
        QFETCH(QString, adressePar);
        QFETCH(QString, texte);
        QFETCH(QString, motifLu);
        QFETCH(QString, adresseLue);
        if (!motif.isEmpty() || !adressePar.isEmpty())
            QCOMPARE(PackerLocation(motif, adressePar), texte);
        const LocationLue lu = LireLocation(texte);
        QCOMPARE(lu.motif, motifLu);
        QCOMPARE(lu.adressePar, adresseLue);
    }

    void lecteurs_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<std::optional<qint64>>("numero");
        QTest::addColumn<std::optional<QString>>("portable");
        QTest::addColumn<std::optional<QString>>("mel");
        using N = std::optional<qint64>;
        using T = std::optional<QString>;
        const QString onze = QStringLiteral("a§b§c§d§06§f§g§h§i§j§k§");
        QTest::newRow("complet") << onze + "17§Agenda§m@x.fr§" << N(17) << T("06") << T("m@x.fr");
        QTest::newRow("numéro vide: 0") << onze + "§§§" << N(0) << T("06") << T(QString());
        QTest::newRow("règle du nombre en tête") << onze + "42abc§" << N(42) << T("06") << T();
        QTest::newRow("onze parties: pas de numéro") << "a§b§c§d§06§f§g§h§i§j§k" << N() << T("06") << T();
        QTest::newRow("ancienne forme") << "texte libre" << N() << T() << T();
        // The reader does not drop a leading separator: every part moves by one.
        QTest::newRow("séparateur en tête") << "§" + onze + "17§Agenda§m@x.fr§" << N(0) << T("d") << T("Agenda");
    }

    void lecteurs()
    {
        QFETCH(QString, body);
        QFETCH(std::optional<qint64>, numero);
        QFETCH(std::optional<QString>, portable);
        QFETCH(std::optional<QString>, mel);
        QCOMPARE(NumeroPatientBody(body), numero);
        QCOMPARE(PortableBody(body), portable);
        QCOMPARE(MelBody(body), mel);
    }

    void validite_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<bool>("telephone");
        QTest::addColumn<bool>("mel");
        QTest::newRow("vide") << QString() << true << true;
        QTest::newRow("9 chiffres") << "06 12 34 56 7" << false << false;
        QTest::newRow("10 chiffres avec points") << "06.12.34.56.78" << true << false;
        QTest::newRow("international") << "+33 6 12 34 56 78" << true << false;
        QTest::newRow("international trop court") << "+33 6 12 34 56" << false << false;
        QTest::newRow("adresse") << "a@b.fr" << false << true;
        QTest::newRow("sans point") << "a@bfr" << false << false;
    }

    void validite()
    {
        QFETCH(QString, texte);
        QFETCH(bool, telephone);
        QFETCH(bool, mel);
        QCOMPARE(TelephoneValide(texte), telephone);
        QCOMPARE(MelValide(texte), mel);
    }
};


QTEST_GUILESS_MAIN(tst_paquetrdv)
#include "tst_paquetrdv.moc"
