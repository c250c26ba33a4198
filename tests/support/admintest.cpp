#include "support/admintest.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QtTest>

SortieAdmin lancerAdmin(const QStringList &arguments)
{
    const QString exe = qEnvironmentVariable("TAVONEL_ADMIN_EXE");
    SortieAdmin s;
    if (exe.isEmpty())
        return s;
    QProcess p;
    p.start(exe, arguments);
    if (!p.waitForStarted(10000))
        return s;
    QDeadlineTimer limite(60000);
    while (p.state() != QProcess::NotRunning && !limite.hasExpired())
        QTest::qWait(20);
    if (p.state() != QProcess::NotRunning) {
        p.kill();
        p.waitForFinished(3000);
        return s;
    }
    if (p.exitStatus() == QProcess::NormalExit)
        s.code = p.exitCode();
    s.texte = QString::fromUtf8(p.readAllStandardOutput());
    s.erreurs = QString::fromUtf8(p.readAllStandardError());
    return s;
}
