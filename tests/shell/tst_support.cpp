#include "shell/base/horloge.h"
#include "shell/base/joursferies.h"
#include "shell/base/support.h"
#include "support/fichierstest.h"
#include "support/repondeurscripte.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <cerrno>

#include <pwd.h>
#include <unistd.h>

namespace {

// A packed appointment body: fourteen fields, each followed by "§".
QString corps(const QString &champ11, int champs = 14)
{
    QString t;
    for (int i = 0; i < champs; ++i)
        t += (i == 11 ? champ11 : QStringLiteral("champ%1").arg(i)) + QStringLiteral("§");
    return t;
}

} // namespace

class tst_support : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // --- Durations ---------------------------------------------------------

    void parseDuree_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("minutes");
        QTest::newRow("nombre seul") << "90" << true << 90;
        QTest::newRow("heure decimale") << "1.5 h" << true << 90;
        QTest::newRow("jours colles") << "2d" << true << 2880;
        QTest::newRow("unite inconnue") << "3 x" << true << 3;
        QTest::newRow("unite seule") << "h" << false << 0;
        QTest::newRow("vide") << "" << false << 0;
        QTest::newRow("blancs autour") << "  45 minutes " << true << 45;
        QTest::newRow("majuscule H") << "2 Heures" << true << 120;
        QTest::newRow("M est la minute") << "5M" << true << 5;
        QTest::newRow("virgule arrete le nombre") << "1,5 h" << true << 60;
        QTest::newRow("quart d'heure") << "0.25 h" << true << 15;
        // The French words are not units: "j" and "s" count as minutes.
        QTest::newRow("jour en francais") << "2 jours" << true << 2;
        QTest::newRow("arrondi pair vers le bas") << "2.5" << true << 2;
        QTest::newRow("arrondi pair vers le haut") << "3.5" << true << 4;
        QTest::newRow("arrondi apres facteur") << "0.0125 h" << true << 1;
        QTest::newRow("negatif") << "-5 m" << true << -5;
        QTest::newRow("signe sans chiffre") << "+ h" << true << 0;
        QTest::newRow("lettre devant") << "m5" << false << 0;
        QTest::newRow("hors 32 bits par facteur") << "300000 w" << false << 0;
        QTest::newRow("plus grand 32 bits") << "2147483647" << true << 2147483647;
    }

    void parseDuree()
    {
        QFETCH(QString, texte);
        QFETCH(bool, ok);
        QFETCH(int, minutes);
        qint32 lu = 777; // must be reset even when the text is refused
        QCOMPARE(ParseDuree(texte, lu), ok);
        QCOMPARE(lu, minutes);
    }

    void formatDuree_data()
    {
        QTest::addColumn<int>("minutes");
        QTest::addColumn<bool>("force");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("90 libre") << 90 << false << "90 minutes";
        QTest::newRow("90 force arrondi pair") << 90 << true << "2 heures";
        QTest::newRow("zero") << 0 << false << "0 minute";
        QTest::newRow("une minute") << 1 << false << "1 minute";
        QTest::newRow("une heure") << 60 << false << "1 heure";
        QTest::newRow("demi-jour en heures") << 720 << false << "12 heures";
        QTest::newRow("un jour") << 1440 << false << "1 jour";
        QTest::newRow("36 heures") << 2160 << false << "36 heures";
        QTest::newRow("1.5 jour force") << 2160 << true << "2 jours";
        QTest::newRow("une semaine") << 10080 << false << "1 semaine";
        QTest::newRow("1.5 semaine libre") << 15120 << false << "252 heures";
        QTest::newRow("1.5 semaine force") << 15120 << true << "2 semaines";
        QTest::newRow("2.5 heures force") << 150 << true << "2 heures";
        QTest::newRow("demi-heure force") << 30 << true << "30 minutes";
        QTest::newRow("15 jours") << 20160 + 1440 << false << "15 jours";
    }

    void formatDuree()
    {
        QFETCH(int, minutes);
        QFETCH(bool, force);
        QFETCH(QString, attendu);
        QCOMPARE(FormatDuree(minutes, force), attendu);
    }

    // The listed durations read and write both ways; any other text reads
    // as 0 (minutes -1 below), and only listed minutes are written.
    void dureesConnues_data()
    {
        QTest::addColumn<int>("minutes");
        QTest::addColumn<QString>("texte");
        QTest::newRow("1") << 1 << "1 minute";
        QTest::newRow("5") << 5 << "5 minutes";
        QTest::newRow("60") << 60 << "1 heure";
        QTest::newRow("120") << 120 << "2 heures";
        QTest::newRow("720") << 720 << "0.5 jour";
        QTest::newRow("1440") << 1440 << "1 jour";
        QTest::newRow("2880") << 2880 << "2 jours";
        QTest::newRow("10080") << 10080 << "1 semaine";
        QTest::newRow("20160") << 20160 << "2 semaines";
        QTest::newRow("texte inconnu") << -1 << "3 heures";
        QTest::newRow("casse differente") << -1 << "1 Heure";
        QTest::newRow("blanc en trop") << -1 << "1 heure ";
        QTest::newRow("vide") << -1 << "";
        // Zero is written singular but only read back as nothing.
        QTest::newRow("zero au pluriel") << -1 << "0 minutes";
    }

    void dureesConnues()
    {
        QFETCH(int, minutes);
        QFETCH(QString, texte);
        QCOMPARE(DureeTexteVersMinutes(texte), qMax(minutes, 0));
        if (minutes > 0)
            QCOMPARE(MinutesVersDureeTexte(minutes), texte);
        QCOMPARE(MinutesVersDureeTexte(0), QStringLiteral("0 minute"));
        QCOMPARE(MinutesVersDureeTexte(45), QString());
        QCOMPARE(MinutesVersDureeTexte(-60), QString());
    }

    // --- Weeks -------------------------------------------------------------

    void semainesCommeIso()
    {
        // Every day of half a century, against Qt's own ISO week: the week
        // number, its parity (1 odd, 2 even) and the day counted from Sunday.
        int jours = 0;
        for (QDate d(1990, 1, 1); d <= QDate(2040, 12, 31); d = d.addDays(1)) {
            const int iso = d.weekNumber();
            if (GetWeekNumber(d) != iso || GetWeekParity(d) != (iso % 2 ? 1 : 2)
                || JourSemaineDimanche1(d) != d.dayOfWeek() % 7 + 1)
                QFAIL(qPrintable(QStringLiteral("%1: semaine %2 (%3), parité %4, jour %5")
                                     .arg(d.toString(Qt::ISODate))
                                     .arg(GetWeekNumber(d))
                                     .arg(iso)
                                     .arg(GetWeekParity(d))
                                     .arg(JourSemaineDimanche1(d))));
            ++jours;
        }
        QCOMPARE(jours, 18628);
        QCOMPARE(JourSemaineDimanche1(QDate()), 0);
    }

    // --- Public holidays -----------------------------------------------------

    void joursFeries_data()
    {
        QTest::addColumn<QDate>("date");
        QTest::addColumn<bool>("alsaceMoselle");
        QTest::addColumn<QString>("nom");
        auto ligne = [](const char *n, QDate d, bool am, const char *nom) { QTest::newRow(n) << d << am << QString::fromUtf8(nom); };
        // Easter Monday over four centuries, the earliest and latest Easters.
        ligne("paques 1700", QDate(1700, 4, 12), false, "Lundi de Pâques");
        ligne("paques 1818 la plus tôt", QDate(1818, 3, 23), false, "Lundi de Pâques");
        ligne("paques 1943 la plus tard", QDate(1943, 4, 26), false, "Lundi de Pâques");
        ligne("paques 2000", QDate(2000, 4, 24), false, "Lundi de Pâques");
        ligne("paques 2100", QDate(2100, 3, 29), false, "Lundi de Pâques");
        ligne("paques 2285", QDate(2285, 3, 23), false, "Lundi de Pâques");
        ligne("dimanche de paques", QDate(2026, 4, 5), false, "");
        ligne("ascension 2026", QDate(2026, 5, 14), false, "Ascension");
        ligne("pentecote 2024", QDate(2024, 5, 20), false, "Lundi de Pentecôte");
        ligne("ascension le 1er mai", QDate(2008, 5, 1), false, "Fête du Travail, Ascension");
        ligne("jour de l'an", QDate(2027, 1, 1), false, "Jour de l'an");
        ligne("14 juillet", QDate(2026, 7, 14), false, "Fête nationale");
        ligne("veille du 14 juillet", QDate(2026, 7, 13), false, "");
        ligne("11 novembre", QDate(2026, 11, 11), false, "Armistice 1918");
        ligne("noel", QDate(2026, 12, 25), false, "Noël");
        ligne("26 decembre ailleurs", QDate(2026, 12, 26), false, "");
        ligne("26 decembre alsace", QDate(2026, 12, 26), true, "Saint-Étienne");
        ligne("vendredi saint ailleurs", QDate(2026, 4, 3), false, "");
        ligne("vendredi saint alsace", QDate(2026, 4, 3), true, "Vendredi saint");
        ligne("avant le calendrier gregorien", QDate(1500, 12, 25), false, "");
    }

    void joursFeries()
    {
        QFETCH(QDate, date);
        QFETCH(bool, alsaceMoselle);
        QFETCH(QString, nom);
        QCOMPARE(NomJourFerie(date, alsaceMoselle), nom);
        // The practice's own choice answers the same, and the warning names the day.
        FixerFeriesAlsaceMoselle(alsaceMoselle);
        QCOMPARE(NomJourFerie(date), nom);
        QCOMPARE(AvertissementJourFerie(date).contains(nom), true);
        QCOMPARE(AvertissementJourFerie(date).isEmpty(), nom.isEmpty());
        FixerFeriesAlsaceMoselle(false);
        QCOMPARE(JoursFeries(date.year(), alsaceMoselle).size(), date.year() < 1583 ? 0 : alsaceMoselle ? 13 : 11);
    }

    // --- System errors -----------------------------------------------------

    void erreurSysteme_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("errnoAvant");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("fichier absent") << ENOENT << 0 << "WinAPI (Essai): No such file or directory";
        QTest::newRow("acces refuse") << EACCES << 0 << "WinAPI (Essai): Permission denied";
        QTest::newRow("errno") << -1 << EACCES << "WinAPI (Essai): Permission denied";
        QTest::newRow("errno disque plein") << -1 << ENOSPC << "WinAPI (Essai): No space left on device";
        QTest::newRow("code inconnu") << 99999 << 0 << "WinAPI (Essai): 99999 - No description exists for this error number.";
    }

    void erreurSysteme()
    {
        QFETCH(int, code);
        QFETCH(int, errnoAvant);
        QFETCH(QString, attendu);
        RepondeurScripte repondeur;
        const QString ou = QStringLiteral("Essai");
        errno = errnoAvant;
        const QString montre = ShowWinApiError(ou, code);
        QCOMPARE(montre, attendu);
        QCOMPARE(repondeur.textes(), QStringList{attendu});
        QCOMPARE(repondeur.appels().first().titre, QStringLiteral("Tavonel"));
    }

    // --- Paths and files ----------------------------------------------------

    void ajouterSlash_data()
    {
        QTest::addColumn<QString>("chemin");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("lecteur") << "C:\\" << "C:\\";
        QTest::newRow("barre finale") << "/tmp/" << "/tmp/";
        QTest::newRow("sans barre") << "/tmp" << "/tmp/";
        QTest::newRow("blancs") << "  /tmp  " << "/tmp/";
        QTest::newRow("antislash dedans") << "dossier\\sous" << "dossier\\sous/";
        QTest::newRow("blancs apres antislash") << "C:\\Agenda\\  " << "C:\\Agenda\\";
    }

    void ajouterSlash()
    {
        QFETCH(QString, chemin);
        QFETCH(QString, attendu);
        QCOMPARE(AjouterSlash(chemin), attendu);
    }

    void fichierExiste()
    {
        QTemporaryDir t;
        QVERIFY(t.isValid());
        const QString plein = t.filePath(QStringLiteral("plein.txt"));
        const QString vide = t.filePath(QStringLiteral("vide.txt"));
        QVERIFY(ecrireOctets(plein, "abc"));
        QVERIFY(ecrireOctets(vide, QByteArray()));
        QVERIFY(QDir(t.path()).mkdir(QStringLiteral("dossier")));

        QVERIFY(FichierExiste(plein));
        QVERIFY(FichierExiste(vide));
        QVERIFY(!FichierExiste(t.filePath(QStringLiteral("dossier"))));
        QVERIFY(!FichierExiste(t.filePath(QStringLiteral("absent.txt"))));
        QVERIFY(!FichierExiste(QString()));
    }

    void creerDossiers_data()
    {
        // Paths relative to a temporary folder, which is the working folder
        // during the call.
        QTest::addColumn<QString>("chemin");
        QTest::addColumn<QStringList>("dossiers");
        QTest::addColumn<QStringList>("absents");
        QTest::newRow("barres") << "a/b/c/" << QStringList{"a", "a/b", "a/b/c"} << QStringList{};
        QTest::newRow("antislashs") << "a\\b\\c\\" << QStringList{"a/b/c"} << QStringList{"a\\b\\c\\", "a\\b\\c"};
        QTest::newRow("melange") << "a\\b/c\\" << QStringList{"a/b/c"} << QStringList{};
        QTest::newRow("nom de fichier non cree") << "a/b/fichier.txt" << QStringList{"a/b"} << QStringList{"a/b/fichier.txt"};
        QTest::newRow("dernier niveau sans barre") << "2024/07" << QStringList{"2024"} << QStringList{"2024/07"};
        QTest::newRow("sans separateur") << "seul" << QStringList{"seul"} << QStringList{};
    }

    void creerDossiers()
    {
        QFETCH(QString, chemin);
        QFETCH(QStringList, dossiers);
        QFETCH(QStringList, absents);
        QTemporaryDir t;
        QVERIFY(t.isValid());
        const QString avant = QDir::currentPath();
        QVERIFY(QDir::setCurrent(t.path()));
        CreerDossiers(chemin);
        CreerDossiers(chemin); // levels that exist are no failure
        QVERIFY(QDir::setCurrent(avant));
        for (const QString &d : dossiers)
            QVERIFY2(QFileInfo(t.filePath(d)).isDir(), qPrintable(d));
        for (const QString &a : absents)
            QVERIFY2(!QFileInfo::exists(t.filePath(a)), qPrintable(a));
    }

    void creerDossiersAbsolu()
    {
        QTemporaryDir t;
        QVERIFY(t.isValid());
        CreerDossiers(t.path() + QStringLiteral("/Journal/2024/"));
        QVERIFY(QFileInfo(t.path() + QStringLiteral("/Journal/2024")).isDir());
        // A level that is a file stops the rest, silently.
        QVERIFY(ecrireOctets(t.filePath(QStringLiteral("fichier")), "x"));
        CreerDossiers(t.path() + QStringLiteral("/fichier/sous/"));
        QVERIFY(!QFileInfo::exists(t.path() + QStringLiteral("/fichier/sous")));
        CreerDossiers(QString());
    }

    void lireFichierTexte()
    {
        QTemporaryDir t;
        QVERIFY(t.isValid());
        const QString chemin = t.filePath(QStringLiteral("texte.txt"));
        QVERIFY(ecrireOctets(chemin, QByteArray("Caf\xE9 \x80 5\r\nligne 2\n")));
        const std::optional<QString> lu = LireFichierTexte(chemin);
        QVERIFY(lu.has_value());
        QCOMPARE(*lu, QStringLiteral("Café € 5\r\nligne 2\n"));

        QVERIFY(ecrireOctets(chemin, QByteArray()));
        QCOMPARE(LireFichierTexte(chemin), std::optional<QString>(QString()));

        // A file written by another station during the wait is read.
        const QString tardif = t.filePath(QStringLiteral("tardif.txt"));
        QTimer::singleShot(300, this, [tardif] { ecrireOctets(tardif, "\xE9t\xE9"); });
        QCOMPARE(LireFichierTexte(tardif), std::optional<QString>(QStringLiteral("été")));
    }

    void lireFichierAbsent()
    {
        QTemporaryDir t;
        QVERIFY(t.isValid());
        QElapsedTimer montre;
        montre.start();
        QVERIFY(!LireFichierTexte(t.filePath(QStringLiteral("absent.txt"))).has_value());
        // It looked again after three seconds, once.
        QVERIFY2(montre.elapsed() >= 2900, qPrintable(QString::number(montre.elapsed())));
        QVERIFY2(montre.elapsed() < 5500, qPrintable(QString::number(montre.elapsed())));
    }

    void ecrireFichierTexte_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QByteArray>("octets");
        QTest::newRow("e accent aigu") << "é" << QByteArray("\xE9");
        QTest::newRow("euro") << "5 €" << QByteArray("5 \x80");
        QTest::newRow("lignes telles quelles") << "a\r\nb\nc" << QByteArray("a\r\nb\nc");
        QTest::newRow("hors code page") << "日" << QByteArray("?");
        QTest::newRow("vide") << "" << QByteArray();
    }

    void ecrireFichierTexte()
    {
        QFETCH(QString, texte);
        QFETCH(QByteArray, octets);
        QTemporaryDir t;
        QVERIFY(t.isValid());
        const QString chemin = t.filePath(QStringLiteral("sortie.txt"));
        // The old content is longer: nothing of it may remain.
        QVERIFY(ecrireOctets(chemin, QByteArray(100, 'x')));
        QVERIFY(EcrireFichierTexte(texte, chemin));
        QCOMPARE(lireOctets(chemin), octets);
    }

    void ecrireFichierRemplace()
    {
        QTemporaryDir t;
        QVERIFY(t.isValid());
        // A read-only file is replaced: it is deleted first.
        const QString chemin = t.filePath(QStringLiteral("lecture-seule.txt"));
        QVERIFY(ecrireOctets(chemin, "ancien"));
        QVERIFY(QFile::setPermissions(chemin, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        QVERIFY(EcrireFichierTexte(QStringLiteral("nouveau"), chemin));
        QCOMPARE(lireOctets(chemin), QByteArray("nouveau"));

        // A link is deleted, not followed: the file it pointed to keeps its
        // content and the new file stands in the link's place.
        const QString cible = t.filePath(QStringLiteral("cible.txt"));
        const QString lien = t.filePath(QStringLiteral("lien.txt"));
        QVERIFY(ecrireOctets(cible, "ancien"));
        QVERIFY(QFile::link(cible, lien));
        QVERIFY(EcrireFichierTexte(QStringLiteral("nouveau"), lien));
        QVERIFY(!QFileInfo(lien).isSymLink());
        QCOMPARE(lireOctets(lien), QByteArray("nouveau"));
        QCOMPARE(lireOctets(cible), QByteArray("ancien"));

        // A file that does not exist yet is made.
        const QString neuf = t.filePath(QStringLiteral("neuf.txt"));
        QVERIFY(EcrireFichierTexte(QStringLiteral("là"), neuf));
        QCOMPARE(lireOctets(neuf), QByteArray("l\xE0"));

        // A missing folder is a failure, not an exception.
        QVERIFY(!EcrireFichierTexte(QStringLiteral("x"), t.filePath(QStringLiteral("absent/fichier.txt"))));
        QVERIFY(!QFileInfo::exists(t.filePath(QStringLiteral("absent"))));
    }

    void supprimerFichier()
    {
        QTemporaryDir t;
        QVERIFY(t.isValid());
        const QString chemin = t.filePath(QStringLiteral("a-effacer.txt"));
        QVERIFY(ecrireOctets(chemin, "x"));
        QCOMPARE(SupprimerFichier(chemin), 0);
        QVERIFY(!QFileInfo::exists(chemin));
        QCOMPARE(SupprimerFichier(chemin), 53);
        QCOMPARE(SupprimerFichier(t.filePath(QStringLiteral("absent/a.txt"))), 53);

        const QString dossier = t.filePath(QStringLiteral("dossier"));
        QVERIFY(QDir(t.path()).mkdir(QStringLiteral("dossier")));
        QCOMPARE(SupprimerFichier(dossier), 53);
        QVERIFY(QFileInfo(dossier).isDir());

        // A file the system will not let anyone delete, root included.
        QVERIFY(QFileInfo::exists(QStringLiteral("/proc/version")));
        QCOMPARE(SupprimerFichier(QStringLiteral("/proc/version")), 70);
    }

    // --- Waiting, names ---------------------------------------------------

    void attendreLaisseTournerLesEvenements()
    {
        int tics = 0;
        QTimer minuteur;
        minuteur.setInterval(50);
        connect(&minuteur, &QTimer::timeout, this, [&tics] { ++tics; });
        minuteur.start();
        QElapsedTimer montre;
        montre.start();
        Attendre(0.5);
        const qint64 ecoule = montre.elapsed();
        minuteur.stop();
        QVERIFY2(ecoule >= 480, qPrintable(QString::number(ecoule)));
        QVERIFY2(ecoule < 2000, qPrintable(QString::number(ecoule)));
        QVERIFY2(tics >= 5, qPrintable(QString::number(tics)));
        montre.restart();
        Attendre(0);
        Attendre(-1);
        QVERIFY(montre.elapsed() < 200);
    }

    void nomUtilisateur()
    {
        {
            VariableTemporaire user("USER", "dupont");
            VariableTemporaire logname("LOGNAME", "martin");
            QCOMPARE(NomUtilisateur(), QStringLiteral("dupont"));
        }
        {
            VariableTemporaire user("USER", QByteArray(), false);
            VariableTemporaire logname("LOGNAME", "martin");
            QCOMPARE(NomUtilisateur(), QStringLiteral("martin"));
        }
        {
            VariableTemporaire user("USER", QByteArray(300, 'n'));
            QCOMPARE(NomUtilisateur(), QString(250, u'n'));
        }
        {
            // Neither variable: the account of the process.
            VariableTemporaire user("USER", QByteArray(), false);
            VariableTemporaire logname("LOGNAME", QByteArray(), false);
            const passwd *pw = ::getpwuid(::geteuid());
            QVERIFY(pw);
            QCOMPARE(NomUtilisateur(), QString::fromLocal8Bit(pw->pw_name));
        }
    }

    void nomOrdinateur()
    {
        const QString nom = NomOrdinateur();
        QVERIFY(!nom.isEmpty());
        QVERIFY(nom.size() <= 250);
        QVERIFY(!nom.contains(QChar(u'\0')));
    }

    void apostrophesSQL_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("nom") << "d'Artagnan" << "d''Artagnan";
        QTest::newRow("deux") << "l'a d'eux" << "l''a d''eux";
        QTest::newRow("seules") << "''" << "''''";
        QTest::newRow("sans") << "Martin" << "Martin";
        QTest::newRow("vide") << "" << "";
        QTest::newRow("guillemets laisses") << "\"x\"" << "\"x\"";
    }

    void apostrophesSQL()
    {
        QFETCH(QString, texte);
        QFETCH(QString, attendu);
        QCOMPARE(ApostrophesSQL(texte), attendu);
    }

    void sansBureau()
    {
        // The command-line program has no desktop to ask.
        QVERIFY(!FermerFenetreExterne(QStringLiteral("Modem")));
        QVERIFY(!OuvrirDocument(QStringLiteral("/tmp/inexistant.chm")));
    }

    void dossierSpecial_data()
    {
        // Relative to a fixed home; "<vide>" means the empty text.
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("bureau") << 0 << "/Desktop";
        QTest::newRow("documents") << 5 << "/Documents";
        QTest::newRow("documents, créé") << 0x8005 << "/Documents";
        QTest::newRow("demarrage") << 7 << "/config/autostart";
        QTest::newRow("musique") << 13 << "/Music";
        QTest::newRow("video") << 14 << "/Videos";
        QTest::newRow("donnees d'application") << 26 << "/config";
        QTest::newRow("donnees locales") << 28 << "/.local/share";
        QTest::newRow("images") << 39 << "/Pictures";
        QTest::newRow("profil") << 40 << "";
        QTest::newRow("windows") << 36 << "<vide>";
        QTest::newRow("system") << 37 << "<vide>";
        QTest::newRow("inconnu") << 0x99 << "<vide>";
    }

    void dossierSpecial()
    {
        QFETCH(int, id);
        QFETCH(QString, attendu);
        QTemporaryDir t;
        QVERIFY(t.isValid());
        VariableTemporaire home("HOME", QFile::encodeName(t.path()));
        VariableTemporaire config("XDG_CONFIG_HOME", QFile::encodeName(t.path() + QStringLiteral("/config")));
        VariableTemporaire donnees("XDG_DATA_HOME", QByteArray(), false);
        if (attendu == QStringLiteral("<vide>")) {
            QCOMPARE(DossierSpecial(id), QString());
        } else {
            QCOMPARE(DossierSpecial(id), t.path() + attendu);
            // Only the 0x8000 flag makes the folder.
            if (!attendu.isEmpty())
                QCOMPARE(QFileInfo(t.path() + attendu).isDir(), bool(id & 0x8000));
        }
    }

    // --- Patients ------------------------------------------------------------

    void champNumeroPatient_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<qint64>("numero");
        QTest::newRow("numero") << corps(QStringLiteral("1234")) << qint64(1234);
        QTest::newRow("suivi de lettres") << corps(QStringLiteral("12abc")) << qint64(12);
        QTest::newRow("blancs devant") << corps(QStringLiteral("  77")) << qint64(77);
        QTest::newRow("vide") << corps(QString()) << qint64(0);
        QTest::newRow("lettres") << corps(QStringLiteral("abc")) << qint64(0);
        QTest::newRow("decimal arrondi pair") << corps(QStringLiteral("2.5")) << qint64(2);
        QTest::newRow("grand") << corps(QStringLiteral("3000000000")) << qint64(3000000000);
        QTest::newRow("douze champs") << corps(QStringLiteral("42"), 12) << qint64(42);
        QTest::newRow("onze champs") << corps(QStringLiteral("42"), 11) << qint64(0);
        QTest::newRow("texte vide") << QString() << qint64(0);
        // The twelfth field even without the final "§".
        QTest::newRow("dernier champ sans marque") << "0§1§2§3§4§5§6§7§8§9§10§99" << qint64(99);
    }

    void champNumeroPatient()
    {
        QFETCH(QString, texte);
        QFETCH(qint64, numero);
        QCOMPARE(ChampNumeroPatient(texte), numero);
    }

    void lireDateTexte_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QDate>("date");
        QTest::newRow("complete") << "15/03/1985" << QDate(1985, 3, 15);
        QTest::newRow("chiffres seuls") << "5/3/1985" << QDate(1985, 3, 5);
        QTest::newRow("tirets") << "15-03-1985" << QDate(1985, 3, 15);
        QTest::newRow("blancs autour") << " 15/03/1985  " << QDate(1985, 3, 15);
        QTest::newRow("annee courte") << "15/03/85" << QDate(1985, 3, 15);
        QTest::newRow("annee courte 30") << "01/01/30" << QDate(1930, 1, 1);
        QTest::newRow("29 fevrier bissextile") << "29/02/2000" << QDate(2000, 2, 29);
        QTest::newRow("29 fevrier non bissextile") << "29/02/2001" << QDate();
        QTest::newRow("mois 13") << "15/13/1985" << QDate();
        QTest::newRow("sans annee") << "15/03" << QDate();
        QTest::newRow("annee en tete") << "1985/03/15" << QDate();
        QTest::newRow("annee trop petite") << "15/03/0099" << QDate();
        QTest::newRow("lettres") << "abc" << QDate();
        QTest::newRow("vide") << "" << QDate();
    }

    void lireDateTexte()
    {
        QFETCH(QString, texte);
        QFETCH(QDate, date);
        QCOMPARE(LireDateTexte(texte), date);
    }

    void texteAge_data()
    {
        QTest::addColumn<QDate>("aujourdhui");
        QTest::addColumn<QString>("naissance");
        QTest::addColumn<QString>("attendu");
        QTest::addColumn<QString>("naissanceApres");
        const QDate mai(2024, 5, 1);
        const QDate juin(2024, 6, 15);
        QTest::newRow("ne aujourd'hui") << mai << "01/05/2024" << "0 jours" << "01/05/2024";
        QTest::newRow("un jour") << mai << "30/04/2024" << "1 jour" << "30/04/2024";
        QTest::newRow("91 jours") << mai << "31/01/2024" << "91 jours" << "31/01/2024";
        QTest::newRow("92 jours, jour plus grand") << mai << "30/01/2024" << "12 semaines" << "30/01/2024";
        QTest::newRow("92 jours, meme jour") << juin << "15/03/2024" << "13 semaines" << "15/03/2024";
        QTest::newRow("365 jours") << juin << "16/06/2023" << "11 mois" << "16/06/2023";
        QTest::newRow("mois, jour atteint") << juin << "10/01/2023" << "17 mois" << "10/01/2023";
        QTest::newRow("mois, jour pas atteint") << juin << "20/01/2023" << "16 mois" << "20/01/2023";
        QTest::newRow("1865 jours") << juin << "08/05/2019" << "61 mois" << "08/05/2019";
        QTest::newRow("1866 jours") << juin << "07/05/2019" << "5 ans" << "07/05/2019";
        QTest::newRow("anniversaire ce jour") << juin << "15/06/1980" << "44 ans" << "15/06/1980";
        QTest::newRow("anniversaire demain") << juin << "16/06/1980" << "43 ans" << "16/06/1980";
        QTest::newRow("210 ans") << juin << "15/06/1814" << "210 ans" << "15/06/1814";
        QTest::newRow("211 ans") << juin << "15/06/1813" << "" << "15/06/1813";
        QTest::newRow("211 moins 1") << juin << "16/06/1813" << "210 ans" << "16/06/1813";
        QTest::newRow("29 fevrier compte du 28") << QDate(2024, 2, 28) << "29/02/2000" << "24 ans" << "29/02/2000";
        QTest::newRow("29 fevrier la veille") << QDate(2024, 2, 27) << "29/02/2000" << "23 ans" << "29/02/2000";
        QTest::newRow("29 fevrier nourrisson") << QDate(2024, 3, 1) << "29/02/2024" << "2 jours" << "29/02/2024";
        QTest::newRow("29 fevrier non bissextile") << juin << "29/02/2001" << "" << "29/02/2001";
        QTest::newRow("demain") << juin << "16/06/2024" << "" << "16/06/2024";
        QTest::newRow("invalide") << juin << "31/02/2000" << "" << "31/02/2000";
        QTest::newRow("vide") << juin << "" << "" << "";
        QTest::newRow("lettres") << juin << "inconnue" << "" << "inconnue";
        QTest::newRow("forme courte") << juin << "5/3/1985" << "39 ans" << "5/3/1985";
        // A short date followed by two blanks is written out in full.
        QTest::newRow("annee courte et deux blancs") << juin << "15/03/85  " << "39 ans" << "15/03/1985";
        QTest::newRow("annee courte 30") << juin << "01/01/30  " << "94 ans" << "01/01/1930";
        QTest::newRow("annee courte 29 future") << juin << "01/01/29  " << "" << "01/01/2029";
        // Only the first 8 characters count: a full date with two blanks
        // reads as a year 19xx -> 2019.
        QTest::newRow("date longue et deux blancs") << juin << "15/03/1985  " << "5 ans" << "15/03/2019";
        QTest::newRow("un seul blanc") << juin << "15/03/1985 " << "39 ans" << "15/03/1985 ";
    }

    void texteAge()
    {
        QFETCH(QDate, aujourdhui);
        QFETCH(QString, naissance);
        QFETCH(QString, attendu);
        QFETCH(QString, naissanceApres);
        const Horloge::Fixee horloge(QDateTime(aujourdhui, QTime(10, 30)));
        QString texte = naissance;
        QCOMPARE(TexteAge(texte), attendu);
        QCOMPARE(texte, naissanceApres);
    }
};

QTEST_GUILESS_MAIN(tst_support)
#include "tst_support.moc"
