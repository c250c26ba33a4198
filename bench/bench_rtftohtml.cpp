#include "messaging/mailreminder.h"
#include "messaging/rtftohtml.h"
#include "shell/base/processus.h"

#include <QTest>

// Cost of the mail conversion: one reminder, and a long document of a
// thousand formatted paragraphs (about 60 kB of RTF).
class BenchRtfToHtml : public QObject
{
    Q_OBJECT

private slots:
    void rappel()
    {
        const QString rtf = ComposerRtfRappel(
            QStringLiteral("Le secrétariat du Cabinet médical vous rappelle votre rendez-vous avec le"),
            QStringLiteral("Docteur Hélène Brunet"), QStringLiteral("Le lundi 03 août 2026 à 14H30 "),
            DernierTexteMailDefaut());
        QString html;
        QBENCHMARK {
            html = RtfToHtml(rtf, QStringLiteral("+H"));
        }
        QVERIFY(html.contains(QLatin1String("H&eacute;l&egrave;ne")));
    }

    void longDocument()
    {
        QString rtf = QStringLiteral("{\\rtf1\\ansi{\\fonttbl{\\f0\\fswiss Arial;}}{\\colortbl ;\\red255\\green0\\blue0;}\r\n");
        for (int i = 0; i < 1000; ++i)
            rtf += QStringLiteral("\\pard\\f0\\fs22 ligne %1 \\b gras\\cf1  rouge\\b0\\cf0  caf\\'e9\\par\r\n").arg(i);
        rtf += u'}';
        QString html;
        QBENCHMARK {
            html = RtfToHtml(rtf, QStringLiteral("+H"));
        }
        QVERIFY(html.contains(QLatin1String("ligne 999")));
    }
};

int main(int argc, char *argv[])
{
    PreparerProcessus();
    QCoreApplication app(argc, argv);
    BenchRtfToHtml bench;
    return QTest::qExec(&bench, argc, argv);
}
#include "bench_rtftohtml.moc"
