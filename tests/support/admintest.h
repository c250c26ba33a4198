#pragma once

#include <QString>
#include <QStringList>

// One run of tavonel-admin: exit code (-1 when it did not start, crashed or
// ran past the minute), standard output and standard error.
struct SortieAdmin
{
    int code = -1;
    QString texte;
    QString erreurs;
};

// Runs tavonel-admin (tests registered with ADMIN) with these arguments. The
// test's event loop keeps turning meanwhile, so that simulated peers living
// on it (modem, mail sink) can answer.
SortieAdmin lancerAdmin(const QStringList &arguments);
