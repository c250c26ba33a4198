#pragma once

#include <QString>

// The program folder, where Agenda.ini and the default agenda's stores lie:
// - the folder named by TAVONEL_PROGRAM_DIR when that is set (tests, trials);
// - for an installed program (its System files in <prefix>/share/tavonel
//   beside <prefix>/bin), the installation's writable folder
//   (/var/lib/tavonel), since the folder of the executable is the system's;
// - otherwise the folder of the executable (a build, a copy of its own).
// Always ends in the platform's separator.
[[nodiscard]] QString DossierProgramme();

// Path of a file delivered beside the program under "System" (for example
// "Opérateurs.txt"): the program folder's System folder when it holds the
// file, otherwise the installed copy (<prefix>/share/tavonel/System) for an
// installed program, otherwise the copy in the source tree's data/system.
[[nodiscard]] QString FichierSysteme(const QString &nom);
