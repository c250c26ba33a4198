#include "cipher/encryptx.h"
#include "patients/schemapatients.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/demarrage.h"
#include "shell/base/profilini.h"
#include "shell/base/registre.h"
#include "support/dossiertest.h"
#include "support/fichierstest.h"
#include "support/repondeurscripte.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QtTest>

class tst_demarrage : public QObject
{
    Q_OBJECT

private:
    static void remettreAZero()
    {
        FermerConfig();
        appState() = AppState{};
    }

    // A start without argument in `dossier`, both steps run.
    struct Lancement
    {
        Demarrage d;
        ParametresFenetre p;
        bool ok;
        explicit Lancement(const QString &dossier)
            : d(appState(), dossier)
            , ok(!d.initialiser(QString()) && !d.charger(p))
        {
        }
    };

private Q_SLOTS:
    void init() { remettreAZero(); }
    void cleanup() { remettreAZero(); }

    void sansArgument()
    {
        DossierProgrammeTest prog;
        // Section Sauvegarge is never read by a start without argument.
        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Sauvegarge]\nCheminLog=/tmp/journal\n"));
        AppState &etat = appState();
        Demarrage d(etat, prog.chemin());
        QCOMPARE(d.initialiser(QString()), std::nullopt);
        QCOMPARE(etat.PathDB, prog.chemin());
        QCOMPARE(etat.AgendaName, QStringLiteral("Agenda"));
        QCOMPARE(etat.CheminLog, QString());
        QCOMPARE(etat.CheminBaseAgenda, prog.chemin());
        QCOMPARE(etat.TypesRDV.at(2), QString::fromUtf8("Pédiatrie"));
        QCOMPARE(etat.JoursSemaine.at(1), QStringLiteral("Dimanche"));
        QCOMPARE(etat.JoursSemaine.at(7), QStringLiteral("Samedi"));

