#include "appointments/impressionticket.h"
#include "calendar/calendarevent.h"
#include "shell/appstate.h"
#include "support/dossiertest.h"
#include "support/fichierstest.h"

#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString S = QStringLiteral("\u00A7");

DonneesTicket Dupont()
{
    return DonneesTicket{QStringLiteral("DUPONT"), QStringLiteral("Jean"), QStringLiteral("Dr Lefèvre"),
                         QDate(2026, 8, 3), QTime(9, 30)};
}

// "14bu:text": size, then b, i, u for bold, italic, underline; an empty line
// is told by its break mark.
QString Decrire(const ParagrapheTicket &p)
{
    auto style = [](const StyleTicket &s) {
        return QString::number(s.taille) + QLatin1String(s.gras ? "b" : "") + QLatin1String(s.italique ? "i" : "")
               + QLatin1String(s.souligne ? "u" : "");
    };
    QString styles;
    for (const SegmentTicket &s : p.segments)
        styles += (styles.isEmpty() ? QString() : QStringLiteral("/")) + style(s.style);
    if (p.segments.isEmpty())
        styles = style(p.marque);
    return styles + u':' + p.texte();
}

// Runs a poppler tool; the test fails when it is missing or fails.
QString Poppler(const QString &outil, const QStringList &arguments)
{
    const QString programme = QStandardPaths::findExecutable(outil);
    if (programme.isEmpty())
        return QStringLiteral("<%1 introuvable>").arg(outil);
    QProcess p;
    p.start(programme, arguments);
    if (!p.waitForFinished(30000) || p.exitCode() != 0)
        return QStringLiteral("<%1 en échec>").arg(outil);
    return QString::fromUtf8(p.readAllStandardOutput());
}

struct Mot
{
    double xMin, yMin, xMax, yMax;
    QString texte;
};

QList<Mot> MotsPdf(const QString &pdf)
{
    static const QRegularExpression motRe(QStringLiteral(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)</word>)re"));
    QList<Mot> mots;
    const QString html = Poppler(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
    for (auto it = motRe.globalMatch(html); it.hasNext();) {
        const auto m = it.next();
        mots.append(Mot{m.captured(1).toDouble(), m.captured(2).toDouble(), m.captured(3).toDouble(),
                        m.captured(4).toDouble(), m.captured(5)});
    }
    return mots;
}

} // namespace

