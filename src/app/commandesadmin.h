#pragma once

#include <QStringList>
#include <QTextStream>

// The command-line companion for installers and support. Each command writes
// its answer to out and its complaints, in French, to err; the result is the
// process exit status.
int ExecuterCommandeAdmin(const QStringList &arguments, QTextStream &out, QTextStream &err);