        ParametresFenetre p;
        QCOMPARE(d.charger(p), std::nullopt);
        QVERIFY(p.premierLancement);
        QVERIFY(EstFichierSqlite(prog.chemin() + QStringLiteral("Config.mdb")));
        QVERIFY(QFile::exists(CheminPatientsMdb(prog.chemin())));
        QCOMPARE(d.connexionEvenements(),
                 QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + prog.chemin() + QStringLiteral("Events.mdb';"));
    }

    void nuancier()
    {
        AppState etat;
        InitTables(etat);
        QCOMPARE(etat.Nuancier.at(0), 0xFFFFE0u);
        QCOMPARE(etat.Nuancier.at(4), 0xE0E0FFu);
        QCOMPARE(etat.Nuancier.at(1 * 6 + 5), 0xC0FFFFu);
        QCOMPARE(etat.Nuancier.at(3 * 6 + 1), 0xFF9090u);
        QCOMPARE(etat.Nuancier.at(5 * 6 + 3), 0x50FF50u);
        QCOMPARE(etat.Nuancier.at(6 * 6 + 2), 0xA0A0A0u);
    }

    void agendaNumero_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QString>("numero");
        QTest::newRow("chiffre") << "2" << "2";
        QTest::newRow("avec des mots") << "12;Cabinet Dupont" << "12";
        QTest::newRow("lettre d'abord") << "Cabinet" << "0";
        QTest::newRow("vide") << "" << "0";
    }

    void agendaNumero()
    {
        QFETCH(QString, texte);
        QFETCH(QString, numero);
        QCOMPARE(NumeroAgenda(texte), numero);
    }

    void argumentAgenda2()
    {
        DossierProgrammeTest prog;
        QTemporaryDir donnees;
        QTemporaryDir patients;
        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda1]\nPathDB1=/nulle/part\nAgendaName1=Cabinet A\n"
                                                                "[Agenda2]\nPathDB2=%1\nAgendaName2=Cabinet B\n"
                                                                "[Sauvegarge]\nCheminSauve=/sauve\nCheminSauvePartiel=/partiel\nCheminLog=/journal\n"
                                                                "[Base]\nBasePatientAG=%2\n"
                                                                "[Cabinet B]\nMAILS=Oui\nSMS=oui\nRemindersManEnabled=Vrai\n"
                                                                "Path1=/liens/Patients.mdb\nIdentity3=BASE3\nZek4=cab.zek\n"
                                                                "PrintOptions.PrintFromToExactly=0\n")
                                                     .arg(donnees.path(), patients.path()));
        AppState &etat = appState();
        Demarrage d(etat, prog.chemin());
        QCOMPARE(d.initialiser(EncoderArgument(QStringLiteral("2"))), std::nullopt);
        QCOMPARE(etat.PathDB, donnees.path() + u'/');
        QCOMPARE(etat.AgendaName, QStringLiteral("Cabinet B"));
        QCOMPARE(etat.CheminSauve, QStringLiteral("/sauve"));
        QCOMPARE(etat.CheminSauvePartiel, QStringLiteral("/partiel"));
        QCOMPARE(etat.CheminLog, QStringLiteral("/journal"));
        QCOMPARE(etat.CheminBaseAgenda, patients.path() + u'/');

        ParametresFenetre p;
        QCOMPARE(d.charger(p), std::nullopt);
        QVERIFY(QFile::exists(donnees.filePath(QStringLiteral("Config.mdb"))));
        QVERIFY(QFile::exists(CheminPatientsMdb(patients.path() + u'/')));
        QVERIFY(!QFile::exists(prog.chemin() + QStringLiteral("Config.mdb")));
        QVERIFY(etat.RappelsMails);
        QVERIFY(!etat.RappelsSMS); // only exactly "Oui"
        QVERIFY(p.rappelsActifs);
        QCOMPARE(p.printFromToExactly, 0);
        QCOMPARE(etat.Path.at(1), QStringLiteral("/liens/Patients.mdb"));
        QCOMPARE(etat.Identity.at(3), QStringLiteral("BASE3"));
        QCOMPARE(etat.Zek.at(4), QStringLiteral("cab.zek"));
    }

    void agendaInconnu_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::addColumn<bool>("avecIni");
        QTest::newRow("sans Agenda.ini") << EncoderArgument(QStringLiteral("2")) << false;
        QTest::newRow("numero absent du fichier") << EncoderArgument(QStringLiteral("7")) << true;
        QTest::newRow("texte commencant par une lettre") << EncoderArgument(QStringLiteral("Cabinet")) << true;
        QTest::newRow("argument abime") << QStringLiteral("0123456789ABCDEF0123456789ABCDEF") << true;
        QTest::newRow("argument etranger") << QStringLiteral("--help") << true;
    }

    void agendaInconnu()
    {
        QFETCH(QString, argument);
        QFETCH(bool, avecIni);
        DossierProgrammeTest prog;
        if (avecIni)
            prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda2]\nPathDB2=%1\nAgendaName2=B\n").arg(prog.chemin()));
        const QByteArray avant = lireOctets(prog.chemin() + QStringLiteral("Agenda.ini"));
        Demarrage d(appState(), prog.chemin());
        QCOMPARE(d.initialiser(argument), std::optional<QString>(QString::fromUtf8("Agenda non configuré !")));
        QCOMPARE(lireOctets(prog.chemin() + QStringLiteral("Agenda.ini")), avant);
        QCOMPARE(QDir(prog.chemin()).entryList(QDir::Files), avecIni ? QStringList{QStringLiteral("Agenda.ini")} : QStringList{});
    }

    void configEtrangere()
    {
        DossierProgrammeTest prog;
        const QByteArray jet = QByteArray("\x00\x01\x00\x00Standard Jet DB\x00", 20) + QByteArray(4000, '\x42');
        QVERIFY(ecrireOctets(prog.chemin() + QStringLiteral("Config.mdb"), jet));
        Demarrage d(appState(), prog.chemin());
        QCOMPARE(d.initialiser(QString()), std::nullopt);
        ParametresFenetre p;
        const auto fatal = d.charger(p);
        QVERIFY(fatal.has_value());
        QCOMPARE(*fatal, QString::fromUtf8("La base de donnée n'est pas trouvée dans le chemin : \n  ") + prog.chemin());
        QCOMPARE(lireOctets(prog.chemin() + QStringLiteral("Config.mdb")), jet);
    }

    // A Config.mdb zeroed after its header, or whole: one French
    // text that names the file, returned for the one fatal box, and no box
    // before it.
    void configEndommagee_data()
    {
        QTest::addColumn<int>("garde");
        QTest::newRow("pages effacées") << 4096;
        QTest::newRow("fichier effacé") << 0;
    }
    void configEndommagee()
    {
        DossierProgrammeTest prog;
        {
            Lancement l(prog.chemin());
            QVERIFY(l.ok);
            l.d.arreter(false);
        }
        remettreAZero();
        const QString config = prog.chemin() + QStringLiteral("Config.mdb");
        QFETCH(int, garde);
        QByteArray octets = lireOctets(config);
        QVERIFY(octets.size() > 4096);
        octets.replace(garde, octets.size() - garde, QByteArray(octets.size() - garde, '\0'));
        QVERIFY(ecrireOctets(config, octets));
        RepondeurScripte repondeur;
        Demarrage d(appState(), prog.chemin());
        QVERIFY(!d.initialiser(QString()));
        ParametresFenetre p;
        const auto fatal = d.charger(p);
        QVERIFY(fatal && fatal->startsWith(QStringLiteral("Le fichier de configuration ") + config + QStringLiteral(" est endommagé")));
        QCOMPARE(repondeur.appels().size(), 0);
        QCOMPARE(lireOctets(config), octets);
    }

    void dossierDeDonneesInexistant()
    {
        DossierProgrammeTest prog;
        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda3]\nPathDB3=%1absent/sous/\nAgendaName3=C\n").arg(prog.chemin()));
        Demarrage d(appState(), prog.chemin());
        QCOMPARE(d.initialiser(EncoderArgument(QStringLiteral("3"))), std::nullopt);
        ParametresFenetre p;
        const auto fatal = d.charger(p);
        QVERIFY(fatal.has_value());
        QVERIFY(fatal->startsWith(QString::fromUtf8("La base de donnée n'est pas trouvée dans le chemin : ")));
    }

    void fichiersExistantsIntacts()
    {
        DossierProgrammeTest prog;
        {
            Lancement l(prog.chemin());
            QVERIFY(l.ok);
            l.d.arreter(false);
        }
        const QByteArray patients = lireOctets(CheminPatientsMdb(prog.chemin()));
        remettreAZero();
        Lancement l(prog.chemin());
        QVERIFY(l.ok);
        QVERIFY(!l.p.premierLancement);
        QCOMPARE(lireOctets(CheminPatientsMdb(prog.chemin())), patients);
    }

    void libellesDepuisLaTableIni()
    {
        DossierProgrammeTest prog;
        Lancement lancement(prog.chemin());
        QVERIFY(lancement.ok);
        EcrireConfig(QStringLiteral("RDVType1"), QStringLiteral("Type"), QStringLiteral("Consult."));
        EcrireConfig(QStringLiteral("RDVType1"), QStringLiteral("Couleur1"), QStringLiteral("&HC0FFC0"));
        EcrireConfig(QStringLiteral("RDVType3"), QStringLiteral("Couleur2"), QStringLiteral("255"));
        const CalendarLabelList l = ConstruireLibelles(appState());
        QCOMPARE(l.size(), 18);
        for (int i = 0; i < 18; ++i)
            QCOMPARE(l.at(i).id, i);
        QCOMPARE(l.at(0).name, QStringLiteral("Praticien 1:Consult."));
        QCOMPARE(l.at(0).color, 0xC0FFC0u);
        QCOMPARE(l.at(1).name, QStringLiteral("Praticien 1:Visite"));
        QCOMPARE(l.at(1).color, 0xFFFFFFu);
        QCOMPARE(l.at(7).name, QStringLiteral("Praticien 1: Absent"));
        QCOMPARE(l.at(8).name, QStringLiteral("Praticien 2:Consult."));
        QCOMPARE(l.at(8).color, 0xFFFFFFu); // Couleur2 of type 1 is not set
        QCOMPARE(l.at(10).name, QString::fromUtf8("Praticien 2:Pédiatrie"));
        QCOMPARE(l.at(10).color, 255u);
        QCOMPARE(l.at(15).name, QStringLiteral("Praticien 2: Absent"));
        QCOMPARE(l.at(16).name, QStringLiteral("Praticien 1: VU"));
        QCOMPARE(l.at(17).name, QStringLiteral("Praticien 2: VU"));
    }

    void valeursDeLaTableIni()
    {
        DossierProgrammeTest prog;
        {
            Lancement l(prog.chemin());
            QVERIFY(l.ok);
            QCOMPARE(appState().DureeDefaut, qint16(0));
            QCOMPARE(appState().PauseDebut, QStringLiteral("12:00:00"));
            QCOMPARE(l.p.debutJournee, QTime(8, 0));
            QCOMPARE(l.p.finJournee, QTime(20, 0));
            QCOMPARE(l.p.printFrom, QStringLiteral("08:00:00"));
            QCOMPARE(l.p.printFromToExactly, -1);
            QVERIFY(!l.p.rappelsActifs);
            EcrireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QStringLiteral("20"));
            EcrireConfig(QStringLiteral("Ouverture"), QStringLiteral("Debut"), QStringLiteral("07:30:00"));
            EcrireConfig(QStringLiteral("Ouverture"), QStringLiteral("PauseFin"), QStringLiteral("13:30:00"));
            l.d.arreter(false);
        }
        remettreAZero();
        Lancement l(prog.chemin());
        QVERIFY(l.ok);
        QCOMPARE(appState().DureeDefaut, qint16(20));
        QCOMPARE(l.p.debutJournee, QTime(7, 30));
        QCOMPARE(appState().PauseFin, QStringLiteral("13:30:00"));
    }

    void arretEcritLeBooleen_data()
    {
        QTest::addColumn<bool>("actifs");
        QTest::addColumn<QString>("texte");
        QTest::newRow("vrai") << true << "Vrai";
        QTest::newRow("faux") << false << "Faux";
    }

    void arretEcritLeBooleen()
    {
        QFETCH(bool, actifs);
        QFETCH(QString, texte);
        DossierProgrammeTest prog;
        Lancement l(prog.chemin());
        QVERIFY(l.ok);
        l.d.arreter(actifs);
        QVERIFY(!ConfigOuverte());
        QCOMPARE(LireIni(QStringLiteral("Agenda"), QStringLiteral("RemindersManEnabled"), QString(), prog.chemin() + QStringLiteral("Agenda.ini")),
                 texte);
        QCOMPARE(LireParametreUtilisateur(QStringLiteral("AdvancedOptions"), QStringLiteral("RemindersEnabled"), QString()), texte);

        // The next start reads it back.
        remettreAZero();
        Lancement l2(prog.chemin());
        QVERIFY(l2.ok);
        QCOMPARE(l2.p.rappelsActifs, actifs);
    }

    void caseDeLOptionLueFausse()
    {
        // The advanced options write the check box number; only "Vrai" reads true.
        DossierProgrammeTest prog;
        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Agenda]\nRemindersManEnabled=1\n"));
        Lancement l(prog.chemin());
        QVERIFY(l.ok);
        QVERIFY(!l.p.rappelsActifs);
    }
};

QTEST_GUILESS_MAIN(tst_demarrage)
#include "tst_demarrage.moc"