class tst_ticket : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        appState() = AppState{};
        appState().AgendaName = QStringLiteral("Cabinet Nord");
        HighEdit() = HighEditEtat{};
    }

    void composition_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("entete");
        QTest::addColumn<QStringList>("attendu");
        QTest::addColumn<QList<double>>("page");

        QTest::newRow("58 mm, two-line header")
            << FormatRouleau58 << "Cabinet|Dr Martin"
            << QStringList{"12b:Cabinet", "12b:Dr Martin", "12b:", "9bu:Patient :", "9:Jean DUPONT", "9:",
                           "9b:Rendez-vous avec le Docteur", "11b:Dr Lefèvre", "11b:",
                           "12biu:Le lundi 03 août 2026", "12biu:", "12b:A 09 H 30", "12b:          "}
            << QList<double>{5670, 3402, 170.1, 170.1};
        QTest::newRow("80 mm, empty header, stars at the end")
            << FormatRouleau80 << QString()
            << QStringList{"14b:", "14b:", "12bu:Patient :", "12:Jean DUPONT", "12:",
                           "12b:Rendez-vous avec le Docteur", "14b:Dr Lefèvre", "14b:",
                           "15biu:Le lundi 03 août 2026", "15biu:", "15b:A 09 H 30", "15b:          ", "15b:",
                           "15b:***************"}
            << QList<double>{8505, 4536, 170.1, 340.2};
        QTest::newRow("A4, one-line header")
            << FormatA4 << "Cabinet médical"
            << QStringList{"18b:Cabinet médical", "18b:", "12bu:Patient :", "12:Jean DUPONT", "12:",
                           "12b:Rendez-vous avec le Docteur", "14b:Dr Lefèvre", "14b:",
                           "16biu:Le lundi 03 août 2026", "16biu:", "16b:A 09 H 30", "16b:          "}
            << QList<double>{16839.9, 11907, 340.2, 340.2};
        QTest::newRow("unknown format: empty control, page kept") << "a4" << "Cabinet" << QStringList{} << QList<double>{};
    }

    void composition()
    {
        QFETCH(QString, format);
        QFETCH(QString, entete);
        QFETCH(QStringList, attendu);
        QFETCH(QList<double>, page);

        ReglagesTicket r;
        r.format = format;
        r.entete = entete;
        r.margeGauche = QStringLiteral("2,5");
        r.margeDroite = QStringLiteral("4.5");
        const TicketCompose t = ComposerTicket(r, Dupont());
        QStringList obtenu;
        for (const ParagrapheTicket &p : t.paragraphes)
            obtenu << Decrire(p);
        QCOMPARE(obtenu, attendu);
        if (page.isEmpty()) {
            QVERIFY(!t.page);
            return;
        }
        QVERIFY(t.page);
        QCOMPARE((QList<double>{t.page->hauteur, t.page->largeur, t.page->margeHaut, t.page->margeBas}), page);
        QCOMPARE(t.page->margeGauche, 200 * 0.567);
        QCOMPARE(t.page->margeDroite, 450 * 0.567);
    }

    void margesEtImprimante()
    {
        const QList<QPair<QString, double>> marges{{"3", 300 * 0.567},   {"7", 700 * 0.567}, {"2,5", 200 * 0.567},
                                                   {"2.5", 250 * 0.567}, {"", 0},            {"abc", 0},
                                                   {"0.019", 0.567},     {"-1", -100 * 0.567}};
        for (const auto &[texte, twips] : marges)
            QVERIFY2(qFuzzyCompare(1 + MargeTicketTwips(texte), 1 + twips), qPrintable(texte));

        // The named printer when the system has it (same case), else the default one.
        const QStringList systeme{QStringLiteral("Bureau"), QStringLiteral("Ticket 80")};
        const QList<QStringList> imprimantes{
            {"Ticket 80", "Bureau", "Ticket 80"}, {"ticket 80", "Bureau", "Bureau"}, {"Partie", "Bureau", "Bureau"},
            {"", "Bureau", "Bureau"}, {"Partie", "", ""}};
        for (const QStringList &i : imprimantes)
            QCOMPARE(ImprimanteTicket(i[0], i[1], systeme), i[2]);
    }

    void initHighEdit()
    {
        HighEditEtat etat;
        InitHighEdit(etat, FormatRouleau58);
        QCOMPARE(etat.page, (PageTicket{5670, 3288.6, 56.7, 56.7, 56.7, 56.7}));
        QCOMPARE(etat.police, QStringLiteral("Arial"));
        InitHighEdit(etat, FormatRouleau80);
        QCOMPARE(etat.page, (PageTicket{5670, 4536, 56.7, 56.7, 56.7, 56.7}));
        const HighEditEtat avant = etat;
        InitHighEdit(etat, QStringLiteral("Rouleau 57 mm"));
        QCOMPARE(etat, avant);
        HighEditEtat neuf;
        InitHighEdit(neuf, QStringLiteral("Lettre"));
        QVERIFY(neuf.police.isEmpty());

        DossierProgrammeTest prog;
        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Cabinet Nord]\nPrinterFormat=A4\n"));
        InitHighEdit(etat);
        QCOMPARE(etat.page, (PageTicket{16839.9, 11907, 340.2, 340.2, 340.2, 340.2}));
    }

    void donneesDuRendezVous()
    {
        const QList<QPair<QString, QStringList>> cas{
            {S + "DUPONT" + S + "Jean" + S + "01/02/1960" + S + S, {"DUPONT", "Jean"}},
            {"Réunion" + S + "Laboratoire" + S + QStringLiteral("\u00A3") + S + S, {"Réunion", "Laboratoire"}},
            {QStringLiteral("texte d'un ancien rendez-vous"), {"", ""}},
        };
        for (const auto &[corps, noms] : cas) {
            const CalendarEventPtr rdv = CalendarEvent::create();
            rdv->setBody(corps);
            rdv->setStartDateTime(QDateTime(QDate(2026, 3, 30), QTime(14, 5)));
            const DonneesTicket d = DonneesTicketDepuis(*rdv, QStringLiteral("Dr X"));
            QCOMPARE(QStringList({d.nom, d.prenom}), noms);
            QCOMPARE(d.date, QDate(2026, 3, 30));
            QCOMPARE(d.heure, QTime(14, 5));
            QCOMPARE(d.praticien, QStringLiteral("Dr X"));
        }
    }

    // Lines are centred between the margins, follow each other down the page
    // and stay inside it; a header too long for the page is cut at its foot.
    void miseEnPage_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("entete");
        QTest::addColumn<bool>("tronque");
        QTest::newRow("58 mm") << FormatRouleau58 << "Cabinet|Dr Martin" << false;
        QTest::newRow("80 mm") << FormatRouleau80 << QString() << false;
        QTest::newRow("A4") << FormatA4 << "Cabinet médical des Tilleuls" << false;
        QTest::newRow("58 mm, long header")
            << FormatRouleau58 << QStringLiteral("Cabinet médical des Tilleuls, 12 rue des Écoles|").repeated(8) << true;
    }

    void miseEnPage()
    {
        QFETCH(QString, format);
        QFETCH(QString, entete);
        QFETCH(bool, tronque);

        ReglagesTicket r;
        r.format = format;
        r.entete = entete;
        const TicketCompose t = ComposerTicket(r, Dupont());
        QImage image(10, 10, QImage::Format_ARGB32);
        image.setDotsPerMeterX(qRound(1200 / 0.0254));
        image.setDotsPerMeterY(qRound(1200 / 0.0254));
        const MiseEnPageTicket m(t.paragraphes, *t.page, &image);
        QCOMPARE(m.tronque(), tronque);

        const PageTicket &p = *t.page;
        const double centre = (p.margeGauche + (p.largeur - p.margeGauche - p.margeDroite) / 2) / 20;
        const double pied = (p.hauteur - p.margeBas) / 20;
        QVERIFY(!m.lignes().isEmpty());
        QCOMPARE(m.lignes().first().y, p.margeHaut / 20);
        double y = m.lignes().first().y;
        for (const LigneTicket &l : m.lignes()) {
            const QString quoi = QStringLiteral("%1 « %2 »").arg(l.paragraphe).arg(l.texte);
            QVERIFY2(qAbs(l.y - y) < 0.01, qPrintable(quoi));
            y += l.hauteur;
            QVERIFY2(y <= pied + 0.1, qPrintable(quoi));
            QVERIFY2(l.x >= p.margeGauche / 20 - 0.01, qPrintable(quoi));
            if (!l.texte.trimmed().isEmpty())
                QVERIFY2(qAbs(l.x + l.largeur / 2 - centre) < 0.5, qPrintable(quoi));
            const double taille = t.paragraphes.at(l.paragraphe).marque.taille;
            QVERIFY2(l.hauteur > taille && l.hauteur < 1.3 * taille, qPrintable(quoi));
        }
        if (!tronque) {
            QCOMPARE(m.lignes().size(), t.paragraphes.size());
        } else {
            // Wrapped header lines fill the page; the rest is left out.
            QVERIFY(m.lignes().size() > 10);
            QVERIFY(y > pied - 20);
            QVERIFY(m.lignes().last().texte.contains(QStringLiteral("Cabinet")));
        }
    }

    // The three formats printed for real into PDF files.
    void pdf_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("tailleAttendue");
        QTest::addColumn<double>("largeur");
        QTest::addColumn<bool>("etoiles");
        QTest::newRow("58 mm") << FormatRouleau58 << "170 x 283" << 170.1 << false;
        QTest::newRow("80 mm") << FormatRouleau80 << "227 x 425" << 226.8 << true;
        QTest::newRow("A4") << FormatA4 << "595 x 842" << 595.35 << false;
    }

    void pdf()
    {
        QFETCH(QString, format);
        QFETCH(QString, tailleAttendue);
        QFETCH(double, largeur);
        QFETCH(bool, etoiles);

        DossierProgrammeTest prog;
        prog.ecrire(QStringLiteral("Agenda.ini"),
                    QStringLiteral("[Agenda]\nPrinterFormat=A4\n[Cabinet Nord]\nPrinterFormat=%1\nMarginL=3\n"
                                   "MarginR=7\nPrinterEntete=Cabinet des Tilleuls|Tél. 01 23 45 67 89\n")
                        .arg(format));
        const QString chemin = prog.chemin() + QStringLiteral("ticket.pdf");
        QString erreur;
        QVERIFY2(ImprimerTicketPdf(Dupont(), chemin, &erreur), qPrintable(erreur));
        QVERIFY(!QFile::exists(chemin + QStringLiteral(".partiel")));
        // For a look at the tickets: TAVONEL_APERCU_TICKETS=<folder> keeps a copy.
        if (const QString apercu = qEnvironmentVariable("TAVONEL_APERCU_TICKETS"); !apercu.isEmpty())
            QFile::copy(chemin, apercu + u'/' + QString(QTest::currentDataTag()).replace(u' ', u'_') + ".pdf");

        const QString info = Poppler(QStringLiteral("pdfinfo"), {chemin});
        QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+1\\n"))), qPrintable(info));
        QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Page size:\\s+") + tailleAttendue + " pts")),
                 qPrintable(info));

        const QString texte = Poppler(QStringLiteral("pdftotext"), {chemin, QStringLiteral("-")});
        QStringList lignes = texte.split(u'\n', Qt::SkipEmptyParts);
        for (QString &l : lignes)
            l = l.trimmed();
        lignes.removeAll(QString());
        lignes.removeAll(QStringLiteral("\f"));
        QStringList attendu{"Cabinet des Tilleuls", "Tél. 01 23 45 67 89", "Patient :", "Jean DUPONT",
                            "Rendez-vous avec le Docteur", "Dr Lefèvre", "Le lundi 03 août 2026", "A 09 H 30"};
        if (etoiles)
            attendu << QStringLiteral("***************");
        QCOMPARE(lignes, attendu);

        const QString polices = Poppler(QStringLiteral("pdffonts"), {chemin});
        for (const char *police : {"LiberationSans-Bold", "LiberationSans-BoldItalic", "LiberationSans "})
            QVERIFY2(polices.contains(QLatin1String(police)), qPrintable(polices));

        // The text is centred between the margins (3 mm and 7 mm), not on the
        // page: the right margin is the wider one.
        const QList<Mot> mots = MotsPdf(chemin);
        const auto mot = [&](const QString &t) {
            for (const Mot &m : mots)
                if (m.texte == t)
                    return m;
            return Mot{-1, -1, -1, -1, t};
        };
        const double centre = (300 * 0.567 + (largeur * 20 - 1000 * 0.567) / 2) / 20;
        const Mot debut = mot(QStringLiteral("Rendez-vous"));
        const Mot fin = mot(QStringLiteral("Docteur"));
        QVERIFY2(qAbs((debut.xMin + fin.xMax) / 2 - centre) < 1.5,
                 qPrintable(QStringLiteral("%1 %2 %3").arg(debut.xMin).arg(fin.xMax).arg(centre)));
        // The header's first line begins at the top margin.
        const double haut = format == FormatA4 ? 340.2 / 20 : 170.1 / 20;
        const Mot cabinet = mot(QStringLiteral("Cabinet"));
        QVERIFY2(cabinet.yMin >= haut - 0.5 && cabinet.yMin < haut + 6, qPrintable(QString::number(cabinet.yMin)));
        QCOMPARE(HighEdit().page, *ComposerTicket(LireReglagesTicket(), Dupont()).page);
    }

    void pdfSansFormatConnu()
    {
        DossierProgrammeTest prog;
        prog.ecrire(QStringLiteral("Agenda.ini"), QStringLiteral("[Cabinet Nord]\nPrinterFormat=Lettre US\n"));
        InitHighEdit(HighEdit(), FormatRouleau58);
        const QString chemin = prog.chemin() + QStringLiteral("vide.pdf");
        QString erreur;
        QVERIFY2(ImprimerTicketPdf(Dupont(), chemin, &erreur), qPrintable(erreur));
        const QString info = Poppler(QStringLiteral("pdfinfo"), {chemin});
        QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Page size:\\s+164 x 283 pts"))), qPrintable(info));
        QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+1\\n"))), qPrintable(info));
        QCOMPARE(Poppler(QStringLiteral("pdftotext"), {chemin, QStringLiteral("-")}).trimmed(), QString());
    }

    void echecs()
    {
        DossierProgrammeTest prog;
        prog.ecrire(QStringLiteral("Agenda.ini"),
                    QStringLiteral("[Cabinet Nord]\nPrinterFormat=Rouleau 58 mm\nMarginL=35\nMarginR=30\n"));
        const QString chemin = prog.chemin() + QStringLiteral("ticket.pdf");
        QVERIFY(ecrireOctets(chemin, "ancien"));
        QString erreur;
        QVERIFY(!ImprimerTicketPdf(Dupont(), chemin, &erreur));
        QCOMPARE(erreur, QStringLiteral("Les marges du ticket (gauche 35 mm, droite 30 mm) ne laissent aucune place au "
                                        "texte sur le papier « Rouleau 58 mm ». Corrigez-les dans les options "
                                        "avancées."));
        QCOMPARE(lireOctets(chemin), QByteArray("ancien"));
        QVERIFY(!QFile::exists(chemin + QStringLiteral(".partiel")));

        const QString ailleurs = prog.chemin() + QStringLiteral("absent/ticket.pdf");
        QVERIFY(!ImprimerTicketPdf(Dupont(), ailleurs, &erreur));
        QCOMPARE(erreur, QStringLiteral("Le ticket n'a pas pu être écrit dans le fichier « %1 ».")
                             .arg(QDir::toNativeSeparators(ailleurs)));
    }
};

QTEST_MAIN(tst_ticket)
#include "tst_ticket.moc"
